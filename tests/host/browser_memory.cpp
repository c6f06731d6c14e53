#include "tests/host/browser_memory.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>

namespace Vantrel::Web::Host {

namespace {

constexpr size_t kGuard = 32;
constexpr unsigned char kGuardByte = 0xFD;
constexpr unsigned char kFreshByte = 0xCD;
constexpr unsigned char kFreedByte = 0xDD;
constexpr size_t kFreedBlocksKept = 512;

bool allBytesAre(const unsigned char* bytes, size_t count, unsigned char value) {
  return std::all_of(bytes, bytes + count, [value](unsigned char byte) { return byte == value; });
}

unsigned char* startOf(void* block) {
  return static_cast<unsigned char*>(block) - kGuard;
}

bool guardsIntact(void* block, uint32_t size) {
  const unsigned char* start = startOf(block);
  return allBytesAre(start, kGuard, kGuardByte) &&
         allBytesAre(start + kGuard + size, kGuard, kGuardByte);
}

}  // namespace

BrowserMemory::BrowserMemory(Faults& faults) : faults_(faults) {}

BrowserMemory::~BrowserMemory() {
  for (const auto& [block, record] : live_) std::free(startOf(block));
  for (const FreedBlock& block : freed_) std::free(block.memory);
}

void* BrowserMemory::allocate(uint32_t size, std::string_view label) {
  const std::lock_guard<std::mutex> guard(mutex_);
  if (label == kPluginBlock && successesBeforeFailure_ >= 0 && successesBeforeFailure_-- == 0) {
    return nullptr;
  }
  auto* start = static_cast<unsigned char*>(std::malloc(size + 2 * kGuard));
  if (start == nullptr) return nullptr;
  std::memset(start, kGuardByte, kGuard);
  std::memset(start + kGuard, kFreshByte, size);
  std::memset(start + kGuard + size, kGuardByte, kGuard);
  void* block = start + kGuard;
  live_.emplace(block, Block{size, std::string(label)});
  return block;
}

char* BrowserMemory::copyText(std::string_view text, std::string_view label) {
  void* block = allocate(static_cast<uint32_t>(text.size()), label);
  if (block != nullptr) std::memcpy(block, text.data(), text.size());
  return static_cast<char*>(block);
}

void BrowserMemory::free(void* block) {
  if (block == nullptr) return;
  const std::lock_guard<std::mutex> guard(mutex_);
  const auto found = live_.find(block);
  if (found == live_.end()) {
    faults_.add("NPN_MemFree of a block that is not live");
    return;
  }
  retire(found);
}

void BrowserMemory::retire(std::map<void*, Block>::iterator block) {
  if (!guardsIntact(block->first, block->second.size)) {
    faults_.add("guard bytes damaged around a block of " + block->second.label);
  }
  const FreedBlock freed{startOf(block->first), block->second.size};
  std::memset(freed.memory, kFreedByte, freed.size + 2 * kGuard);
  live_.erase(block);
  freed_.push_back(freed);
  if (freed_.size() <= kFreedBlocksKept) return;
  checkFreed(freed_.front());
  std::free(freed_.front().memory);
  freed_.pop_front();
}

void BrowserMemory::checkFreed(const FreedBlock& block) {
  if (!allBytesAre(block.memory, block.size + 2 * kGuard, kFreedByte)) {
    faults_.add("a freed block of browser memory was written to");
  }
}

void BrowserMemory::failAllocationAfter(int successes) {
  const std::lock_guard<std::mutex> guard(mutex_);
  successesBeforeFailure_ = successes;
}

bool BrowserMemory::covers(const void* text, size_t length) const {
  const std::lock_guard<std::mutex> guard(mutex_);
  const auto* wanted = static_cast<const char*>(text);
  return std::any_of(live_.begin(), live_.end(), [&](const auto& entry) {
    const char* start = static_cast<const char*>(entry.first);
    return wanted >= start && wanted + length <= start + entry.second.size;
  });
}

int BrowserMemory::live() const {
  const std::lock_guard<std::mutex> guard(mutex_);
  return static_cast<int>(live_.size());
}

int BrowserMemory::live(std::string_view label) const {
  const std::lock_guard<std::mutex> guard(mutex_);
  return static_cast<int>(std::count_if(live_.begin(), live_.end(), [label](const auto& entry) {
    return entry.second.label == label;
  }));
}

int BrowserMemory::freeAll(std::string_view label) {
  const std::lock_guard<std::mutex> guard(mutex_);
  int count = 0;
  for (auto block = live_.begin(); block != live_.end();) {
    const auto next = std::next(block);
    if (block->second.label == label) {
      retire(block);
      ++count;
    }
    block = next;
  }
  return count;
}

void BrowserMemory::check() {
  const std::lock_guard<std::mutex> guard(mutex_);
  for (const auto& [block, record] : live_) {
    if (!guardsIntact(block, record.size)) {
      faults_.add("guard bytes damaged around a block of " + record.label);
    }
  }
  for (const FreedBlock& block : freed_) checkFreed(block);
}

}  // namespace Vantrel::Web::Host
