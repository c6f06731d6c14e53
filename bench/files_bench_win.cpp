// What a page's files cost: reads, the description of a drop, and the element's picture. The core
// and the picture are linked, because a page approves nothing by itself; a text is built in the
// memory that the browser would hand over.
// - a whole file of 50 MiB / reading it and copying its bytes; and the memory that the call takes;
// - a file in chunks of 1 MiB / opening, reading and encoding each by the bare platform and the
//   encoder alone;
// - dataTransferJson / looking at each file, opening it and reading its first 256 bytes;
// - a repaint of a picture in a window of another size / a bare BitBlt of as many points.
// usage: files_bench [peak]

#include <windows.h>

#include <ole2.h>
// Behind ole2.h, whose PROPID it needs.
#include <gdiplus.h>
#include <psapi.h>
#include <sys/stat.h>

#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <memory>
#include <new>
#include <string>
#include <vector>

#include "bench/bench.h"
#include "bench/child_win.h"
#include "browsers/shared/picture_win.h"
#include "core/approved_files.h"
#include "core/data_transfer.h"
#include "core/file_reading.h"
#include "runtime/ov_strings.h"
#include "tests/support/runtime/temp_folder.h"
#include "text/wide_text.h"

namespace Vantrel::Web::Bench {
namespace {

using ov::TempFolder;

constexpr int kTurns = 15;
constexpr int kDescribeTurns = 5;
constexpr int kPaintTurns = 201;
constexpr int kPaintsInTurn = 20;
constexpr int kPeakTurns = 3;
constexpr size_t kWhole = size_t{50} << 20;
constexpr size_t kChunk = size_t{1} << 20;
constexpr size_t kFiles = 1000;
constexpr size_t kPaths = 10000;
constexpr DWORD kSniffed = 256;
constexpr char kPeak[] = "peak";

struct Free {
  void operator()(char* block) const { std::free(block); }
};
using Block = std::unique_ptr<char, Free>;

Block blockOf(size_t size) {
  Block block(static_cast<char*>(std::malloc(size)));
  if (!block) throw std::bad_alloc();
  return block;
}

// The browser's part: a block for the text.
class BlockRoom final : public TextRoom {
 public:
  char* take(size_t length) override {
    block_ = blockOf(length + 1);
    return block_.get();
  }
  char first() const { return *block_; }

 private:
  Block block_;
};

std::string filledFile(const TempFolder& folder, const char* name, size_t size) {
  std::string content(size, '\0');
  uint32_t state = 1;
  for (char& byte : content) {
    state = state * 1664525 + 1013904223;
    byte = static_cast<char>(state >> 24);
  }
  std::string path = folder.path(name);
  TempFolder::write(path, content);
  addToApprovedFileList({path});
  return path;
}

class OpenFile {
 public:
  explicit OpenFile(const std::wstring& path)
      : handle_(CreateFileW(path.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING,
                            FILE_ATTRIBUTE_NORMAL, nullptr)) {
    require(handle_ != INVALID_HANDLE_VALUE, "CreateFileW");
  }
  ~OpenFile() { CloseHandle(handle_); }
  OpenFile(const OpenFile&) = delete;
  OpenFile& operator=(const OpenFile&) = delete;

  DWORD read(char* buffer, size_t size) const {
    DWORD count = 0;
    require(ReadFile(handle_, buffer, static_cast<DWORD>(size), &count, nullptr) != FALSE,
            "ReadFile");
    return count;
  }
  void seek(uint64_t offset) const {
    LARGE_INTEGER distance;
    distance.QuadPart = static_cast<LONGLONG>(offset);
    require(SetFilePointerEx(handle_, distance, nullptr, FILE_BEGIN) != FALSE, "SetFilePointerEx");
  }

 private:
  const HANDLE handle_;
};

void wholeRow(const std::string& path) {
  const std::wstring wide = toWide(path);
  const auto page = [&path] {
    BlockRoom room;
    readAsArrayBuffer(path, room);
    require(room.first() == 'd', "the file");
  };
  const auto bare = [&wide] {
    const Block content = blockOf(kWhole);
    require(OpenFile(wide).read(content.get(), kWhole) == kWhole, "the content");
    const Block copy = blockOf(kWhole);
    std::memcpy(copy.get(), content.get(), kWhole);
    keep(copy);
  };
  printRow("readAsArrayBuffer of 50 MiB / read and memcpy", ratio(kTurns, page, bare),
           Aim::atMost(2.5));
}

void chunksRow(const std::string& path) {
  const std::wstring wide = toWide(path);
  const auto page = [&path] {
    for (size_t at = 0; at < kWhole; at += kChunk) {
      BlockRoom room;
      readChunkAsArrayBuffer(path, at, kChunk, room);
      require(room.first() == 'd', "the chunk");
    }
  };
  const auto bare = [&wide] {
    for (size_t at = 0; at < kWhole; at += kChunk) {
      const Block content = blockOf(kChunk);
      const OpenFile file(wide);
      file.seek(at);
      require(file.read(content.get(), kChunk) == kChunk, "the content");
      const size_t room = (kChunk + 2) / 3 * 4 + 1;
      const Block text = blockOf(room);
      require(ov_str_buf_to_base64(content.get(), kChunk, text.get(), room) == 0, "base64");
    }
  };
  printRow("chunks of 1 MiB of 50 MiB / bare reads and base64", ratio(kTurns, page, bare),
           Aim::atMost(1.3));
}

void describeRow(const TempFolder& folder) {
  std::vector<std::string> paths;
  for (size_t i = 0; i < kFiles; ++i) {
    const std::string path = folder.path(std::to_string(i) + ".txt");
    TempFolder::write(path, std::string(1000, 'x'));
    paths.push_back(path);
  }
  while (paths.size() < kPaths) paths.push_back(paths[paths.size() - kFiles]);
  const auto page = [&paths] { require(dataTransferJson(paths).size() > kPaths, "the document"); };
  const auto bare = [&paths] {
    for (const std::string& path : paths) {
      const std::wstring wide = toWide(path);
      struct _stat64 status = {};
      require(_wstat64(wide.c_str(), &status) == 0, "_wstat64");
      char begin[kSniffed];
      require(OpenFile(wide).read(begin, kSniffed) == kSniffed, "the first bytes");
    }
  };
  printRow("dataTransferJson of 10,000 paths / stat, open and read",
           ratio(kDescribeTurns, page, bare), Aim::atMost(1.3));
}

// A bitmap file of 24 bits for each point.
std::string bitmapFile(LONG width, LONG height) {
  BITMAPFILEHEADER file = {};
  BITMAPINFOHEADER info = {};
  file.bfType = 0x4D42;
  file.bfOffBits = sizeof file + sizeof info;
  info.biSize = sizeof info;
  info.biWidth = width;
  info.biHeight = height;
  info.biPlanes = 1;
  info.biBitCount = 24;
  const auto row = static_cast<size_t>(width) * 3 / 4 * 4;
  std::string data(file.bfOffBits + row * static_cast<size_t>(height), 'x');
  file.bfSize = static_cast<DWORD>(data.size());
  std::memcpy(data.data(), &file, sizeof file);
  std::memcpy(data.data() + sizeof file, &info, sizeof info);
  return data;
}

void paintRow() {
  constexpr int kWidth = 640;
  constexpr int kHeight = 480;
  constexpr RECT kRect = {0, 0, kWidth, kHeight};
  const Gdiplus::GdiplusStartupInput input;
  ULONG_PTR token = 0;
  require(Gdiplus::GdiplusStartup(&token, &input, nullptr) == Gdiplus::Ok, "GDI+");
  const HWND window = CreateWindowExW(0, L"STATIC", L"", WS_POPUP | WS_VISIBLE, 0, 0, kWidth,
                                      kHeight, nullptr, nullptr, nullptr, nullptr);
  const HDC dc = GetDC(window);
  require(dc != nullptr, "a window");
  {
    const std::string data = bitmapFile(2000, 1500);
    const auto picture = Picture::of(reinterpret_cast<const unsigned char*>(data.data()),
                                     static_cast<uint32_t>(data.size()));
    require(picture != nullptr && !picture->empty(), "the picture");
    const auto surface = Surface::create(kWidth, kHeight);
    require(surface != nullptr, "a bitmap");
    const auto cached = [&] { picture->draw(dc, kRect); };
    const auto bare = [&] { BitBlt(dc, 0, 0, kWidth, kHeight, surface->dc(), 0, 0, SRCCOPY); };
    printRow("paint of a cached picture / bare BitBlt",
             ratio(kPaintTurns, times(kPaintsInTurn, cached), times(kPaintsInTurn, bare)),
             Aim::atMost(1.3));
  }
  ReleaseDC(window, dc);
  DestroyWindow(window);
  Gdiplus::GdiplusShutdown(token);
}

PROCESS_MEMORY_COUNTERS memory() {
  PROCESS_MEMORY_COUNTERS counters{};
  require(GetProcessMemoryInfo(GetCurrentProcess(), &counters, sizeof counters) != FALSE,
          "GetProcessMemoryInfo");
  return counters;
}

// In a process of its own: reads a file and prints the bytes that it took at most.
void measurePeak() {
  const TempFolder folder;
  const std::string path = folder.path("whole");
  TempFolder::write(path, "");
  std::filesystem::resize_file(TempFolder::native(path), kWhole);
  addToApprovedFileList({path});
  const size_t before = memory().WorkingSetSize;
  BlockRoom room;
  readAsArrayBuffer(path, room);
  require(room.first() == 'd', "the file");
  std::printf("%zu\n", memory().PeakWorkingSetSize - before);
  static_cast<void>(std::fflush(stdout));
}

void peakRow() {
  std::vector<double> turns;
  for (int turn = 0; turn < kPeakTurns; ++turn) {
    Child child(std::string("files_bench.exe ") + kPeak);
    turns.push_back(std::stod(child.readLine()) / static_cast<double>(kWhole));
  }
  printRow("peak memory of readAsArrayBuffer of 50 MiB / 50 MiB", figuresOf(turns), Aim::atMost(4));
}

}  // namespace
}  // namespace Vantrel::Web::Bench

int main(int argc, char* argv[]) {
  using namespace Vantrel::Web::Bench;
  return runRows([&] {
    if (argc == 2 && std::string(argv[1]) == kPeak) return measurePeak();
    const ov::TempFolder folder;
    const std::string whole = filledFile(folder, "whole", kWhole);
    wholeRow(whole);
    peakRow();
    chunksRow(whole);
    describeRow(folder);
    paintRow();
  });
}
