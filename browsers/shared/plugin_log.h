// The plug-in's own log: debugging at full level into a file of the user's local data. Opened and
// closed by the module's start and end, one thread at a time.
#pragma once

#include <string>

namespace Vantrel::Web {

// Opens the log unless it is open. Throws SystemException if there is no place for it.
void openPluginLog();

// Closes the log; does nothing unless openPluginLog has run since the last time.
void closePluginLog();

// The log's path, whose directory is made when it is first asked for. Throws as openPluginLog.
const std::string& pluginLogPath();

}  // namespace Vantrel::Web
