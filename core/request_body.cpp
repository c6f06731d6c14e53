#include "core/request_body.h"

#include <yajl/yajl_parse.h>

#include <algorithm>
#include <exception>
#include <functional>
#include <memory>

#include "core/json_comments.h"
#include "text/json_document.h"

namespace Vantrel::Web {

namespace {

constexpr char kHoldsNul[] = "a key or a text holds a NUL";
constexpr char kTwoEnds[] = "a comment ends at different places for different readers";
constexpr char kTooDeep[] = "parse error: the text is nested too deeply\n";
constexpr char kNoMemory[] = "out of memory";
constexpr size_t kErrorLength = 1023;  // of the parser's message, which quotes the text

// The arrays and objects that the check looks into.
enum class Place : uint8_t {
  kElsewhere,
  kRoot,
  kSettings,
  kSpecs,
  kFirst,
  kFirstSettings,
  kSpec,
  kPaths,
  kPath,
};

// The members that it reads.
enum class Member : uint8_t {
  kOther,
  kSettings,
  kAppId,
  kSpecs,
  kSpec,
  kAbsolute,
  kDirection,
  kDestinationRoot,
  kSourceRoot,
  kPaths,
  kSource,
};

struct KnownMember {
  Place place;
  Member member;
  std::string_view name;
};

constexpr KnownMember kKnownMembers[] = {
    {Place::kRoot, Member::kSettings, "orvane_vantrel_settings"},
    {Place::kRoot, Member::kSpecs, "transfer_specs"},
    {Place::kSettings, Member::kAppId, "app_id"},
    {Place::kFirst, Member::kSettings, "orvane_vantrel_settings"},
    {Place::kFirst, Member::kSpec, "transfer_spec"},
    {Place::kFirstSettings, Member::kAbsolute, "use_absolute_destination_path"},
    {Place::kSpec, Member::kDirection, "direction"},
    {Place::kSpec, Member::kDestinationRoot, "destination_root"},
    {Place::kSpec, Member::kSourceRoot, "source_root"},
    {Place::kSpec, Member::kPaths, "paths"},
    {Place::kPath, Member::kSource, "source"},
};

enum class Type : uint8_t { kObject, kArray, kText, kTrue, kOther };

// An array or object that is open.
struct Frame {
  Place place = Place::kElsewhere;
  Member member = Member::kOther;  // whose value comes next
  bool hasElements = false;
  uint32_t seen = 0;  // a bit for each member that was there
};

}  // namespace

// What the parser tells, turned into the fields of a body. Its functions return whether the parser
// is to go on.
class RequestBodyEvents {
 public:
  explicit RequestBodyEvents(RequestBody& body) : body_(body) {}

  // What ended the parsing or speaks against the text; empty for nothing.
  const std::string& objection() const { return objection_; }

  bool open(Type type) {
    const Place place = takeValue(type, {});
    if (frames_.size() == JsonDocument::kMaxDepth) return stop(kTooDeep);
    frames_.emplace_back().place = place;
    return true;
  }
  bool close() {
    frames_.pop_back();
    return true;
  }
  bool key(std::string_view name) {
    noteNul(name);
    Frame& frame = frames_.back();
    frame.member = Member::kOther;
    if (frame.place == Place::kElsewhere) return true;
    const auto* const known = std::find_if(
        std::begin(kKnownMembers), std::end(kKnownMembers),
        [&](const KnownMember& entry) { return entry.place == frame.place && entry.name == name; });
    if (known == std::end(kKnownMembers)) return true;
    frame.member = known->member;
    const uint32_t bit = uint32_t{1} << static_cast<unsigned>(known->member);
    if ((frame.seen & bit) != 0 && known->member != Member::kSource) {
      object("the member " + std::string(name) + " stands twice in one object");
    }
    frame.seen |= bit;
    return true;
  }
  bool text(std::string_view value) {
    noteNul(value);
    takeValue(Type::kText, value);
    return true;
  }
  bool other(Type type) {
    takeValue(type, {});
    return true;
  }
  bool stop(const char* reason) {
    objection_ = reason;
    return false;
  }

 private:
  void object(const std::string& reason) {
    if (objection_.empty()) objection_ = reason;
  }
  void noteNul(std::string_view value) {
    if (value.find('\0') != std::string_view::npos) object(kHoldsNul);
  }

  // Reads a value, or the beginning of one; the place that an array or object is.
  Place takeValue(Type type, std::string_view value) {
    if (frames_.empty()) return type == Type::kObject ? Place::kRoot : Place::kElsewhere;
    Frame& frame = frames_.back();
    const bool isFirst = !frame.hasElements;
    frame.hasElements = true;
    switch (frame.place) {
      case Place::kElsewhere:
        return Place::kElsewhere;
      case Place::kSpecs:
        if (isFirst) body_.hasSpecification = true;
        return isFirst && type == Type::kObject ? Place::kFirst : Place::kElsewhere;
      case Place::kPaths:
        if (type == Type::kObject) return Place::kPath;
        body_.sources.push_back({RequestBody::Source::Kind::kNoObject, false, 0, 0});
        return Place::kElsewhere;
      default:
        return takeMember(frame, type, value);
    }
  }
  Place takeMember(const Frame& frame, Type type, std::string_view value) {
    const bool isObject = type == Type::kObject;
    switch (frame.member) {
      case Member::kOther:
        break;
      case Member::kSettings:
        if (!isObject) break;
        return frame.place == Place::kRoot ? Place::kSettings : Place::kFirstSettings;
      case Member::kSpecs:
        return type == Type::kArray ? Place::kSpecs : Place::kElsewhere;
      case Member::kSpec:
        return isObject ? Place::kSpec : Place::kElsewhere;
      case Member::kPaths:
        body_.hasPaths = type == Type::kArray;
        return body_.hasPaths ? Place::kPaths : Place::kElsewhere;
      case Member::kAbsolute:
        body_.absoluteDestination = type == Type::kTrue;
        break;
      case Member::kAppId:
        body_.appId = value;
        break;
      case Member::kDirection:
        body_.direction = value;
        break;
      case Member::kDestinationRoot:
        body_.destinationRoot = value;
        break;
      case Member::kSourceRoot:
        body_.sourceRoot = value;
        break;
      case Member::kSource:
        takeSource(type, value);
        break;
    }
    return Place::kElsewhere;
  }
  // A text without escapes lies in the body; another one is the parser's and must be kept.
  void takeSource(Type type, std::string_view value) {
    using Kind = RequestBody::Source::Kind;
    RequestBody::Source source = {type == Type::kText ? Kind::kText : Kind::kNoText, false, 0,
                                  value.size()};
    const char* const begin = body_.text_.data();
    source.decoded = std::less<>()(value.data(), begin) ||
                     !std::less<>()(value.data(), begin + body_.text_.size());
    if (source.kind != Kind::kText) source.decoded = false;
    if (source.decoded) {
      source.start = body_.decodedTexts_.size();
      body_.decodedTexts_.append(value);
    } else if (source.kind == Kind::kText) {
      source.start = static_cast<size_t>(value.data() - begin);
    }
    body_.sources.push_back(source);
  }

  RequestBody& body_;
  std::vector<Frame> frames_;
  std::string objection_;
};

namespace {

// The parser is C, which no exception may cross.
template <class Event>
int guarded(void* context, Event event) {
  auto& events = *static_cast<RequestBodyEvents*>(context);
  try {
    return event(events) ? 1 : 0;
  } catch (const std::exception&) {
    return 0;
  }
}

int onNull(void* context) {
  return guarded(context, [](RequestBodyEvents& events) { return events.other(Type::kOther); });
}
int onBoolean(void* context, int value) {
  const Type type = value != 0 ? Type::kTrue : Type::kOther;
  return guarded(context, [type](RequestBodyEvents& events) { return events.other(type); });
}
int onNumber(void* context, const char* digits, size_t length) {
  return guarded(context, [&](RequestBodyEvents& events) { return events.text({digits, length}); });
}
int onString(void* context, const unsigned char* text, size_t length) {
  const std::string_view view(reinterpret_cast<const char*>(text), length);
  return guarded(context, [view](RequestBodyEvents& events) { return events.text(view); });
}
int onKey(void* context, const unsigned char* text, size_t length) {
  const std::string_view view(reinterpret_cast<const char*>(text), length);
  return guarded(context, [view](RequestBodyEvents& events) { return events.key(view); });
}
int onObject(void* context) {
  return guarded(context, [](RequestBodyEvents& events) { return events.open(Type::kObject); });
}
int onArray(void* context) {
  return guarded(context, [](RequestBodyEvents& events) { return events.open(Type::kArray); });
}
int onEnd(void* context) {
  return guarded(context, [](RequestBodyEvents& events) { return events.close(); });
}

constexpr yajl_callbacks kCallbacks = {onNull,   onBoolean, nullptr, nullptr, onNumber, onString,
                                       onObject, onKey,     onEnd,   onArray, onEnd};

struct ParserDeleter {
  void operator()(yajl_handle_t* parser) const { yajl_free(parser); }
};
using Parser = std::unique_ptr<yajl_handle_t, ParserDeleter>;

std::string parserMessage(const Parser& parser, const unsigned char* text, size_t length) {
  unsigned char* const message = yajl_get_error(parser.get(), 1, text, length);
  if (message == nullptr) return kNoMemory;
  std::string copy = reinterpret_cast<const char*>(message);
  yajl_free_error(parser.get(), message);
  return copy.substr(0, kErrorLength);
}

}  // namespace

bool RequestBody::read(const std::string& text, std::string& error) {
  text_ = text;
  if (text.find('\0') != std::string::npos) {
    error = kHoldsNul;
    return false;
  }
  if (hasCommentOfTwoEnds(text)) {
    error = kTwoEnds;
    return false;
  }
  RequestBodyEvents events(*this);
  const Parser parser(yajl_alloc(&kCallbacks, nullptr, &events));
  if (!parser) {
    error = kNoMemory;
    return false;
  }
  yajl_config(parser.get(), yajl_allow_comments, 1);
  const auto* const bytes = reinterpret_cast<const unsigned char*>(text.data());
  yajl_status status = yajl_parse(parser.get(), bytes, text.size());
  const bool cancelled = status == yajl_status_client_canceled;
  status = yajl_complete_parse(parser.get());
  if (cancelled) {
    error = events.objection().empty() ? kNoMemory : events.objection();
  } else if (status != yajl_status_ok) {
    error = parserMessage(parser, bytes, text.size());
  } else {
    error = events.objection();
  }
  return error.empty();
}

std::string_view RequestBody::sourceText(const Source& source) const {
  const std::string_view texts = source.decoded ? std::string_view(decodedTexts_) : text_;
  return texts.substr(source.start, source.length);
}

}  // namespace Vantrel::Web
