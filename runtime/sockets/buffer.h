// Moving a whole buffer through a socket within a time. Not part of the public header.
#pragma once

#include <cstdint>

#include "runtime/ov_types.h"

namespace ov {

// How long one wait for a socket takes, and how many of them make a second.
constexpr int32_t kSliceMilliseconds = 10;
constexpr int64_t kSlicesPerSecond = 100;

// One direction of one socket with the caller's buffer. Its operations are those of the system.
class Transport {
 public:
  Transport() = default;
  virtual ~Transport() = default;
  Transport(const Transport&) = delete;
  Transport& operator=(const Transport&) = delete;

  // "read" or "write".
  virtual const char* name() const = 0;
  // Waits one slice: above 0 when the socket is ready, 0 when it is not, below 0 for a failure.
  virtual int32_t wait() = 0;
  // Moves up to `length` bytes at `offset` of the buffer: their number, 0 when the peer has closed,
  // below 0 for a failure.
  virtual int32_t move(uint32_t offset, uint32_t length) = 0;
  // The code of the call that just failed.
  virtual ov_rc code() = 0;
};

// Moves `length` bytes, and tells by `*count` how far it came. 0 also when the time has run out or
// the peer has closed; 0 seconds stand for no limit. 22 for negative seconds or a null count.
ov_rc transfer(Transport& transport, uint32_t length, uint32_t* count, int32_t seconds);

}  // namespace ov
