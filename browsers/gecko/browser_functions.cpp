#include "browsers/gecko/browser_functions.h"

#include <cstring>

namespace Vantrel::Web::Gecko {

namespace {

template <class Function, class StandIn>
void fill(Function& member, StandIn standIn) {
  if (member == nullptr) member = standIn;
}

NPNetscapeFuncs withStandIns(NPNetscapeFuncs table) {
  fill(table.uagent, [](NPP) -> const char* { return nullptr; });
  fill(table.memalloc, [](uint32_t) -> void* { return nullptr; });
  fill(table.memfree, [](void*) {});
  fill(table.geturlnotify,
       [](NPP, const char*, const char*, void*) { return NPERR_GENERIC_ERROR; });
  fill(table.getvalue, [](NPP, NPNVariable, void*) { return NPERR_GENERIC_ERROR; });
  fill(table.getstringidentifier, [](const char*) -> NPIdentifier { return nullptr; });
  fill(table.identifierisstring, [](NPIdentifier) { return false; });
  fill(table.utf8fromidentifier, [](NPIdentifier) -> char* { return nullptr; });
  fill(table.createobject, [](NPP, NPClass*) -> NPObject* { return nullptr; });
  fill(table.retainobject, [](NPObject* object) { return object; });
  fill(table.releaseobject, [](NPObject*) {});
  fill(table.invoke,
       [](NPP, NPObject*, NPIdentifier, const NPVariant*, uint32_t, NPVariant*) { return false; });
  fill(table.invokeDefault,
       [](NPP, NPObject*, const NPVariant*, uint32_t, NPVariant*) { return false; });
  fill(table.getproperty, [](NPP, NPObject*, NPIdentifier, NPVariant*) { return false; });
  fill(table.hasmethod, [](NPP, NPObject*, NPIdentifier) { return false; });
  fill(table.releasevariantvalue, [](NPVariant*) {});
  return table;
}

}  // namespace

// An instance that is made before NP_Initialize meets a browser that can do nothing.
NPNetscapeFuncs browserFuncs = withStandIns({});

void copyBrowserFunctions(const NPNetscapeFuncs& funcs) {
  size_t bytes = sizeof browserFuncs;
  if (funcs.size >= kNeededTableSize && funcs.size < bytes) bytes = funcs.size;
  NPNetscapeFuncs copy = {};
  std::memcpy(&copy, &funcs, bytes);
  browserFuncs = withStandIns(copy);
}

}  // namespace Vantrel::Web::Gecko
