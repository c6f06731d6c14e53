#include "core/file_reading.h"

#include <algorithm>
#include <memory>

#include "core/approved_files.h"
#include "core/data_transfer.h"
#include "core/input_file.h"
#include "runtime/ov_log.h"
#include "runtime/ov_strings.h"
#include "text/error_reply.h"
#include "text/error_texts.h"

namespace Vantrel::Web {

namespace {

// Bytes that are read before they are encoded: whole groups of three, so that the texts of the
// pieces join without padding between them.
constexpr uint64_t kPiece = 3ULL << 18;

// What one call reads, and the refusal that it has come to.
struct Reading {
  const std::string& path;
  ov_stat info = {};
  std::string refusal;

  bool refuse(std::string text) {
    refusal = std::move(text);
    return false;
  }
  std::string withPath(const char* text) const { return std::string(text) + ": " + path; }
};

bool checkFile(Reading& reading) {
  const char* const path = reading.path.c_str();
  if (!isFileAllowed(reading.path)) {
    ov_err("%s is not part of authorized list:\n  ", path);
    return reading.refuse(jsonErrorReply(reading.withPath(kErrorFileNotAuthorized)));
  }
  // A path that cannot be examined leaves a record of no type.
  ov_file_stat(path, &reading.info, OV_STAT_IDENTITY);
  if (reading.info.type != OV_TYPE_REGULAR) {
    ov_err("%s is an invalid file:\n  ", path);
    return reading.refuse(jsonErrorReply(reading.withPath(kErrorInvalidFileType)));
  }
  return true;
}

bool refuseSize(Reading& reading, std::string text) {
  ov_err("%s file exceeded max file size - max file size is 50MB  ", reading.path.c_str());
  return reading.refuse(std::move(text));
}

bool refuseRead(Reading& reading, ov_rc code) {
  ov_err("%s file unable to read %d", reading.path.c_str(), code);
  return reading.refuse(reading.withPath(kErrorOpeningFile));
}

// Appends `size` bytes from where the file stands to `result` as base64 text.
bool appendEncoded(Reading& reading, InputFile& file, uint64_t size, std::string& result) {
  const auto room = static_cast<uint32_t>(std::min(size, kPiece));
  const auto piece = std::make_unique_for_overwrite<char[]>(room);
  size_t end = result.size();
  // One more for the terminator that the encoder writes.
  result.resize(end + (size + 2) / 3 * 4 + 1);
  for (uint64_t left = size; left > 0;) {
    const auto wanted = static_cast<uint32_t>(std::min(left, kPiece));
    uint32_t count = 0;
    const ov_rc code = file.read(piece.get(), wanted, &count);
    if (count != wanted) return refuseRead(reading, code);
    if (ov_str_buf_to_base64(piece.get(), count, result.data() + end, result.size() - end) != 0) {
      ov_err("error converting to  base64 %s  ", reading.path.c_str());
      return reading.refuse(kErrorConvertingEncoding);
    }
    end += (uint64_t{count} + 2) / 3 * 4;
    left -= count;
  }
  result.resize(end);
  return true;
}

std::string readSpan(Reading& reading, uint64_t offset, uint64_t size) {
  InputFile file;
  if (const ov_rc code = file.open(reading.path)) {
    ov_err("%s file unable to open %d", reading.path.c_str(), code);
    return reading.withPath(kErrorOpeningFile);
  }
  if (const ov_rc code = offset == 0 ? 0 : file.seek(offset)) {
    refuseRead(reading, code);
    return reading.refusal;
  }
  std::string result = "data:" + mimeTypeOf(reading.path, reading.info) + ";base64,";
  return appendEncoded(reading, file, size, result) ? result : reading.refusal;
}

}  // namespace

std::string readAsArrayBuffer(const std::string& path) {
  Reading reading{path, {}, {}};
  if (!checkFile(reading)) return reading.refusal;
  if (reading.info.size > kMaxWholeFile) {
    refuseSize(reading, reading.withPath(kErrorFileTooLarge));
    return reading.refusal;
  }
  return readSpan(reading, 0, reading.info.size);
}

std::string readChunkAsArrayBuffer(const std::string& path, uint64_t offset, uint64_t chunkSize) {
  Reading reading{path, {}, {}};
  if (!checkFile(reading)) return reading.refusal;
  // Without a sum, which could overflow.
  const uint64_t size = reading.info.size;
  if (chunkSize == 0 || chunkSize > size || offset > size - chunkSize) {
    refuseSize(reading, kErrorChunkRange);
    return reading.refusal;
  }
  return readSpan(reading, offset, chunkSize);
}

}  // namespace Vantrel::Web
