// Runs a page's script with the registered control in a container, as a browser for such controls
// does. The script finds the control as `plugin`, its orders as the members of `order`, and the
// functions print(text), setTimeout and setInterval with their ends, drop(path), which plays a user
// who drops a file on the control, and quit(code). The control's events go to the script's
// functions plugin_OnDrop(paths) and plugin_OnDropEx(json).
//
// Ends with the script's code, with 3 for an error that no script caught, with 4 when the time was
// over, with 5 when the control was not ended cleanly.
#include <windows.h>
#include <ole2.h>
#include <shellapi.h>

#include <exception>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include "browsers/activex/identifiers.h"
#include "tests/container/control_win.h"
#include "tests/container/counting_container_win.h"
#include "tests/container/dragged_files_win.h"
#include "tests/container/drawing_win.h"
#include "tests/container/event_sink_win.h"
#include "tests/container/script_page_win.h"
#include "tests/support/scripted_server.h"
#include "text/wide_text.h"
#include "tools/scripthost/options.h"

namespace Vantrel::ScriptHost {

namespace {

using Web::Container::Control;
using Web::Container::CountingContainer;
using Web::Container::Event;
using Web::Container::EventSink;
using Web::Container::Language;
using Web::Container::ScriptPage;
using Web::Container::Variant;
using Web::Container::Variants;

constexpr int kScriptError = 3;
constexpr int kTimeOver = 4;
constexpr int kUnclean = 5;
constexpr DISPID kOnDrop = 100;
constexpr uint64_t kMsPerSecond = 1000;
constexpr int kPictureWidth = 320;
constexpr int kPictureHeight = 200;
constexpr uint32_t kPictureGround = 0xFFFFFF;
constexpr char kImagePath[] = "/image";

std::string contentOf(const std::wstring& file) {
  std::ifstream in(std::filesystem::path(file), std::ios::binary);
  if (!in) throw std::runtime_error("cannot read " + Web::toUtf8(file));
  return {std::istreambuf_iterator<char>(in), {}};
}

// The members of `order` as script.
std::string orderScript(const Options& options) {
  std::string script = "var order = {};\n";
  for (const auto& [name, value] : options.order) {
    std::string quoted;
    for (const char byte : value) {
      if (byte == '\\' || byte == '"') quoted += '\\';
      quoted += byte;
    }
    script.append("order.").append(name).append(" = \"").append(quoted).append("\";\n");
  }
  return script;
}

IUnknown* makeRegistered(const std::wstring& program) {
  CLSID classId{};
  void* object = nullptr;
  if (FAILED(CLSIDFromProgID(program.c_str(), &classId)) ||
      FAILED(CoCreateInstance(classId, nullptr, CLSCTX_INPROC_SERVER, IID_IUnknown, &object)))
    throw std::runtime_error("the control is not registered");
  return static_cast<IUnknown*>(object);
}

class Host {
 public:
  explicit Host(const Options& options)
      : options_(options),
        control_(container_, makeRegistered(options.program), start()),
        page_(container_, Language::kJScript),
        sink_(container_.book.make<EventSink>("sink", Web::ActiveX::kEventInterfaceId)) {
    page_.onPrint = [](const std::string& line) { std::cout << line << std::endl; };
    page_.addFunction("quit", [this](const Variants& arguments, Variant&) {
      code_ = arguments.empty() ? 0 : static_cast<int>(arguments[0].get().lVal);
      return S_OK;
    });
    page_.addFunction("drop", [this](const Variants& arguments, Variant&) {
      return drop(arguments.empty() ? std::wstring() : Web::toWide(arguments[0].asText()));
    });
    page_.add("plugin", control_.unknown());
    DWORD connection = 0;
    control_.connect(sink_, Web::ActiveX::kEventInterfaceId, connection);
    sink_.onEvent = [this](const Event& event) {
      page_.engine().callGlobal(event.id == kOnDrop ? "plugin_OnDrop" : "plugin_OnDropEx",
                                event.arguments);
    };
  }

  int run() {
    page_.run(orderScript(options_) + contentOf(options_.script));
    const auto ended = [this] { return code_ || !page_.engine().errors().empty(); };
    container_.pumpUntil(ended, static_cast<uint64_t>(options_.limitSeconds) * kMsPerSecond);
    for (const Web::Container::ScriptError& error : page_.engine().errors()) {
      std::cerr << "line " << error.line << ": " << error.text << "\n";
      code_ = kScriptError;
    }
    if (!code_) std::cerr << "the time is over\n";
    return code_.value_or(kTimeOver);
  }

  bool draw() {
    if (options_.picture.empty()) return true;
    return Web::Container::drawContent(control_.unknown(), kPictureWidth, kPictureHeight,
                                       kPictureGround)
        .save(options_.picture);
  }

  // Everything is given back; what is not is told.
  bool end() {
    page_.engine().close();
    control_.end();
    const std::vector<std::string> faults = container_.finish();
    for (const std::string& fault : faults) std::cerr << fault << "\n";
    return faults.empty();
  }

 private:
  Web::Container::ControlStart start() {
    Web::Container::ControlStart start{.parameters = options_.parameters};
    start.address.host = options_.host;
    if (!options_.image.empty()) {
      images_.always(kImagePath, Web::TestSupport::Script::reply(contentOf(options_.image)));
      start.parameters["image"] = images_.url() + kImagePath;
    }
    return start;
  }

  HRESULT drop(const std::wstring& file) {
    Web::ComPointer<IOleInPlaceObjectWindowless> object;
    Web::ComPointer<IDropTarget> target;
    control_.activate();
    HRESULT result = control_.query(object);
    if (SUCCEEDED(result)) result = object->GetDropTarget(target.put());
    if (FAILED(result)) return result;
    return Web::Container::dragAndDrop(*target.get(),
                                       container_.book.make<Web::Container::DraggedFiles>(
                                           "dragged file", std::vector<std::wstring>{file}));
  }

  const Options& options_;
  Web::TestSupport::ScriptedServer images_;
  CountingContainer container_;
  Control control_;
  ScriptPage page_;
  EventSink& sink_;
  std::optional<int> code_;
};

int runScript(const Options& options) {
  Host host(options);
  const int code = host.run();
  const bool drawn = host.draw();
  if (!drawn) std::cerr << "the picture cannot be written\n";
  const bool clean = host.end();
  return code != 0 || (drawn && clean) ? code : kUnclean;
}

}  // namespace

}  // namespace Vantrel::ScriptHost

int main() {
  int count = 0;
  LPWSTR* const words = CommandLineToArgvW(GetCommandLineW(), &count);
  SetConsoleOutputCP(CP_UTF8);
  try {
    const std::vector<std::wstring> arguments(words + 1, words + count);
    LocalFree(words);
    return Vantrel::ScriptHost::runScript(Vantrel::ScriptHost::readOptions(arguments));
  } catch (const std::exception& exception) {
    std::cerr << exception.what() << "\n";
    return 2;
  }
}
