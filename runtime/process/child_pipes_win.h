// Pipes to the standard streams of a process that is to be started.
#pragma once

#include <windows.h>

#include "runtime/ov_types.h"

namespace ov {

class ChildPipes {
 public:
  ChildPipes() = default;
  // Closes both ends of every pipe and clears where our end was handed out, unless they are kept.
  ~ChildPipes();
  ChildPipes(const ChildPipes&) = delete;
  ChildPipes& operator=(const ChildPipes&) = delete;

  // Make a pipe and hand out this process's end, which children do not inherit; for null they do
  // nothing.
  ov_rc addInput(void** ours) { return add(kInput, ours); }
  ov_rc addOutput(void** ours) { return add(kOutput, ours); }
  ov_rc addError(void** ours) { return add(kError, ours); }

  bool any() const;
  // Puts the child's ends of the pipes there are into the startup values.
  void fill(STARTUPINFOW* startup) const;
  // The process has started: all ends stay open.
  void keep();

 private:
  enum Stream { kInput, kOutput, kError, kStreams };
  struct Pipe {
    HANDLE child = nullptr;
    void** ours = nullptr;
  };

  ov_rc add(Stream stream, void** ours);

  Pipe pipes_[kStreams];
};

}  // namespace ov
