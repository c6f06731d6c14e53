// The desktop client's own windows that a page can ask for. Used on the browser's thread, which is
// blocked for the launch wait and the exchange.
#pragma once

#include <string>

namespace Vantrel::Web {

class Window {
 public:
  explicit Window(std::string windowName);
  virtual ~Window() = default;
  Window(const Window&) = default;
  Window& operator=(const Window&) = default;

  // Asks the client, started if need be, to show the window. True when it replied with anything.
  bool display(const std::string& argument);

 protected:
  std::string name_;
};

class TransferManagerWindow : public Window {
 public:
  TransferManagerWindow() : Window("transfer-manager") {}
};

class AboutWindow : public Window {
 public:
  AboutWindow() : Window("about") {}
};

class PreferencesWindow : public Window {
 public:
  PreferencesWindow() : Window("preferences") {}
};

}  // namespace Vantrel::Web
