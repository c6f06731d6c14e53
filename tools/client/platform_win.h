// What the client asks of Windows at its start: folders, arguments and the settings' place.
#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

namespace Vantrel::StandIn {

// The client's data directory below the user's local application data. Throws
// std::runtime_error.
std::filesystem::path defaultDataDir();

// The user's download folder. Throws std::runtime_error.
std::filesystem::path defaultDownloadRoot();

// This program's own file.
std::filesystem::path ownProgram();

// The command line without the program, in UTF-8.
std::vector<std::string> commandLineArguments();

// An environment variable in UTF-8; empty when it is not set.
std::string environmentText(const wchar_t* name);

std::uint32_t ownProcessId();

}  // namespace Vantrel::StandIn
