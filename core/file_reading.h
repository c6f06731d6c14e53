// What a page may read of the files that the user chose, as data URLs. Browser's thread only, which
// is blocked for the read.
//
// Both give "data:<type>;base64,<bytes>" or, behind one line in the error log, a text that says
// why not: an error reply for a file that is not approved or no regular file, a bare text for the
// rest. A result that memory cannot hold is a std::bad_alloc or std::length_error.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

namespace Vantrel::Web {

// The most that is read at once: 50 MiB.
inline constexpr uint64_t kMaxWholeFile = 50ULL << 20;

// Where a result is built, so that a front end gets it in the memory that it hands to the page.
class TextRoom {
 public:
  // Room for a text of `length` bytes, with a terminator behind it, in place of what was given
  // before. Throws when there is none.
  virtual char* take(size_t length) = 0;

 protected:
  TextRoom() = default;
  TextRoom(const TextRoom&) = default;
  TextRoom& operator=(const TextRoom&) = default;
  ~TextRoom() = default;
};

void readAsArrayBuffer(const std::string& path, TextRoom& result);
std::string readAsArrayBuffer(const std::string& path);

// `chunkSize` bytes from `offset` on, which must be in the file; a chunk has no limit of its own.
void readChunkAsArrayBuffer(const std::string& path, uint64_t offset, uint64_t chunkSize,
                            TextRoom& result);
std::string readChunkAsArrayBuffer(const std::string& path, uint64_t offset, uint64_t chunkSize);

}  // namespace Vantrel::Web
