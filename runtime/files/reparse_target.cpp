#include "runtime/files/reparse_target.h"

#include <cstring>

#include "runtime/ov_errors.h"

namespace ov {
namespace {

constexpr uint32_t kMountPoint = 0xA0000003;
constexpr uint32_t kSymbolicLink = 0xA000000C;
// Of the record: kind, length of what follows, two offsets each with its length. A symbolic link
// has flags before its names.
constexpr size_t kNamesOfMountPoint = 16;
constexpr size_t kNamesOfSymbolicLink = 20;
constexpr size_t kSystemName = 8;
constexpr size_t kShownName = 12;
// In front of a name of the system's own.
constexpr char kSystemMark[] = "\\??\\";
constexpr size_t kSystemMarkLength = sizeof kSystemMark - 1;

template <typename Number>
Number number_at(const uint8_t* record, size_t at) {
  Number number;
  std::memcpy(&number, record + at, sizeof number);
  return number;
}

// A name within the record, in units.
struct Name {
  const uint8_t* bytes = nullptr;
  size_t units = 0;

  uint16_t unit(size_t index) const { return number_at<uint16_t>(bytes, index * sizeof(uint16_t)); }
};

// The name that is told of at `at`; false when it does not lie in the record.
bool read_name(const uint8_t* record, size_t length, size_t names, size_t at, Name* name) {
  const size_t offset = names + number_at<uint16_t>(record, at);
  const size_t bytes = number_at<uint16_t>(record, at + sizeof(uint16_t));
  if (offset > length || bytes > length - offset || bytes % sizeof(uint16_t) != 0) return false;
  *name = {record + offset, bytes / sizeof(uint16_t)};
  return true;
}

void skip_system_mark(Name* name) {
  if (name->units < kSystemMarkLength) return;
  for (size_t i = 0; i < kSystemMarkLength; ++i) {
    if (name->unit(i) != kSystemMark[i]) return;
  }
  name->bytes += kSystemMarkLength * sizeof(uint16_t);
  name->units -= kSystemMarkLength;
}

}  // namespace

ov_rc reparse_target(const uint8_t* record, size_t length, uint16_t* out, size_t size) {
  if (length < kNamesOfMountPoint) return OV_EILLLINK;
  const auto kind = number_at<uint32_t>(record, 0);
  if (kind != kMountPoint && kind != kSymbolicLink) return OV_ENOTALINK;
  const size_t names = kind == kMountPoint ? kNamesOfMountPoint : kNamesOfSymbolicLink;
  Name name;
  if (!read_name(record, length, names, kShownName, &name)) return OV_EILLLINK;
  if (name.units == 0) {
    if (!read_name(record, length, names, kSystemName, &name)) return OV_EILLLINK;
    skip_system_mark(&name);
  }
  if (name.units >= size) return OV_ERANGE;
  for (size_t i = 0; i < name.units; ++i) out[i] = name.unit(i);
  out[name.units] = 0;
  return 0;
}

}  // namespace ov
