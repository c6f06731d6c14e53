#include "tests/host/process_growth.h"

#include <array>

#include "tests/host/process_state.h"

namespace Vantrel::Web::Host {

namespace {

constexpr int kTries = 3;

struct Figure {
  const char* name;
  size_t value;
};
using Figures = std::array<Figure, 5>;

Figures figuresNow() {
  const HeapUse heap = heapUse();
  return {Figure{"threads", threadIds().size()}, Figure{"handles", handleCount()},
          Figure{"graphics objects", graphicsObjects()}, Figure{"heap blocks", heap.blocks},
          Figure{"heap bytes", heap.bytes}};
}

std::string growthBetween(const Figures& before, const Figures& after, const LeftEachTime& kept) {
  const std::array<size_t, 5> allowed = {0, 0, 0, kept.blocks, kept.bytes};
  std::string grown;
  for (size_t i = 0; i < before.size(); ++i) {
    if (after[i].value <= before[i].value + allowed[i]) continue;
    grown += std::string(after[i].name) + ": " + std::to_string(before[i].value) + " to " +
             std::to_string(after[i].value) + "\n";
  }
  return grown;
}

}  // namespace

std::string growthOver(const std::function<void()>& work, const LeftEachTime& kept) {
  std::string grown;
  for (int i = 0; i < kTries; ++i) {
    const Figures before = figuresNow();
    work();
    grown = growthBetween(before, figuresNow(), kept);
    if (grown.empty()) break;
  }
  return grown;
}

}  // namespace Vantrel::Web::Host
