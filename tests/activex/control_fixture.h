// Base of the test cases that drive the shipped library's control in a counting container, in a
// user profile of its own. Each case ends with all references given back and the library unloaded.
#pragma once

#include <string>
#include <string_view>

#include "browsers/activex/identifiers.h"
#include "tests/container/container_fixture.h"
#include "tests/container/page_object_win.h"
#include "tests/host/scratch_profile.h"
#include "tests/support/scripted_server.h"

namespace Vantrel::Web::ActiveX {

using Container::CallResult;
using Container::Control;
using Container::ControlStart;
using Container::EventSink;
using Container::PageFunction;
using Container::Variant;
using Container::Variants;

inline constexpr wchar_t kControlLibrary[] = L"..\\..\\nporvaneweb.dll";
inline constexpr char kContactError[] =
    "Error contacting Orvane Vantrel. Ensure that it is running, and not blocked by your firewall "
    "or security policies.";

// The reply that tells the page of an error.
std::string errorReply(std::string_view text);

class ControlTest : public Container::ContainerTest {
 protected:
  void SetUp() override { open(kControlLibrary); }

  // A control as a page has one.
  std::unique_ptr<Control> makeControl(const ControlStart& start = {}) {
    return std::make_unique<Control>(container(), kControlClassId, start);
  }
  PageFunction& makeFunction(const std::string& label) {
    return container().book.make<PageFunction>(label);
  }
  Variant text(std::string_view value) { return Variant::text(std::string(value)); }

  bool logHas(std::string_view part) const { return logCount(part) != 0; }
  size_t logCount(std::string_view part) const;
  // Whether the log has the lines' parts in this order.
  bool logHasInOrder(std::initializer_list<std::string_view> parts) const;

  Host::ScratchProfile profile_;
};

// With a desktop client whose every word the test chooses.
class ServedControlTest : public ControlTest {
 protected:
  void SetUp() override {
    profile_.writeServiceUrl(server_.url() + "\nthe-key");
    ControlTest::SetUp();
  }

  TestSupport::ScriptedServer server_;
};

}  // namespace Vantrel::Web::ActiveX
