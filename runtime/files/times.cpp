#include "runtime/files/times.h"

namespace ov {
namespace {

constexpr int64_t kUnitsPerSecond = 10000000;
constexpr int64_t kSecondsTo1970 = 11644473600;
// The platform reads the number as signed.
constexpr int64_t kLatest = INT64_MAX / kUnitsPerSecond - kSecondsTo1970;

}  // namespace

bool filetime_of(int64_t seconds, uint64_t* filetime) {
  if (seconds <= -kSecondsTo1970 || seconds > kLatest) return false;
  *filetime = static_cast<uint64_t>((seconds + kSecondsTo1970) * kUnitsPerSecond);
  return true;
}

}  // namespace ov
