// Where the desktop client lies and what it tells about itself. The directories and the
// executable's path are found once and cached for the life of the library behind one lock; the key
// and the process id are read from their files at each call. Any thread.
#pragma once

#include <cstdint>
#include <string>

namespace Vantrel::Web {

// The user's local application data directory, UTF-8. Throws SystemException if there is none.
std::string plugin_app_data_dir();

// The desktop client's data directory below it, without a trailing separator.
std::string plugin_base_dir();

// The file that holds the service's URL and its key. Throws as plugin_base_dir does.
std::string vantrelUrlFile();

// The path of the desktop client's executable; empty when nothing was found, which is logged.
std::string vantrelExecutablePath();

// The process id that the client wrote; 0 when its file is absent or empty. May throw.
int32_t vantrelProcessId();

// The client's key, exactly as it stands in its file; empty when unknown. Never throws.
std::string vantrelUuid();

}  // namespace Vantrel::Web
