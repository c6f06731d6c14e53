// How the page is told of files: the dataTransfer document, and the type of one file by its
// content. Browser's thread only; both read the files.
#pragma once

#include <string>
#include <vector>

#include "core/input_file.h"
#include "runtime/ov_files.h"

namespace Vantrel::Web {

// {"dataTransfer":{"files":[...]}} with an entry for each path, in order: last write (left out for
// a time that the library cannot tell), whole path, size in bytes, type. A file that is gone has
// size 0 and an empty type.
std::string dataTransferJson(const std::vector<std::string>& paths);

// "text/directory" for a directory; else what the platform makes of the first 256 bytes, the name
// playing no part. `info` is the file's record; a file that is empty, cannot be read, or has
// another size by now has an empty type.
std::string mimeTypeOf(const std::string& path, const ov_stat& info);

// The same of a file that was just opened and is no directory; it stands behind what was read.
std::string mimeTypeOf(InputFile& file, const ov_stat& info);

}  // namespace Vantrel::Web
