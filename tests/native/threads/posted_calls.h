// Stands for one turn of the browser's message loop in native test builds.
#pragma once

namespace Vantrel::Web {

// Runs what was posted to the hidden windows, in order; the number of calls.
int runPostedCalls();

}  // namespace Vantrel::Web
