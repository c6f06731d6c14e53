// Marks that the calling thread shows a file dialog. A page can ask for the next one from the
// message loop of the one before, and each takes its share of that thread's stack; so there is a
// bound.
//
// On the stack of the call that shows the dialog. Any thread: controls of several apartments show
// dialogs of their own.
#pragma once

#include <cstdint>

namespace Vantrel::Web {

// Dialogs of one thread that may be open at once, one inside the other.
inline constexpr int kMostShownDialogs = 16;

class ShownDialog {
 public:
  ShownDialog();
  ~ShownDialog();
  ShownDialog(const ShownDialog&) = delete;
  ShownDialog& operator=(const ShownDialog&) = delete;

  // Whether the calling thread shows as many as it may.
  static bool mostAreShown();

 private:
  const uint32_t thread_;
  ShownDialog* next_ = nullptr;
  ShownDialog* previous_ = nullptr;
};

}  // namespace Vantrel::Web
