#include "dialogs/shown_dialog.h"

#include <mutex>

#include "runtime/ov_threads.h"

namespace Vantrel::Web {

namespace {

// Guards the list: the dialogs of all threads. No thread's own count instead, which the C++ runtime
// would keep on the heap for each thread.
std::mutex shownMutex;
ShownDialog* firstShown = nullptr;

}  // namespace

ShownDialog::ShownDialog() : thread_(ov_thread_self()) {
  const std::lock_guard<std::mutex> lock(shownMutex);
  next_ = firstShown;
  if (next_ != nullptr) next_->previous_ = this;
  firstShown = this;
}

ShownDialog::~ShownDialog() {
  const std::lock_guard<std::mutex> lock(shownMutex);
  (previous_ != nullptr ? previous_->next_ : firstShown) = next_;
  if (next_ != nullptr) next_->previous_ = previous_;
}

bool ShownDialog::mostAreShown() {
  const uint32_t self = ov_thread_self();
  int own = 0;
  const std::lock_guard<std::mutex> lock(shownMutex);
  for (const ShownDialog* dialog = firstShown; dialog != nullptr; dialog = dialog->next_) {
    if (dialog->thread_ == self) ++own;
  }
  return own >= kMostShownDialogs;
}

}  // namespace Vantrel::Web
