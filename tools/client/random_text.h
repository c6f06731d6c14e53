// Names nobody can guess: the access key and the ids of requests and transfers.
#pragma once

#include <string>

namespace Vantrel::StandIn {

// `digits` lower-case hexadecimal digits from the system's random source.
std::string randomHex(size_t digits);

// A version 4 UUID with its four dashes.
std::string randomUuid();

}  // namespace Vantrel::StandIn
