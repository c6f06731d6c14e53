// What a page learns of the files that the user chose: the dataTransfer document for a list of
// paths, types, and spans of bytes. The files are the input's; the answers are compared with the
// same rules without economy.
#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <string>
#include <vector>

#include "core/approved_files.h"
#include "core/data_transfer.h"
#include "core/file_reading.h"
#include "core/mime_sniffer.h"
#include "tests/support/runtime/encodings_reference.h"

namespace {

using Vantrel::Web::addToApprovedFileList;
using Vantrel::Web::dataTransferJson;
using Vantrel::Web::kMaxWholeFile;
using Vantrel::Web::readAsArrayBuffer;
using Vantrel::Web::readChunkAsArrayBuffer;

// More than this is not asked of a file that claims to hold it.
constexpr uint64_t kMostRead = 1 << 16;
constexpr uint64_t kSniffed = 256;
constexpr char kRefusedSize[] = "Exceeded maximum allowed file size: ";
constexpr char kRefusedRange[] =
    "Offset and chunk size cannot be negative, and the sum can't be greater than the file size";
constexpr char kRefusedRead[] = "Unable to open file: ";
constexpr char kRefusedType[] = "Invalid file type: ";

void check(bool holds) {
  if (!holds) std::abort();
}

// The one file that every path leads to.
struct FakeFile {
  ov_stat record = {};
  std::string content;  // which may be shorter or longer than the record says
  uint32_t piece = 1;   // the most that a read gives
  bool opens = true;
  bool reads = true;
  uint64_t at = 0;
};
FakeFile file;

// The numbers at the input's begin; zeros where it has ended.
class Input {
 public:
  Input(const uint8_t* data, size_t size) : data_(data), size_(size) {}

  template <class Number>
  Number number() {
    Number value = 0;
    const size_t taken = std::min(size_, sizeof value);
    std::memcpy(&value, data_, taken);
    skip(taken);
    return value;
  }
  std::string rest() const { return {reinterpret_cast<const char*>(data_), size_}; }

 private:
  void skip(size_t count) {
    data_ += count;
    size_ -= count;
  }

  const uint8_t* data_;
  size_t size_;
};

std::string slowType() {
  if (file.record.type == OV_TYPE_DIRECTORY) return "text/directory";
  if (!file.opens || !file.reads) return "";
  const std::string begin = file.content.substr(0, kSniffed);
  if (begin.empty() || (begin.size() != kSniffed && begin.size() != file.record.size)) return "";
  return Vantrel::Web::sniffMimeType(begin);
}

std::string slowEntry(const std::string& path) {
  std::string entry = "{";
  const auto time = static_cast<std::time_t>(file.record.modified);
  if (const char* const date = time < 0 ? nullptr : std::ctime(&time); date != nullptr) {
    entry += "\"lastModifiedDate\":\"" + std::string(date, std::strlen(date) - 1) + "\",";
  }
  entry += "\"name\":\"";
  for (const char c : path) entry += c == '\\' ? std::string("\\\\") : std::string(1, c);
  const uint64_t size = file.record.type == OV_TYPE_DIRECTORY ? 0 : file.record.size;
  return entry + "\",\"size\":" + std::to_string(size) + ",\"type\":\"" + slowType() + "\"}";
}

void describe(const std::vector<std::string>& paths) {
  std::string expected;
  for (const std::string& path : paths) expected += (expected.empty() ? "" : ",") + slowEntry(path);
  check(dataTransferJson(paths) == R"({"dataTransfer":{"files":[)" + expected + "]}}");
}

std::string slowSpan(const std::string& path, uint64_t offset, uint64_t size) {
  const std::string span =
      offset < file.content.size() ? file.content.substr(offset, size) : std::string();
  if (!file.opens || (size > 0 && (!file.reads || span.size() != size))) return kRefusedRead + path;
  return "data:" + slowType() + ";base64," +
         ov::reference::slow_encode(span, ov::reference::kStandardAlphabet, true);
}

void read(const std::string& path, uint64_t offset, uint64_t chunkSize) {
  const bool regular = file.record.type == OV_TYPE_REGULAR;
  const uint64_t size = file.record.size;
  // A file of this size is read; one that claims to hold more would take that much memory.
  if (!regular || size <= kMostRead || size > kMaxWholeFile) {
    const std::string whole = readAsArrayBuffer(path);
    if (!regular) {
      check(whole.find(kRefusedType + path) != std::string::npos);
    } else {
      check(whole == (size > kMaxWholeFile ? kRefusedSize + path : slowSpan(path, 0, size)));
    }
  }
  if (!regular) return;
  __extension__ using Wide = unsigned __int128;
  const bool inside = chunkSize != 0 && Wide{offset} + chunkSize <= size;
  if (inside && chunkSize > kMostRead) return;
  const std::string chunk = readChunkAsArrayBuffer(path, offset, chunkSize);
  check(chunk == (inside ? slowSpan(path, offset, chunkSize) : kRefusedRange));
}

std::vector<std::string> linesOf(const std::string& text) {
  std::vector<std::string> lines;
  for (size_t at = 0; at <= text.size();) {
    const size_t end = std::min(text.find('\n', at), text.size());
    lines.push_back(text.substr(at, end - at));
    at = end + 1;
  }
  return lines;
}

}  // namespace

extern "C" {
ov_rc __wrap_ov_file_stat(const char*, ov_stat* record, int32_t) {
  *record = file.record;
  return 0;
}
ov_rc __wrap_ov_file_openread(const char*, ov_file*) {
  file.at = 0;
  return file.opens ? 0 : 5;
}
ov_rc __wrap_ov_file_close(ov_file*) {
  return 0;
}
ov_rc __wrap_ov_file_seek(ov_file*, int64_t offset, int32_t) {
  file.at = static_cast<uint64_t>(offset);
  return 0;
}
ov_rc __wrap_ov_file_read(ov_file*, void* buffer, uint32_t length, uint32_t* count) {
  if (!file.reads) return 5;
  const uint64_t left = file.content.size() - std::min<uint64_t>(file.at, file.content.size());
  *count = static_cast<uint32_t>(std::min<uint64_t>({left, length, file.piece}));
  if (*count != 0) std::memcpy(buffer, file.content.data() + file.at, *count);
  file.at += *count;
  return 0;
}
}

// Numbers of the file, then paths a line each, an empty line, and what the file holds.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  Input input(data, size);
  const auto flags = input.number<uint8_t>();
  file.opens = (flags & 1) == 0;
  file.reads = (flags & 2) == 0;
  file.record.type = (flags & 4) != 0 ? OV_TYPE_DIRECTORY : (flags & 8) != 0 ? 0 : OV_TYPE_REGULAR;
  file.piece = input.number<uint16_t>() + uint32_t{1};
  file.record.modified = input.number<int64_t>();
  const auto claimed = input.number<uint64_t>();
  const auto offset = input.number<uint64_t>();
  const auto chunkSize = input.number<uint64_t>();
  const std::string rest = input.rest();
  const size_t gap = std::min(rest.find("\n\n"), rest.size());
  file.content = rest.substr(std::min(gap + 2, rest.size()));
  file.record.size = (flags & 16) != 0 ? claimed : file.content.size();
  const std::vector<std::string> paths = linesOf(rest.substr(0, gap));
  describe(paths);
  const std::string& path = paths.front();
  if (path.empty() || path.find('\0') != std::string::npos) return 0;
  addToApprovedFileList({path});
  read(path, offset, chunkSize);
  return 0;
}
