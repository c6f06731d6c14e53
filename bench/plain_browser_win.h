// The least of a browser that the library needs, for measuring it: unlike the counting host of the
// tests it keeps no books, fills no memory and copies no text, so that what is timed is the
// library's. One at a time in a process; all of it belongs to the constructing thread, except that
// any thread may post a call.
#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "browsers/gecko/netscape_plugin_api.h"

namespace Vantrel::Web::Bench {

// A function of the page: what the library calls with a text.
class PageFunction : public NPObject {
 public:
  explicit PageFunction(std::function<void(std::string_view)> onCall);

  std::function<void(std::string_view)> call;
};

class PlainBrowser {
 public:
  // Loads the library that stands beside the program and initialises it.
  PlainBrowser();
  ~PlainBrowser();
  PlainBrowser(const PlainBrowser&) = delete;
  PlainBrowser& operator=(const PlainBrowser&) = delete;

  // An exported function.
  template <class Function>
  Function* exported(const char* name) const {
    return reinterpret_cast<Function*>(address(name));
  }
  const NPPluginFuncs& plugin() const { return plugin_; }

  // Runs posted calls until `done`.
  void runUntil(const std::function<bool()>& done);

 private:
  void (*address(const char* name) const)();

  void* module_ = nullptr;
  NPPluginFuncs plugin_{};
};

// One instance in a page.
class PlainInstance {
 public:
  explicit PlainInstance(const PlainBrowser& browser);
  // Ends the instance if end() did not.
  ~PlainInstance();
  PlainInstance(const PlainInstance&) = delete;
  PlainInstance& operator=(const PlainInstance&) = delete;

  // NPP_Destroy; the calls that the instance has posted are dropped.
  void end();
  // Calls a method with texts, and with `function` behind them if there is one. Returns how long
  // the text of the result is; the text itself is freed. Fails the program when the method refuses.
  size_t call(const char* method, const std::vector<std::string_view>& texts,
              PageFunction* function = nullptr);

 private:
  const PlainBrowser& browser_;
  NPP_t npp_{};
  NPObject* script_ = nullptr;
  bool ended_ = false;
};

}  // namespace Vantrel::Web::Bench
