// Collects the text of one reply from the pieces in which it arrives and tells when it is complete:
// the reply's own "Content-Length:" decides, and without one only the peer's close ends it. Makes
// no system call. Belongs to one exchange on one thread.
//
// The cost is linear in the length of the reply: each search resumes where the last one stopped.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace Vantrel::Web {

class HttpReplyReader {
 public:
  // Takes the next piece up to its first NUL byte. Returns true when the reply is complete; nothing
  // is to be fed after that.
  bool feed(std::string_view piece);

  // What has arrived, cut to the promised length when the reply is complete.
  const std::string& text() const { return response; }

 private:
  enum class Length { kUnknown, kKnown, kAbsent };

  bool findLengthLine();
  void readLength();
  bool findHeaderEnd();

  std::string response;
  Length lengthState = Length::kUnknown;
  uint64_t contentLength = 0;
  size_t labelEnd = std::string::npos;   // behind "Content-Length:"
  size_t bodyStart = std::string::npos;  // behind the empty line
  size_t labelSearch = 0;                // where the next search for each of them begins
  size_t lineEndSearch = 0;
  size_t headerEndSearch = 0;
};

}  // namespace Vantrel::Web
