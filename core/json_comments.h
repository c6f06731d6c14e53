// Comments in the JSON text of a request, which the parser passes over.
#pragma once

#include <string_view>

namespace Vantrel::Web {

// Whether a comment to the end of the line holds what other readers take for the end of a line, so
// that they would read on where the parser does not. Any thread.
bool hasCommentOfTwoEnds(std::string_view text);

}  // namespace Vantrel::Web
