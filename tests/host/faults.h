// What went wrong in the browser's eyes: misuse of an object, of memory or of a thread. A test that
// uses the host ends with none. Any thread may add; the test reads.
#pragma once

#include <mutex>
#include <string>
#include <vector>

namespace Vantrel::Web::Host {

class Faults {
 public:
  void add(std::string text);
  // The faults so far; the list is empty afterwards.
  std::vector<std::string> take();
  bool empty() const;

 private:
  mutable std::mutex mutex_;
  std::vector<std::string> texts_;  // guarded by mutex_
};

}  // namespace Vantrel::Web::Host
