#include "core/data_transfer.h"

#include <ctime>
#include <string_view>

#include "core/mime_sniffer.h"
#include "runtime/ov_log.h"
#include "text/text.h"

namespace Vantrel::Web {

namespace {

constexpr uint32_t kSniffedBytes = 256;
constexpr char kDirectoryType[] = "text/directory";

// "Wed Jan 02 02:03:55 1980"; empty for a time that the library cannot tell. The platform's refuses
// what is before 1970, and so do we wherever this builds.
std::string_view dateText(int64_t seconds) {
  const auto time = static_cast<std::time_t>(seconds);
  const char* const text = seconds < 0 ? nullptr : std::ctime(&time);
  if (text == nullptr) return {};
  const std::string_view line = text;
  return line.substr(0, line.find('\n'));
}

void appendEntry(std::string& json, const std::string& path) {
  ov_stat info = {};
  ov_file_stat(path.c_str(), &info, 0);
  json += '{';
  if (const std::string_view date = dateText(info.modified); !date.empty()) {
    json.append(R"("lastModifiedDate":")").append(date).append("\",");
  }
  const uint64_t size = info.type == OV_TYPE_DIRECTORY ? 0 : info.size;
  json.append("\"name\":").append(quotePath(path, true));
  json.append(",\"size\":").append(std::to_string(size));
  json.append(R"(,"type":")").append(mimeTypeOf(path, info)).append("\"}");
}

}  // namespace

std::string dataTransferJson(const std::vector<std::string>& paths) {
  std::string json = R"({"dataTransfer":{"files":[)";
  bool first = true;
  for (const std::string& path : paths) {
    if (!first) json += ',';
    first = false;
    appendEntry(json, path);
  }
  return json.append("]}}");
}

std::string mimeTypeOf(const std::string& path, const ov_stat& info) {
  if (info.type == OV_TYPE_DIRECTORY) return kDirectoryType;
  InputFile file;
  if (const ov_rc code = file.open(path)) {
    ov_err("fopen failed for file %s, error %d", path.c_str(), code);
    return {};
  }
  return mimeTypeOf(file, info);
}

std::string mimeTypeOf(InputFile& file, const ov_stat& info) {
  char begin[kSniffedBytes] = {};
  uint32_t count = 0;
  file.read(begin, kSniffedBytes, &count);
  if (count == 0 || (count != kSniffedBytes && count != info.size)) return {};
  return sniffMimeType({begin, count});
}

}  // namespace Vantrel::Web
