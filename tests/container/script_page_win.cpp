#include "tests/container/script_page_win.h"

#include <algorithm>
#include <utility>

#include "tests/host/process_state.h"

namespace Vantrel::Web::Container {

namespace {

// The shortest time between two calls of a repeating timer, so that it leaves the loop some.
constexpr uint64_t kShortestPeriodMs = 1;

int32_t integerOf(const Variants& arguments, size_t index) {
  if (index >= arguments.size()) return 0;
  Variant number = arguments[index];
  if (FAILED(VariantChangeType(&number.raw(), &number.raw(), 0, VT_I4))) return 0;
  return number.get().lVal;
}

std::string textOf(const Variant& value) {
  Variant text = value;
  if (FAILED(VariantChangeType(&text.raw(), &text.raw(), 0, VT_BSTR))) return value.describe();
  return text.asText();
}

}  // namespace

ScriptPage::ScriptPage(CountingContainer& container, Language language)
    : container_(container),
      functions_(container.book.make<PageObject>("host functions")),
      engine_(container.book, language, container.window()) {
  addFunction("print", [this](const Variants& arguments, Variant&) {
    printed.push_back(arguments.empty() ? std::string() : textOf(arguments[0]));
    if (onPrint) onPrint(printed.back());
    return S_OK;
  });
  addFunction("setTimeout", [this](const Variants& arguments, Variant& result) {
    return startTimer(arguments, result, false);
  });
  addFunction("setInterval", [this](const Variants& arguments, Variant& result) {
    return startTimer(arguments, result, true);
  });
  for (const char* name : {"clearTimeout", "clearInterval"}) {
    addFunction(name, [this](const Variants& arguments, Variant&) { return stopTimer(arguments); });
  }
  engine_.add("hostFunctions", static_cast<IDispatch*>(&functions_), true);
  container_.onTurn = [this] { runTimers(); };
}

ScriptPage::~ScriptPage() {
  container_.onTurn = {};
  // Before the engine's end, as a page's timers go before its scripts.
  timers_.clear();
}

void ScriptPage::addFunction(const std::string& name, PageObject::Member member) {
  functions_.add(name, std::move(member));
}

bool ScriptPage::hasPrinted(const std::string& line) const {
  return std::find(printed.begin(), printed.end(), line) != printed.end();
}

HRESULT ScriptPage::startTimer(const Variants& arguments, Variant& result, bool repeats) {
  if (arguments.empty() || arguments[0].asDispatch() == nullptr) return DISP_E_TYPEMISMATCH;
  const auto wait = static_cast<uint64_t>(std::max(integerOf(arguments, 1), 0));
  const uint64_t period = repeats ? std::max(wait, kShortestPeriodMs) : 0;
  timers_[++lastTimer_] = {arguments[0], Host::milliseconds() + wait, period};
  result = Variant::integer(lastTimer_);
  return S_OK;
}

HRESULT ScriptPage::stopTimer(const Variants& arguments) {
  timers_.erase(integerOf(arguments, 0));
  return S_OK;
}

void ScriptPage::runTimers() {
  const uint64_t now = Host::milliseconds();
  std::vector<int32_t> due;
  for (const auto& [number, timer] : timers_) {
    if (timer.due <= now) due.push_back(number);
  }
  for (const int32_t number : due) {
    // One of them may have stopped the others.
    const auto found = timers_.find(number);
    if (found == timers_.end()) continue;
    const Variant function = found->second.function;
    if (found->second.period == 0)
      timers_.erase(found);
    else
      found->second.due = now + found->second.period;
    callFunction(function.asDispatch(), {});
  }
}

}  // namespace Vantrel::Web::Container
