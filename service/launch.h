// The question whether a desktop client answers, and starting one that does not. Any thread; two
// threads that launch at the same time may start two processes.
#pragma once

#include <cstdint>

#include "service/tcp_socket.h"

namespace Vantrel::Web {

// How long launchVantrel waits for a client that it started, for all instances, in milliseconds.
inline constexpr int32_t kDefaultLaunchTimeoutMs = 20000;
void setLaunchTimeout(int32_t milliseconds);

// True if the client at the known address gave any reply that parses. A failed exchange reads the
// address again and repeats the question if the client has moved to another port. Blocks for the
// exchange.
bool pingVantrel(const ConnectionPurpose& purpose = {});

// True when a client answers, after starting one if need be. Blocks for the wait and a little more.
// Once `breaker` (may be null) is broken, no client is started any more; a wait that has begun goes
// on to its end, which is then that the client takes connections, or that it was cut short while it
// was silent.
bool launchVantrel(SocketBreaker* breaker = nullptr);

// Lets the client's windows come to the front. Never throws; failures are logged.
void allowVantrelForeground();

}  // namespace Vantrel::Web
