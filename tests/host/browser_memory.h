// The browser's memory, NPN_MemAlloc and NPN_MemFree: a ledger of every block, guard bytes on both
// sides, freed blocks kept for a while so that a late write into them is seen. Any thread may call;
// a call of the plug-in off the browser's thread is the call log's business.
#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <map>
#include <mutex>
#include <string>
#include <string_view>

#include "tests/host/faults.h"

namespace Vantrel::Web::Host {

// Who made a block: the plug-in, or the browser for one of its own purposes.
inline constexpr char kPluginBlock[] = "plug-in";

class BrowserMemory {
 public:
  explicit BrowserMemory(Faults& faults);
  BrowserMemory(const BrowserMemory&) = delete;
  BrowserMemory& operator=(const BrowserMemory&) = delete;
  ~BrowserMemory();

  // A block of `size` bytes filled with 0xCD, or null when this allocation is told to fail. `label`
  // says what it is for; the ledger counts blocks by label.
  void* allocate(uint32_t size, std::string_view label);
  // Counted text in a block of its own, without a closing NUL.
  char* copyText(std::string_view text, std::string_view label);
  // Null does nothing. A block that is not live, or whose guard bytes are damaged, is a fault.
  void free(void* block);

  // The allocation of the plug-in after `successes` more of them returns null, once.
  void failAllocationAfter(int successes);

  // True when `length` bytes from `text` on lie in one live block.
  bool covers(const void* text, size_t length) const;
  // Live blocks, all or of one label.
  int live() const;
  int live(std::string_view label) const;
  // Frees the live blocks of one label, as a browser does with what it owns itself. Returns how
  // many.
  int freeAll(std::string_view label);
  // Checks the guard bytes of all live blocks and the filling of the freed ones.
  void check();

 private:
  struct Block {
    uint32_t size;
    std::string label;
  };
  struct FreedBlock {
    unsigned char* memory;
    uint32_t size;
  };

  void retire(std::map<void*, Block>::iterator block);
  void checkFreed(const FreedBlock& block);

  Faults& faults_;
  mutable std::mutex mutex_;  // guards everything below
  std::map<void*, Block> live_;
  std::deque<FreedBlock> freed_;
  int successesBeforeFailure_ = -1;
};

}  // namespace Vantrel::Web::Host
