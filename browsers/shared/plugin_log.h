// The plug-in's own log: debugging at full level into a file of the user's local data. Shared by
// both front ends; browser's thread only.
#pragma once

#include <string>

namespace Vantrel::Web {

// Opens the log unless it is open. Throws SystemException if there is no place for it.
void plugin_log_init();

// Closes the log; does nothing unless plugin_log_init has run since the last time.
void plugin_log_shutdown();

// The log's path, whose directory is made when it is first asked for. Throws as plugin_log_init.
const std::string& plugin_log_path();

}  // namespace Vantrel::Web
