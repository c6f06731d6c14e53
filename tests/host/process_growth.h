// Whether work that is done again and again leaves more and more behind in its process.
#pragma once

#include <cstddef>
#include <functional>
#include <string>

namespace Vantrel::Web::Host {

// What the work may leave each time by design.
struct LeftEachTime {
  size_t blocks = 0;
  size_t bytes = 0;
};

// Does `work`, which has been done before, and tells what grew: threads, handles, graphics objects,
// blocks and bytes of the heaps; empty if nothing did. The system makes some of its own things late
// and once, such as what it keeps for COM; so work that left something is done again, twice at
// most. What it leaves each time shows each time. Any thread.
std::string growthOver(const std::function<void()>& work, const LeftEachTime& kept);

}  // namespace Vantrel::Web::Host
