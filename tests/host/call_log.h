// Every call that the plug-in makes of an NPN_ function, with its thread. A call off the browser's
// thread is a fault, except of the one function that is meant for it. Any thread may record.
#pragma once

#include <map>
#include <mutex>
#include <string>
#include <string_view>
#include <thread>

#include "tests/host/faults.h"

namespace Vantrel::Web::Host {

class CallLog {
 public:
  // The constructing thread is the browser's thread.
  explicit CallLog(Faults& faults);

  void record(const char* name);
  // For NPN_PluginThreadAsyncCall: any thread may call it.
  void recordFromAnyThread(const char* name);

  int count(std::string_view name) const;
  // Of these, the calls that came from another than the browser's thread.
  int countOffThread(std::string_view name) const;
  bool onBrowserThread() const;
  void clear();

 private:
  struct Count {
    int all = 0;
    int offThread = 0;
  };

  Faults& faults_;
  const std::thread::id browserThread_;
  mutable std::mutex mutex_;
  std::map<std::string, Count, std::less<>> counts_;  // guarded by mutex_
};

}  // namespace Vantrel::Web::Host
