// The events that a page gets through its `eventHandler`, from either face. Constant data.
#pragma once

#include <array>
#include <cstddef>

namespace Vantrel::Web {

enum class PageEvent { kDrop = 0, kDropEx = 1, kTransfer = 2, kDragLeave = 3, kDragOver = 4 };

// The event's name as the page sees it.
constexpr const char* pageEventName(PageEvent event) {
  constexpr std::array<const char*, 5> kNames = {"drop", "dropex", "transfer", "dragleave",
                                                 "dragover"};
  return kNames[static_cast<size_t>(event)];
}

}  // namespace Vantrel::Web
