// The message loop of the browser's thread in tests of what is posted to hidden windows. Natively a
// queue stands for the windows' messages.
#pragma once

namespace Vantrel::Web::TestSupport {

// Lets the loop turn until nothing is left.
void runMessageLoop();

// From now on no hidden window that exists takes a post; on Windows they are destroyed.
void breakMessageWindows();

}  // namespace Vantrel::Web::TestSupport
