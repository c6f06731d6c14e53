// Where the desktop client lies and what it tells about itself. Any thread.
//
// The directories and the executable's path are found once; the service's address is kept until a
// client does not answer at it; the key and the process id are read from their files at each call.
// One lock guards what is kept. It is never held across an exchange, a file or a registry read, and
// what it guards is handed out as copies.
#pragma once

#include <cstdint>
#include <mutex>
#include <string>

#include "service/url.h"

namespace Vantrel::Web {

// The user's local application data directory, UTF-8. Throws SystemException if there is none.
std::string pluginAppDataDir();

// The desktop client's data directory below it, without a trailing separator.
std::string pluginBaseDir();

// The file that holds the service's URL and its key. Throws as pluginBaseDir does.
std::string vantrelUrlFile();

// The path of the desktop client's executable; empty when nothing was found, which is logged.
std::string vantrelExecutablePath();

// The process id that the client wrote; 0 when its file is absent or empty. May throw.
int32_t vantrelProcessId();

// The client's key, exactly as it stands in its file; empty when unknown. Never throws.
std::string vantrelUuid();

// The service's address, read from the client's file if none is kept. Its `url` is empty when it is
// not known. Never throws.
Url vantrelUrl();

// Forgets the address, so that the next call reads the file.
void clearVantrelUrl();

// What the process knows about the desktop client. Every access holds `mutex`. Texts that are empty
// are not known.
struct ServiceCaches {
  std::mutex mutex;
  std::string appDataDirectory;
  std::string baseDirectory;
  std::string executablePath;
  Url url;
  uint64_t urlClears = 0;  // counts clears, so that what was read before one is not stored after it
};

// The one set of the process.
ServiceCaches& serviceCaches();

}  // namespace Vantrel::Web
