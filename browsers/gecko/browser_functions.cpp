#include "browsers/gecko/browser_functions.h"

#include <cstring>

namespace Vantrel::Web::Gecko {

NPNetscapeFuncs browserFuncs = {};

void copyBrowserFunctions(const NPNetscapeFuncs& funcs) {
  size_t bytes = sizeof browserFuncs;
  if (funcs.size >= kNeededTableSize && funcs.size < bytes) bytes = funcs.size;
  browserFuncs = {};
  std::memcpy(&browserFuncs, &funcs, bytes);
}

}  // namespace Vantrel::Web::Gecko
