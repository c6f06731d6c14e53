// White space as the C locale has it, whatever locale the host program has set.
#pragma once

namespace ov {

constexpr bool is_space(char c) {
  return c == ' ' || (c >= '\t' && c <= '\r');
}

}  // namespace ov
