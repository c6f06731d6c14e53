// What a page may read of the files that the user chose, as data URLs. Browser's thread only, which
// is blocked for the read.
//
// Both return "data:<type>;base64,<bytes>" or, behind one line in the error log, a text that says
// why not: an error reply for a file that is not approved or no regular file, a bare text for the
// rest. A result that memory cannot hold is a std::bad_alloc or std::length_error.
#pragma once

#include <cstdint>
#include <string>

namespace Vantrel::Web {

// The most that is read at once: 50 MiB.
inline constexpr uint64_t kMaxWholeFile = 50ULL << 20;

std::string readAsArrayBuffer(const std::string& path);

// `chunkSize` bytes from `offset` on, which must be in the file; a chunk has no limit of its own.
std::string readChunkAsArrayBuffer(const std::string& path, uint64_t offset, uint64_t chunkSize);

}  // namespace Vantrel::Web
