// The activity documents: what a poll asks and what it is answered.
#pragma once

#include <cstdint>
#include <string>

#include "tools/client/transfer_book.h"

namespace Vantrel::StandIn {

// Tokens of one run: the run's id, a dash, the number of a change. A token of another run, or
// anything else, reads as 0, so that its bearer is told everything again.
std::uint64_t readToken(const std::string& token, const std::string& runId);

// `form` is a value of the knob activity_token.
std::string activityDocument(const TransferBook::Changes& changes, const std::string& runId,
                             const std::string& form);

// One transfer as it stands in an activity document.
std::string transferDocument(const TransferRecord& record);

}  // namespace Vantrel::StandIn
