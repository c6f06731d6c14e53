#include "tests/host/guarded_bytes.h"

#include <windows.h>

#include <cstring>
#include <new>
#include <utility>

namespace Vantrel::Web::Host {

namespace {
constexpr size_t kPage = 4096;
}

GuardedBytes::GuardedBytes(size_t size) : size_(size) {
  const size_t readable = (size + kPage - 1) / kPage * kPage;
  region_ = VirtualAlloc(nullptr, readable + kPage, MEM_RESERVE, PAGE_NOACCESS);
  if (region_ == nullptr) throw std::bad_alloc();
  if (readable != 0 && VirtualAlloc(region_, readable, MEM_COMMIT, PAGE_READWRITE) == nullptr) {
    VirtualFree(region_, 0, MEM_RELEASE);
    throw std::bad_alloc();
  }
  data_ = static_cast<char*>(region_) + readable - size;
}

GuardedBytes::GuardedBytes(std::string_view text) : GuardedBytes(text.size()) {
  if (!text.empty()) std::memcpy(data_, text.data(), text.size());
}

GuardedBytes::GuardedBytes(GuardedBytes&& other) noexcept
    : region_(std::exchange(other.region_, nullptr)),
      data_(std::exchange(other.data_, nullptr)),
      size_(std::exchange(other.size_, 0)) {}

GuardedBytes::~GuardedBytes() {
  if (region_ != nullptr) VirtualFree(region_, 0, MEM_RELEASE);
}

}  // namespace Vantrel::Web::Host
