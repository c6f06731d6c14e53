// What the three file dialogs have in common for those who receive their outcome. A dialog is a
// Runnable, owned by the scheduler or by the script method that shows it; browser's thread only.
#pragma once

#include <string>
#include <vector>

#include "threads/runnable.h"

namespace Vantrel::Web {

enum class DialogKind { kOpenFile = 0, kOpenFolder = 1, kSaveFile = 2 };

class FileDialog : public Runnable {
 public:
  // What the user chose, UTF-8; empty before the dialog has run and after a cancel.
  virtual const std::vector<std::string>& chosenPaths() const = 0;
};

}  // namespace Vantrel::Web
