// The start and the end of what both faces need of the process: clock, log, scheduler. Nothing
// starts before a face asks, and nothing ends before the last one has ended, so that one face never
// takes the log or the scheduler from an instance of the other. Any thread, but never under the
// loader's lock.
#pragma once

namespace Vantrel::Web {

// Each start is one end later. A log that cannot be opened is no failure: the rest works without.
void startModule() noexcept;
// `farewell`, if not null, is logged between the scheduler's end and the log's.
void endModule(const char* farewell = nullptr) noexcept;

}  // namespace Vantrel::Web
