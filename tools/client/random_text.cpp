#include "tools/client/random_text.h"

#include <random>
#include <string_view>

namespace Vantrel::StandIn {

std::string randomHex(size_t digits) {
  constexpr std::string_view kDigits = "0123456789abcdef";
  std::random_device source;
  std::uniform_int_distribution<size_t> pick(0, kDigits.size() - 1);
  std::string text;
  for (size_t i = 0; i < digits; ++i) text += kDigits[pick(source)];
  return text;
}

std::string randomUuid() {
  std::string hex = randomHex(32);
  hex[12] = '4';  // the version
  hex[16] = '8';  // the variant
  return hex.substr(0, 8) + "-" + hex.substr(8, 4) + "-" + hex.substr(12, 4) + "-" +
         hex.substr(16, 4) + "-" + hex.substr(20);
}

}  // namespace Vantrel::StandIn
