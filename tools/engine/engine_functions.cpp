#include "engine_functions.h"

#include <algorithm>
#include <atomic>
#include <cstdio>
#include <cstring>

#include "async_calls.h"
#include "bridge.h"
#include "script_class.h"

namespace engine {
namespace {

NPNetscapeFuncs engineTable{};
NPNetscapeFuncs pluginTable{};
void* windowForPlugin = nullptr;
std::atomic<unsigned> refused{0};

// A browser may crash here; a tool for tests says so and goes on.
bool onPluginThread(size_t offset) {
  if (bridge().isOn(Bridge::Side::kPlugin)) return true;
  ++refused;
  std::fprintf(stderr,
               "orvane-browser: browser function at table offset %zu called off the "
               "browser's thread\n",
               offset);
  return false;
}

template <auto member>
size_t offsetInTable() {
  return static_cast<size_t>(reinterpret_cast<const char*>(&(pluginTable.*member)) -
                             reinterpret_cast<const char*>(&pluginTable));
}

template <auto member, typename Pointer>
struct EngineThunk;

template <auto member, typename Result, typename... Args>
struct EngineThunk<member, Result (NP_ABI* NPNetscapeFuncs::*)(Args...)> {
  static Result NP_ABI call(Args... args) {
    if (!onPluginThread(offsetInTable<member>())) return Result();
    return bridge().onEngineThread([&] { return native(engineTable.*member)(args...); });
  }
  // For the functions that any thread may call and that touch nothing of a page.
  static Result NP_ABI direct(Args... args) { return native(engineTable.*member)(args...); }
};

NPObject* NP_ABI createObject(NPP npp, NPClass* objectClass) {
  if (objectClass == nullptr || !onPluginThread(offsetInTable<&NPNetscapeFuncs::createobject>()))
    return nullptr;
  return bridge().onEngineThread(
      [&] { return native(engineTable.createobject)(npp, engineClass(objectClass)); });
}

// The engine would answer with window-system things of its own platform.
NPError NP_ABI getValue(NPP npp, NPNVariable variable, void* value) {
  if (!onPluginThread(offsetInTable<&NPNetscapeFuncs::getvalue>())) return NPERR_GENERIC_ERROR;
  if (variable == NPNVnetscapeWindow) {
    *static_cast<void**>(value) = windowForPlugin;
    return NPERR_NO_ERROR;
  }
  if (variable < NPNVnetscapeWindow) return NPERR_GENERIC_ERROR;
  return bridge().onEngineThread(
      [&] { return native(engineTable.getvalue)(npp, variable, value); });
}

template <auto... members>
void fillThunks() {
  ((pluginTable.*members =
        engineTable.*members ? EngineThunk<members, decltype(members)>::call : nullptr),
   ...);
}

}  // namespace

const NPNetscapeFuncs& engineFunctions() {
  return engineTable;
}

unsigned refusedCalls() {
  return refused;
}

NPNetscapeFuncs* adoptEngineFunctions(const NPNetscapeFuncs* table, void* browserWindow) {
  std::memcpy(&engineTable, table, std::min<size_t>(table->size, sizeof engineTable));
  windowForPlugin = browserWindow;
  pluginTable.size = sizeof pluginTable;
  pluginTable.version = engineTable.version;
  using T = NPNetscapeFuncs;
  fillThunks<&T::geturl, &T::posturl, &T::requestread, &T::newstream, &T::write, &T::destroystream,
             &T::status, &T::uagent, &T::memflush, &T::reloadplugins, &T::geturlnotify,
             &T::posturlnotify, &T::setvalue, &T::invalidaterect, &T::invalidateregion,
             &T::forceredraw, &T::getstringidentifier, &T::getstringidentifiers,
             &T::getintidentifier, &T::identifierisstring, &T::utf8fromidentifier,
             &T::intfromidentifier, &T::retainobject, &T::releaseobject, &T::invoke,
             &T::invokeDefault, &T::evaluate, &T::getproperty, &T::setproperty, &T::removeproperty,
             &T::hasproperty, &T::hasmethod, &T::releasevariantvalue, &T::setexception,
             &T::pushpopupsenabledstate, &T::poppopupsenabledstate, &T::enumerate, &T::construct>();
  pluginTable.memalloc = EngineThunk<&T::memalloc, decltype(&T::memalloc)>::direct;
  pluginTable.memfree = EngineThunk<&T::memfree, decltype(&T::memfree)>::direct;
  pluginTable.createobject = createObject;
  pluginTable.getvalue = getValue;
  pluginTable.pluginthreadasynccall = pluginThreadAsyncCall;
  return &pluginTable;
}

}  // namespace engine
