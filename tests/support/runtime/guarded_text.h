// For tests: text that ends where readable memory ends, so that a read behind it faults even in
// code that sanitizers do not watch.
#pragma once

#include <cstddef>
#include <cstring>
#include <new>
#include <string>

#ifdef _WIN32
#include <windows.h>
#else
#include <sys/mman.h>
#endif

namespace ov {

class GuardedText {
 public:
  // With room for texts of up to `most` bytes, the terminator included.
  explicit GuardedText(size_t most) : readable_((most + kPage - 1) / kPage * kPage) {
#ifdef _WIN32
    void* const region = VirtualAlloc(nullptr, readable_ + kPage, MEM_RESERVE, PAGE_NOACCESS);
    const bool good =
        region != nullptr && VirtualAlloc(region, readable_, MEM_COMMIT, PAGE_READWRITE) != nullptr;
#else
    void* const region =
        mmap(nullptr, readable_ + kPage, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    const bool good =
        region != MAP_FAILED && mprotect(region, readable_, PROT_READ | PROT_WRITE) == 0;
#endif
    if (!good) throw std::bad_alloc();
    region_ = static_cast<char*>(region);
  }
  ~GuardedText() {
#ifdef _WIN32
    VirtualFree(region_, 0, MEM_RELEASE);
#else
    munmap(region_, readable_ + kPage);
#endif
  }
  GuardedText(const GuardedText&) = delete;
  GuardedText& operator=(const GuardedText&) = delete;

  // The bytes as they are, the last one at the end of the readable memory.
  const char* bytes(const std::string& text) {
    char* const start = region_ + readable_ - text.size();
    std::memcpy(start, text.data(), text.size());
    return start;
  }
  // With the terminator at the end.
  const char* terminated(const std::string& text) {
    return bytes(text + '\0');
  }

 private:
  static constexpr size_t kPage = 4096;
  size_t readable_;
  char* region_;
};

}  // namespace ov
