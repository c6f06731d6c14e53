// The members of a body to be forwarded that the check reads, and no others. They are taken from
// the text while it is parsed: keys and texts count with their whole length, and a long body costs
// no tree of it. Lives on the stack of one check, on the browser's thread.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace Vantrel::Web {

class RequestBody {
 public:
  // An element of `paths`, or rather each of its sources.
  struct Source {
    enum class Kind : uint8_t {
      kText,     // a text, or the digits of a number
      kNoText,   // a value of another type
      kNoObject  // the element is no object and so has no sources
    };
    Kind kind;
    bool decoded;  // stands in decodedTexts_, not in the body
    size_t start;
    size_t length;
  };

  // Reads `text`, which must outlive this object. False leaves the reason in `error`: what is no
  // JSON; a NUL anywhere, also an escaped one in a key or a text, where another reader might end;
  // and a second member of a name that the check reads, of which another reader might take the
  // other one. Of "source" each is read.
  bool read(const std::string& text, std::string& error);

  // Texts, or the digits of numbers as they stood; empty for any other value and without one.
  std::string appId;
  bool hasSpecification = false;  // what follows is that of the first one
  bool absoluteDestination = false;
  std::string direction;
  std::string destinationRoot;
  std::string sourceRoot;
  bool hasPaths = false;  // an array
  std::vector<Source> sources;

  // Empty but for a source that is a text.
  std::string_view sourceText(const Source& source) const;

 private:
  friend class RequestBodyEvents;

  std::string_view text_;
  std::string decodedTexts_;
};

}  // namespace Vantrel::Web
