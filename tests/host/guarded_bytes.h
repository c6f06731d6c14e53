// Bytes that end where readable memory ends: one byte read behind them faults. The host hands all
// its texts and argument lists over in such memory.
#pragma once

#include <cstddef>
#include <string_view>

namespace Vantrel::Web::Host {

class GuardedBytes {
 public:
  // `size` zeroed bytes, writable. Throws std::bad_alloc.
  explicit GuardedBytes(size_t size);
  explicit GuardedBytes(std::string_view text);
  GuardedBytes(const GuardedBytes&) = delete;
  GuardedBytes& operator=(const GuardedBytes&) = delete;
  GuardedBytes(GuardedBytes&& other) noexcept;
  ~GuardedBytes();

  char* data() const { return data_; }
  size_t size() const { return size_; }

 private:
  void* region_ = nullptr;
  char* data_ = nullptr;
  size_t size_ = 0;
};

}  // namespace Vantrel::Web::Host
