#include "core/file_reading.h"

#include <algorithm>
#include <memory>
#include <utility>

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
  ov_file_stat(path, &reading.info, 0);
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

// The length of the text that stands for `size` bytes.
uint64_t encodedLength(uint64_t size) {
  return size / 3 * 4 + (size % 3 != 0 ? 4 : 0);
}

// Writes `size` bytes from where the file stands to `text`, as base64 and with a terminator.
bool encode(Reading& reading, InputFile& file, uint64_t size, char* text) {
  const auto room = static_cast<uint32_t>(std::min(size, kPiece));
  const auto piece = std::make_unique_for_overwrite<char[]>(room);
  for (uint64_t left = size; left > 0;) {
    const auto wanted = static_cast<uint32_t>(std::min(left, kPiece));
    const size_t length = encodedLength(wanted);
    uint32_t count = 0;
    const ov_rc code = file.read(piece.get(), wanted, &count);
    if (count != wanted) return refuseRead(reading, code);
    if (ov_str_buf_to_base64(piece.get(), count, text, length + 1) != 0) {
      ov_err("error converting to  base64 %s  ", reading.path.c_str());
      return reading.refuse(kErrorConvertingEncoding);
    }
    text += length;
    left -= count;
  }
  return true;
}

bool readSpan(Reading& reading, uint64_t offset, uint64_t size, TextRoom& result) {
  InputFile file;
  if (const ov_rc code = file.open(reading.path)) {
    ov_err("%s file unable to open %d", reading.path.c_str(), code);
    return reading.refuse(reading.withPath(kErrorOpeningFile));
  }
  const std::string begin = "data:" + mimeTypeOf(file, reading.info) + ";base64,";
  if (const ov_rc code = file.seek(offset)) return refuseRead(reading, code);
  // A file holds no more than 63 bits can count, so the sum does not overflow.
  char* const text = result.take(begin.size() + encodedLength(size));
  return encode(reading, file, size, begin.copy(text, begin.size()) + text);
}

// Puts the refusal in place of what was built.
void finish(const Reading& reading, bool read, TextRoom& result) {
  if (read) return;
  reading.refusal.copy(result.take(reading.refusal.size()), reading.refusal.size());
}

class StringRoom final : public TextRoom {
 public:
  char* take(size_t length) override {
    text.resize(length);
    return text.data();
  }

  std::string text;
};

}  // namespace

void readAsArrayBuffer(const std::string& path, TextRoom& result) {
  Reading reading{path, {}, {}};
  const auto read = [&] {
    if (!checkFile(reading)) return false;
    const uint64_t size = reading.info.size;
    if (size > kMaxWholeFile) return refuseSize(reading, reading.withPath(kErrorFileTooLarge));
    return readSpan(reading, 0, size, result);
  };
  finish(reading, read(), result);
}

std::string readAsArrayBuffer(const std::string& path) {
  StringRoom room;
  readAsArrayBuffer(path, room);
  return std::move(room.text);
}

void readChunkAsArrayBuffer(const std::string& path, uint64_t offset, uint64_t chunkSize,
                            TextRoom& result) {
  Reading reading{path, {}, {}};
  const auto read = [&] {
    if (!checkFile(reading)) return false;
    // Without a sum, which could overflow.
    const uint64_t size = reading.info.size;
    if (chunkSize == 0 || chunkSize > size || offset > size - chunkSize) {
      return refuseSize(reading, kErrorChunkRange);
    }
    return readSpan(reading, offset, chunkSize, result);
  };
  finish(reading, read(), result);
}

std::string readChunkAsArrayBuffer(const std::string& path, uint64_t offset, uint64_t chunkSize) {
  StringRoom room;
  readChunkAsArrayBuffer(path, offset, chunkSize, room);
  return std::move(room.text);
}

}  // namespace Vantrel::Web
