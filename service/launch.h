// Starting the desktop client and waiting for it. Any thread; two threads that launch at the same
// time may start two processes.
#pragma once

#include <cstdint>

namespace Vantrel::Web {

// How long launchVantrel waits for a client that it started, for all instances, in milliseconds.
inline constexpr int32_t kDefaultLaunchTimeoutMs = 20000;
void setLaunchTimeout(int32_t milliseconds);

// True when a client answers, after starting one if need be. Blocks for the wait and a little more.
bool launchVantrel();

// Lets the client's windows come to the front. Never throws; failures are logged.
void allowVantrelForeground();

}  // namespace Vantrel::Web
