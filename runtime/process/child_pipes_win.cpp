#include "runtime/process/child_pipes_win.h"

#include <algorithm>

#include "runtime/errors/last_code.h"

namespace ov {

ChildPipes::~ChildPipes() {
  for (const Pipe& pipe : pipes_) {
    if (pipe.child == nullptr) continue;
    CloseHandle(pipe.child);
    CloseHandle(*pipe.ours);
    *pipe.ours = nullptr;
  }
}

ov_rc ChildPipes::add(Stream stream, void** ours) {
  if (ours == nullptr) return 0;
  *ours = nullptr;
  SECURITY_ATTRIBUTES inheritable = {sizeof inheritable, nullptr, TRUE};
  HANDLE readEnd = nullptr;
  HANDLE writeEnd = nullptr;
  if (!CreatePipe(&readEnd, &writeEnd, &inheritable, 0)) return last_code();
  const HANDLE child = stream == kInput ? readEnd : writeEnd;
  const HANDLE parent = stream == kInput ? writeEnd : readEnd;
  const HANDLE self = GetCurrentProcess();
  const ov_rc error =
      code_of(DuplicateHandle(self, parent, self, ours, 0, FALSE, DUPLICATE_SAME_ACCESS));
  CloseHandle(parent);
  if (error != 0) {
    CloseHandle(child);
    *ours = nullptr;
  } else {
    pipes_[stream] = {child, ours};
  }
  return error;
}

bool ChildPipes::any() const {
  return std::ranges::any_of(pipes_, [](const Pipe& pipe) { return pipe.child != nullptr; });
}

void ChildPipes::fill(STARTUPINFOW* startup) const {
  if (pipes_[kInput].child != nullptr) startup->hStdInput = pipes_[kInput].child;
  if (pipes_[kOutput].child != nullptr) startup->hStdOutput = pipes_[kOutput].child;
  if (pipes_[kError].child != nullptr) startup->hStdError = pipes_[kError].child;
}

void ChildPipes::keep() {
  for (Pipe& pipe : pipes_) pipe = {};
}

}  // namespace ov
