#include "core/approved_files.h"

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstring>
#include <mutex>
#include <stdexcept>
#include <string_view>
#include <vector>

#include "runtime/ov_log.h"
#include "text/text.h"

namespace Vantrel::Web {

namespace {

constexpr uint64_t kHashFactor = 0x9E3779B97F4A7C15U;

// Goes on over the whole words of eight bytes that the text has.
ApprovedPrefix overWords(ApprovedPrefix from, std::string_view text) {
  for (uint64_t word = 0; text.size() - from.bytes >= sizeof word; from.bytes += sizeof word) {
    std::memcpy(&word, text.data() + from.bytes, sizeof word);
    from.state = std::rotl(from.state ^ word, 29) * kHashFactor;
  }
  return from;
}

uint64_t hashOf(std::string_view text, const ApprovedPrefix& prefix) {
  const ApprovedPrefix words = overWords(prefix, text);
  uint64_t rest = 0;
  std::memcpy(&rest, text.data() + words.bytes, text.size() - words.bytes);
  const uint64_t hash = (std::rotl(words.state ^ rest, 29) ^ text.size()) * kHashFactor;
  return hash ^ (hash >> 32);
}

// A set of texts that only grows. The texts lie one behind the other and the table holds where, so
// that a look-up touches two places of memory; a page may ask for 100,000 paths at once.
class PathSet {
 public:
  bool contains(std::string_view path, const ApprovedPrefix& prefix) const {
    return !slots_.empty() && slots_[slotOf(path, prefix)].length != kFree;
  }
  void insert(std::string_view path) {
    if (count_ * 2 >= slots_.size()) grow();
    Slot& slot = slots_[slotOf(path)];
    if (slot.length != kFree) return;
    const size_t start = texts_.size();
    texts_.append(path);
    slot = {start, path.size()};
    ++count_;
  }

 private:
  static constexpr size_t kFree = std::string::npos;
  static constexpr size_t kFirstSize = 64;  // a power of two, as every size is

  struct Slot {
    size_t start = 0;
    size_t length = kFree;
  };

  std::string_view textOf(const Slot& slot) const {
    return std::string_view(texts_).substr(slot.start, slot.length);
  }
  // The slot of the path, or the free one where it belongs; at least half of the slots are free.
  size_t slotOf(std::string_view path, const ApprovedPrefix& prefix = {}) const {
    const size_t mask = slots_.size() - 1;
    size_t at = hashOf(path, prefix.bytes <= path.size() ? prefix : ApprovedPrefix()) & mask;
    while (slots_[at].length != kFree && textOf(slots_[at]) != path) at = (at + 1) & mask;
    return at;
  }
  void grow() {
    std::vector<Slot> former(std::max(kFirstSize, slots_.size() * 2));
    former.swap(slots_);
    for (const Slot& slot : former) {
      if (slot.length != kFree) slots_[slotOf(textOf(slot))] = slot;
    }
  }

  std::vector<Slot> slots_;
  std::string texts_;
  size_t count_ = 0;
};

// Guards the list: controls of several apartments share it.
std::mutex approvedMutex;

// Made by the first approval and never destroyed: while a process ends under a dialog that it
// shows, the destructors of statics run first. No local static, whose making leaves handles of the
// C++ runtime behind at an unload.
PathSet* approvedFileList = nullptr;

bool isApproved(std::string_view path, const ApprovedPrefix& prefix) {
  const std::lock_guard<std::mutex> lock(approvedMutex);
  return approvedFileList != nullptr && approvedFileList->contains(path, prefix);
}

void approve(std::string_view path) {
  OV_DEBUG("PlugIn::addToApprovedFileList() - added path to allowed list %s",
           std::string(path).c_str());
  const std::lock_guard<std::mutex> lock(approvedMutex);
  if (approvedFileList == nullptr) approvedFileList = new PathSet;
  approvedFileList->insert(path);
}

void noteRefusal(const std::string& path) {
  OV_DEBUG("PlugIn::isFileAllowed() - path is not allowed %s", path.c_str());
}

// `path` must have forward slashes only.
std::string_view withoutTrailingSlash(std::string_view path) {
  if (path.empty()) throw std::out_of_range("invalid string position");
  if (path.back() == '/') path.remove_suffix(1);
  return path;
}

}  // namespace

void addToApprovedFileList(const std::vector<std::string>& paths) {
  for (const std::string& path : paths) {
    const std::string normal = forwardSlashes(path);
    approve(withoutTrailingSlash(normal));
  }
}

bool isFileAllowed(const std::string& path) {
  // Most paths come with forward slashes already.
  const bool found = path.find('\\') == std::string::npos
                         ? isApproved(withoutTrailingSlash(path), {})
                         : isApproved(withoutTrailingSlash(forwardSlashes(path)), {});
  if (!found) noteRefusal(path);
  return found;
}

ApprovedPrefix prefixOf(std::string_view root) {
  return overWords({}, root);
}

bool isJoinedFileAllowed(const std::string& path, const ApprovedPrefix& root) {
  const bool found = isApproved(withoutTrailingSlash(path), root);
  if (!found) noteRefusal(path);
  return found;
}

}  // namespace Vantrel::Web
