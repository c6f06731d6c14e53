// Properties that no container of good will would hand over: torn and scrambled streams, against a
// reading of them one field at a time, and bags full of odd values. The same ones in every run.
#include <gmock/gmock.h>

#include <windows.h>
#include <ole2.h>

#include <algorithm>
#include <cstring>
#include <optional>
#include <random>
#include <string>
#include <vector>

#include "tests/activex/control_fixture.h"
#include "tests/support/fake_xml_http_win.h"

namespace Vantrel::Web::ActiveX {
namespace {

using TestSupport::FakeXmlHttp;

constexpr int kStreams = 800;
constexpr int kBags = 300;
constexpr uint32_t kMostBytes = 1U << 20;  // of a text that is taken
constexpr size_t kTexts = 8;
constexpr size_t kImage = 4;  // its place among them
constexpr const char* kNames[kTexts] = {
    "transfer-icon", "link-capacity", "drop-upload-url",        "vantrel-launch-wait-timeout-ms",
    "image",         "drop-mode",     "drop-allow-directories", "drop-allow-multiple"};

std::string number(uint32_t value) {
  return {reinterpret_cast<const char*>(&value), sizeof value};
}

std::string stored(const std::u16string& text) {
  const auto bytes = static_cast<uint32_t>(text.size() * sizeof(char16_t));
  return number(bytes) + std::string(reinterpret_cast<const char*>(text.data()), bytes);
}

// A record as a container may have kept it.
std::string wholeRecord() {
  return number(0x10000) + number(100) + number(200) + stored(u"icon") + stored(u"12") +
         stored(u"https://h/in") + stored(u"0") + stored(u"http://host/p.png") +
         stored(u"callback") + stored(u"true") + stored(u"");
}

// What a record says, read one field behind the other.
struct Record {
  explicit Record(std::string bytes) : rest(std::move(bytes)) {
    takeNumber();  // the version, whatever it is
    const std::optional<uint32_t> width = takeNumber();
    const std::optional<uint32_t> height = takeNumber();
    if (width) cx = static_cast<int32_t>(*width);
    if (height) cy = static_cast<int32_t>(*height);
    for (size_t i = 0; i < kTexts && good; ++i) {
      const std::string text = takeText();
      if (i == kImage) image = text;
    }
  }

  std::optional<uint32_t> takeNumber() {
    uint32_t value = 0;
    if (rest.size() < sizeof value) {
      rest.clear();
      return std::nullopt;
    }
    std::memcpy(&value, rest.data(), sizeof value);
    rest.erase(0, sizeof value);
    return value;
  }

  std::string takeText() {
    const std::optional<uint32_t> bytes = takeNumber();
    if (!bytes) return {};
    good = *bytes <= kMostBytes && *bytes % 2 == 0;
    if (!good || *bytes > rest.size()) {
      rest.clear();
      return {};
    }
    const std::string text = rest.substr(0, *bytes);
    rest.erase(0, *bytes);
    return text;
  }

  std::string rest;
  bool good = true;
  int32_t cx = -1;
  int32_t cy = -1;
  std::string image;  // as bytes
};

// Whether bytes are well-formed UTF-16 that begins with the scheme of the web, in any case. What
// stands behind its first NUL is no part of a text.
bool isOfTheWeb(const std::string& bytes) {
  std::u16string text(bytes.size() / 2, u'\0');
  std::memcpy(text.data(), bytes.data(), text.size() * 2);
  text.resize(std::min(text.find(u'\0'), text.size()));
  for (size_t i = 0; i < text.size(); ++i) {
    const bool high = text[i] >= 0xD800 && text[i] < 0xDC00;
    const bool low = text[i] >= 0xDC00 && text[i] < 0xE000;
    if (low || (high && (i + 1 == text.size() || text[i + 1] < 0xDC00 || text[i + 1] >= 0xE000))) {
      return false;
    }
    if (high) ++i;
  }
  for (char16_t& letter : text) letter |= letter >= u'A' && letter <= u'Z' ? 0x20 : 0;
  return text.starts_with(u"http://") || text.starts_with(u"https://");
}

class OddPropertiesTest : public ControlTest {
 protected:
  int below(int bound) { return std::uniform_int_distribution<int>(0, bound - 1)(random_); }

  // One change, or several: bytes of any value, runs that are doubled or gone, a torn end.
  std::string scrambled(std::string bytes) {
    for (int changes = below(4); changes >= 0 && !bytes.empty(); --changes) {
      const auto at = static_cast<size_t>(below(static_cast<int>(bytes.size())));
      switch (below(5)) {
        case 0:
          bytes[at] = static_cast<char>(below(256));
          break;
        case 1:
          bytes.resize(at);
          break;
        case 2:
          bytes.insert(at, bytes.substr(at, static_cast<size_t>(below(16))));
          break;
        case 3:
          bytes.erase(at, static_cast<size_t>(below(16)));
          break;
        default:
          bytes.replace(at, 4, number(kLengths[below(std::size(kLengths))]));
          break;
      }
    }
    return bytes;
  }

  // Texts that texts of parameters should not be.
  Variant oddValue() {
    switch (below(9)) {
      case 0:
        return Variant::text("true");
      case 1:
        return Variant::wideText(std::wstring(1, static_cast<wchar_t>(0xD800 + below(0x800))));
      case 2:
        return Variant::wideText(std::wstring(static_cast<size_t>(below(70000)), L'%'));
      case 3:
        return Variant::wideText(std::wstring(L"ab\0cd", 5));
      case 4:
        return Variant::nullText();
      case 5:
        return Variant::real(1e300);
      case 6:
        return Variant::integer(-1 - below(10));
      case 7:
        return Variant::of(page_);
      default:
        return Variant::null();
    }
  }

  static constexpr uint32_t kLengths[] = {
      0, 1, 2, kMostBytes, kMostBytes + 2, 0x7FFFFFFF, 0x80000000, 0xFFFFFFFE, 0xFFFFFFFF};

  std::mt19937 random_{1};
  FakeXmlHttp http_;
  PageFunction* page_ = nullptr;
};

TEST_F(OddPropertiesTest, StreamsAreReadAsFarAsTheyGo) {
  http_.status = 404;
  int refused = 0;
  for (int i = 0; i < kStreams && !HasFailure(); ++i) {
    const std::string bytes = scrambled(wholeRecord());
    const Record expected(bytes);
    SCOPED_TRACE(i);
    http_.calls.clear();
    Control control(container(), kControlClassId, {.giveSite = false, .load = false});
    ComPointer<IPersistStreamInit> persist;
    ASSERT_EQ(control.query(persist), S_OK);
    ComPointer<IStream> stream;
    ASSERT_EQ(CreateStreamOnHGlobal(nullptr, TRUE, stream.put()), S_OK);
    stream->Write(bytes.data(), static_cast<ULONG>(bytes.size()), nullptr);
    stream->Seek({}, STREAM_SEEK_SET, nullptr);
    EXPECT_EQ(persist->Load(stream.get()), expected.good ? S_OK : E_FAIL);
    if (!expected.good) ++refused;
    ComPointer<IOleObject> object;
    ASSERT_EQ(control.query(object), S_OK);
    SIZEL size = {};
    object->GetExtent(DVASPECT_CONTENT, &size);
    if (expected.cx >= 0 && expected.cy >= 0) {
      EXPECT_EQ(size.cx, expected.cx);
      EXPECT_EQ(size.cy, expected.cy);
    }
    EXPECT_EQ(!http_.calls.empty(), expected.good && isOfTheWeb(expected.image));
  }
  EXPECT_GT(refused, kStreams / 20);
  EXPECT_LT(refused, kStreams);
}

TEST_F(OddPropertiesTest, AnyBagIsLoadedAndSaved) {
  page_ = &makeFunction("a function");
  for (int i = 0; i < kBags && !HasFailure(); ++i) {
    SCOPED_TRACE(i);
    Control control(container(), kControlClassId, {.giveSite = false, .load = false});
    for (const char* const name : kNames) {
      if (below(3) == 0) continue;
      if (below(8) == 0) {
        control.bag().fail(name, E_OUTOFMEMORY);
      } else {
        control.bag().set(name, oddValue());
      }
    }
    EXPECT_EQ(control.load(), S_OK);
    EXPECT_EQ(control.call("queryVersion").result, S_OK);
    ComPointer<IPersistPropertyBag> persist;
    ASSERT_EQ(control.query(persist), S_OK);
    EXPECT_EQ(persist->Save(&control.bag(), TRUE, TRUE), S_OK);
    // The book, which owns the bag, takes no values down that refer to its own objects.
    for (const char* const name : kNames) control.bag().set(name, Variant());
  }
}

}  // namespace
}  // namespace Vantrel::Web::ActiveX
