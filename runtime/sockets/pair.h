// The attempts to make a connected pair of sockets. Not part of the public header.
#pragma once

#include <cstdint>

#include "runtime/ov_sockets.h"

namespace ov {

// The step at which an attempt failed, and its code; a null step for success.
struct PairStep {
  const char* name;
  ov_rc code;
};

class PairMaker {
 public:
  PairMaker() = default;
  virtual ~PairMaker() = default;
  PairMaker(const PairMaker&) = delete;
  PairMaker& operator=(const PairMaker&) = delete;

  // Fills both sockets, or neither when a step fails.
  virtual PairStep attempt(ov_sock sockets[2]) = 0;
  virtual void pause(uint32_t milliseconds) = 0;
};

// Attempts it again up to `retries` times while the port is in use. Both sockets are all ones on
// failure.
ov_rc make_pair(PairMaker& maker, ov_sock sockets[2], int32_t retries);

}  // namespace ov
