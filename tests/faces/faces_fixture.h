// Base of the test cases that run a page's script against a face of the library: a user profile of
// its own, a desktop client whose every word the test chooses, files to choose or to drop, and file
// dialogs that answer by themselves.
#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "tests/faces/face.h"
#include "tests/host/scratch_profile.h"
#include "tests/support/fake_file_dialogs_win.h"
#include "tests/support/runtime/temp_folder.h"
#include "tests/support/scripted_server.h"

namespace Vantrel::Web::Faces {

enum class Kind { kNetscape, kActiveX };

class FacesTest : public testing::Test {
 protected:
  FacesTest();
  ~FacesTest() override;
  void TearDown() override;

  // Opens the page. Without a client there is nothing that a request could reach.
  void open(Kind kind, bool client, const Parameters& parameters = {});
  // Ends page and plug-in; each fault of the host is a failure.
  void close();

  Face& face() { return *face_; }
  Container::ScriptPage& page() { return face_->page(); }
  // Runs a text; an error that it does not catch is a failure.
  void run(const std::string& script);
  std::string log() const { return profile_.log(); }

  Host::ScratchProfile profile_;
  TestSupport::ScriptedServer server_;
  ov::TempFolder folder_;
  std::string file_;
  std::string directory_;
  std::optional<TestSupport::FakeFileDialogs> dialogs_;

 private:
  void answerClient();
  void addPageFunctions();

  std::unique_ptr<Face> face_;
};

// A text as a literal of the script's language.
std::string literal(const std::string& text);

}  // namespace Vantrel::Web::Faces
