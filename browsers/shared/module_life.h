// The start and the end of what both faces need of the process: clock, log, scheduler. Nothing
// starts before a face asks, and nothing ends before the last one has ended, so that one face never
// takes the log or the scheduler from an instance of the other. Any thread, but never under the
// loader's lock.
#pragma once

namespace Vantrel::Web {

// Each start is one end later. A log that cannot be opened is no failure: the rest works without.
void startModule() noexcept;
void endModule() noexcept;

// The module is started for as long as this lives, on the stack of an entry that may come first.
class ModuleStart {
 public:
  ModuleStart() { startModule(); }
  ~ModuleStart() { endModule(); }
  ModuleStart(const ModuleStart&) = delete;
  ModuleStart& operator=(const ModuleStart&) = delete;
};

}  // namespace Vantrel::Web
