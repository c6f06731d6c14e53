// What the parameters of the page's element say, against readings one byte at a time. The input is
// the text of one parameter.
#include <cstdint>
#include <cstdlib>
#include <limits>
#include <string>

#include "browsers/shared/element_parameters.h"
#include "service/launch.h"

namespace {

using Vantrel::Web::DropMode;

void check(bool holds) {
  if (!holds) std::abort();
}

// The number that the text begins with, behind blanks; up to its first NUL.
int32_t slowLaunchWait(const std::string& text) {
  using Limits = std::numeric_limits<int32_t>;
  size_t at = 0;
  const auto byte = [&] { return at < text.size() ? text[at] : '\0'; };
  while (byte() == ' ' || (byte() >= '\t' && byte() <= '\r')) ++at;
  const bool negative = byte() == '-';
  if (negative || byte() == '+') ++at;
  int64_t number = 0;
  for (; byte() >= '0' && byte() <= '9'; ++at) {
    if (number <= Limits::max()) number = number * 10 + (byte() - '0');
  }
  if (number == 0) return text == "0" ? 0 : Vantrel::Web::kDefaultLaunchTimeoutMs;
  if (negative) return number > Limits::max() ? Limits::min() : static_cast<int32_t>(-number);
  return number > Limits::max() ? Limits::max() : static_cast<int32_t>(number);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  using namespace Vantrel::Web;
  const std::string text(reinterpret_cast<const char*>(data), size);
  check(launchWaitOf({{"vantrel-launch-wait-timeout-ms", text}}) == slowLaunchWait(text));
  check(launchWaitOf({{text, "5"}}) ==
        (text == "vantrel-launch-wait-timeout-ms" ? 5 : kDefaultLaunchTimeoutMs));
  const DropMode mode = dropModeOf({{"drop-mode", text}});
  check((mode == DropMode::kUpload) == (text == "upload"));
  check((mode == DropMode::kCallback) == (text == "callback"));
  check(parameterOf({{"a", text}}, "a") == text);
  check(parameterIs({{"a", text}}, "a", "true") == (text == "true"));
  return 0;
}
