// A page made of a script: an engine with what a page's script expects of its browser: print(text),
// setTimeout, setInterval, clearTimeout, clearInterval, and the objects that the host names. Thread
// of the apartment; timers run in the container's message loop.
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <vector>

#include "tests/container/counting_container_win.h"
#include "tests/container/page_object_win.h"
#include "tests/container/script_engine_win.h"

namespace Vantrel::Web::Container {

class ScriptPage {
 public:
  ScriptPage(CountingContainer& container, Language language);
  ScriptPage(const ScriptPage&) = delete;
  ScriptPage& operator=(const ScriptPage&) = delete;
  ~ScriptPage();

  ScriptEngine& engine() { return engine_; }
  bool run(const std::string& text) { return engine_.run(text); }
  Variant evaluate(const std::string& expression) { return engine_.evaluate(expression); }
  // Makes an object known to scripts.
  void add(const std::string& name, IUnknown* object) { engine_.add(name, object); }
  void add(const std::string& name, IDispatch* object) {
    engine_.add(name, static_cast<IUnknown*>(object));
  }
  // One more function of every script.
  void addFunction(const std::string& name, PageObject::Member member);

  // What scripts have printed.
  std::vector<std::string> printed;
  std::function<void(const std::string&)> onPrint;
  bool hasPrinted(const std::string& line) const;

  size_t timers() const { return timers_.size(); }
  // Calls what is due.
  void runTimers();

 private:
  struct Timer {
    Variant function;
    uint64_t due;
    uint64_t period;  // 0 for one that runs once
  };

  HRESULT startTimer(const Variants& arguments, Variant& result, bool repeats);
  HRESULT stopTimer(const Variants& arguments);

  CountingContainer& container_;
  PageObject& functions_;
  ScriptEngine engine_;
  std::map<int32_t, Timer> timers_;
  int32_t lastTimer_ = 0;
};

}  // namespace Vantrel::Web::Container
