// The three file dialogs that a page can ask for: what was asked, and what came of it as the page
// is to hear it.
//
// A script method makes one, calls createDialogImpl() and either shows it at once, on its own
// stack, or hands it to the RunnableScheduler, which then owns it. Browser's thread only.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "dialogs/dialog_impl.h"
#include "dialogs/file_dialog.h"

namespace Vantrel::Web {

// What the three share.
class NativeDialog : public FileDialog {
 public:
  // Chooses the platform's dialog. Once, before show() or run().
  virtual void createDialogImpl() = 0;

  // Shows the dialog modally and returns what was chosen, UTF-8, none for a cancel. Throws what the
  // platform's dialog throws, and std::runtime_error where this thread shows as many dialogs as it
  // may; nothing is chosen then.
  const std::vector<std::string>& show();

  // What the user chose; empty before the dialog has run and after a cancel.
  const std::vector<std::string>& chosenPaths() const override { return selectedPaths_; }

  bool stopped() const override { return stopped_; }
  int32_t result() const override { return impl_ ? IDialogImpl::kResult : 0; }
  // What an asynchronous call delivers to the page.
  std::string resultText() const override { return resultText_; }
  // The asynchronous form of show(): nothing once stopped; what is thrown, and a dialog too many,
  // is logged and becomes the result's text, an error reply.
  void run() override;
  // A dialog that is shown stays; its outcome is delivered to nobody.
  void stop() override;

 protected:
  // `failure` is the text that begins a report of this dialog.
  explicit NativeDialog(const char* failure) : failure_(failure) {}

  virtual std::string textOf(const std::vector<std::string>& paths) const = 0;

  std::unique_ptr<IDialogImpl> impl_;

 private:
  const char* const failure_;
  bool stopped_ = false;
  std::string resultText_;
  std::vector<std::string> selectedPaths_;
};

class OpenFileDialog : public NativeDialog {
 public:
  // `extendedInfo` asks for the dataTransfer document in place of an array of paths.
  OpenFileDialog(void* parentWindow, std::string title, bool allowDirectories, bool allowMultiple,
                 std::string fileTypes, bool extendedInfo);
  void createDialogImpl() override;

 protected:
  std::string textOf(const std::vector<std::string>& paths) const override;

 private:
  void* const parentWindow_;
  const std::string title_;
  const bool allowDirectories_;
  const bool allowMultiple_;
  const std::string fileTypes_;
  const bool extendedInfo_;
};

class OpenFolderDialog : public NativeDialog {
 public:
  OpenFolderDialog(void* parentWindow, std::string title, bool allowMultiple, bool extendedInfo);
  void createDialogImpl() override;

 protected:
  std::string textOf(const std::vector<std::string>& paths) const override;

 private:
  void* const parentWindow_;
  const std::string title_;
  const bool allowMultiple_;
  const bool extendedInfo_;
};

class SaveFileDialog : public NativeDialog {
 public:
  SaveFileDialog(void* parentWindow, std::string title, std::string suggestedName,
                 std::string fileTypes);
  void createDialogImpl() override;

 protected:
  // The quoted path, or null in words.
  std::string textOf(const std::vector<std::string>& paths) const override;

 private:
  void* const parentWindow_;
  const std::string title_;
  const std::string suggestedName_;
  const std::string fileTypes_;
};

}  // namespace Vantrel::Web
