// The one question whether a desktop client answers. Any thread; blocks for the exchange.
#pragma once

namespace Vantrel::Web {

// True if the client at the known address gave any reply that parses. A failed exchange reads the
// address again and repeats the question if the client has moved to another port.
bool pingVantrel();

}  // namespace Vantrel::Web
