// A unit of work that runs on the browser's thread from its message loop, in practice a file
// dialog. Owned by the RunnableScheduler once it is scheduled.
#pragma once

#include <cstdint>
#include <string>

namespace Vantrel::Web {

class Runnable {
 public:
  virtual ~Runnable() = default;

  // Whether stop() was called; the result is then not delivered.
  virtual bool stopped() const = 0;
  virtual int32_t result() const { return 0; }
  virtual std::string resultText() const { return {}; }
  // Does the work; may block in a modal loop.
  virtual void run() = 0;
  // Ends or cancels the work, also while run() is active further up the same thread's stack.
  virtual void stop() = 0;

 protected:
  Runnable() = default;
  Runnable(const Runnable&) = default;
  Runnable& operator=(const Runnable&) = default;
};

}  // namespace Vantrel::Web
