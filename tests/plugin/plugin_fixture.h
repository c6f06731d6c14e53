// Base of the test cases that drive the shipped library: it is loaded from the build and
// initialised by the counting host, in a user profile of its own. Each case ends with the host's
// books closed.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "tests/host/host_fixture.h"
#include "tests/host/scratch_profile.h"
#include "tests/support/scripted_server.h"

namespace Vantrel::Web {

using Host::Instance;
using Host::Kept;
using Host::Value;
using TestSupport::httpReply;
using TestSupport::messageBody;
using TestSupport::Script;
using TestSupport::ScriptedServer;
using TestSupport::unusedPort;

inline constexpr wchar_t kPluginLibrary[] = L"..\\..\\nporvaneweb.dll";
inline constexpr char kContactError[] =
    "Error contacting Orvane Vantrel. Ensure that it is running, and not blocked by your firewall "
    "or security policies.";

// The reply that tells the page of an error.
std::string errorReply(std::string_view text);

class PluginTest : public Host::HostTest {
 protected:
  void SetUp() override { start(kPluginLibrary); }

  Value text(std::string_view value) { return Value::string(value); }
  bool logHas(std::string_view part) const { return logCount(part) != 0; }
  size_t logCount(std::string_view part) const;
  // Runs the browser until the function was called that often.
  bool waitForCalls(const Host::PageReference& function, size_t count);

  Host::ScratchProfile profile_;
};

// With a desktop client whose every word the test chooses.
class ServedTest : public PluginTest {
 protected:
  void SetUp() override;

  ScriptedServer server_;
  const std::string key_ = "the-key";
};

inline constexpr char kPingPath[] = "/v5/vantrel/info/ping";
inline constexpr char kActivityPath[] = "/v5/vantrel/transfers/activity";
inline constexpr char kTransfersPath[] = "/transfers/";
inline constexpr char kVersionPath[] = "/v4/vantrel/version";

// The value of a header line of a raw request, "(none)" without one.
std::string headerOf(const std::string& request, const std::string& name);

}  // namespace Vantrel::Web
