#include <windows.h>
#include <ole2.h>

#include <filesystem>
#include <stdexcept>

#include "tests/faces/faces_fixture.h"
#include "tests/faces/page_prelude.h"
#include "text/wide_text.h"

namespace Vantrel::Web::Faces {

using Container::Variant;
using Container::Variants;
using TestSupport::Script;

namespace {

constexpr HRESULT kCancelled = HRESULT_FROM_WIN32(ERROR_CANCELLED);

std::string withBackslashes(std::string path) {
  for (char& byte : path) byte = byte == '/' ? '\\' : byte;
  return path;
}

}  // namespace

FacesTest::FacesTest()
    : file_(withBackslashes(folder_.path("h\xC3\xB6llo.txt"))),
      directory_(withBackslashes(folder_.path("a folder"))) {
  if (FAILED(OleInitialize(nullptr))) throw std::runtime_error("OLE cannot be initialised");
  ov::TempFolder::write(file_, "Hello");
  std::filesystem::create_directory(ov::TempFolder::native(directory_));
  dialogs_.emplace();
  dialogs_->results["Show"] = kCancelled;
}

FacesTest::~FacesTest() {
  dialogs_.reset();
  OleUninitialize();
}

void FacesTest::TearDown() {
  if (face_ != nullptr) close();
}

void FacesTest::open(Kind kind, bool client, const Parameters& parameters) {
  if (client) answerClient();
  face_ = kind == Kind::kNetscape ? makeNetscapeFace(parameters) : makeActiveXFace(parameters);
  addPageFunctions();
  run(kPrelude);
  run("var paths = {file: " + literal(file_) + ", folder: " + literal(directory_) + "};");
}

void FacesTest::answerClient() {
  server_.always("/v4/vantrel/version", Script::reply("the client's version"));
  server_.always("/path", Script::reply("{\"a\":1}"));
  server_.always("/echo", Script::reply("\xC3\xA4\xE4\xB8\xAD"));
  server_.always("/broken", Script());
  server_.always("/v5/vantrel/transfers/activity",
                 Script::reply("{\"iteration_token\":\"t\",\"transfers\":[{\"uuid\":\"u\"}]}"));
  profile_.writeServiceUrl(server_.url() + "\nthe-key");
}

void FacesTest::addPageFunctions() {
  // What the next dialog ends with: a path, or a cancel for an empty text.
  page().addFunction("choose", [this](const Variants& arguments, Variant&) {
    const std::string path = arguments.at(0).asText();
    dialogs_->results["Show"] = path.empty() ? kCancelled : S_OK;
    dialogs_->chosen = {toWide(path)};
    return S_OK;
  });
  page().addFunction("dropFiles", [this](const Variants& arguments, Variant& result) {
    std::vector<std::wstring> files;
    for (const Variant& argument : arguments) files.push_back(toWide(argument.asText()));
    result = Variant::boolean(SUCCEEDED(face_->drop(files)));
    return S_OK;
  });
}

void FacesTest::run(const std::string& script) {
  page().engine().forgetErrors();
  EXPECT_TRUE(page().run(script));
  for (const Container::ScriptError& error : page().engine().errors()) {
    ADD_FAILURE() << "line " << error.line << ": " << error.text << "\n" << script;
  }
}

void FacesTest::close() {
  for (const std::string& fault : face_->finish()) ADD_FAILURE() << fault;
  face_.reset();
}

std::string literal(const std::string& text) {
  std::string quoted = "\"";
  for (const char byte : text) {
    if (byte == '\\' || byte == '"') quoted += '\\';
    quoted += byte;
  }
  return quoted + "\"";
}

}  // namespace Vantrel::Web::Faces
