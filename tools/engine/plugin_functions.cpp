#include "plugin_functions.h"

#include <cstdio>

#include "bridge.h"
#include "engine_functions.h"
#include "paint_event.h"
#include "process_end.h"

namespace engine {
namespace {

PluginModule* pluginModule = nullptr;
PluginWindows* pluginWindows = nullptr;
NPPluginFuncs pluginTable{};  // the library's functions
unsigned made = 0;
unsigned alive = 0;

template <auto member, typename Pointer>
struct PluginThunk;

template <auto member, typename Result, typename... Args>
struct PluginThunk<member, Result (NP_ABI* NPPluginFuncs::*)(Args...)> {
  static Result call(Args... args) {
    return bridge().onPluginThread([&] { return (pluginTable.*member)(args...); });
  }
};

template <auto... members>
void fillThunks(NPPluginFuncs& table) {
  ((table.*members = asTableMember(PluginThunk<members, decltype(members)>::call)), ...);
}

NPError newInstance(NPMIMEType type, NPP npp, uint16_t mode, int16_t argc, char** argn, char** argv,
                    NPSavedData* saved) {
  ++made;
  const NPError result = bridge().onPluginThread(
      [&] { return pluginTable.newp(type, npp, mode, argc, argn, argv, saved); });
  if (result != NPERR_NO_ERROR) return result;
  ++alive;
  // In the engine's windowed mode NPP_SetWindow comes at teardown only.
  native(engineFunctions().setvalue)(npp, NPPVpluginWindowBool, nullptr);
  return NPERR_NO_ERROR;
}

NPError destroyInstance(NPP npp, NPSavedData** saved) {
  --alive;
  return bridge().onPluginThread([&] {
    const NPError result = pluginTable.destroy(npp, saved);
    pluginWindows->remove(npp);
    return result;
  });
}

NPError setWindow(NPP npp, NPWindow* window) {
  if (window == nullptr)
    return bridge().onPluginThread([&] { return pluginTable.setwindow(npp, nullptr); });
  const EngineWindow& from = *reinterpret_cast<EngineWindow*>(window);
  return bridge().onPluginThread([&] {
    void* child = pluginWindows->place(npp, from.x, from.y, from.width, from.height);
    NPWindow forPlugin{
        child, from.x, from.y, from.width, from.height, from.clipRect, NPWindowTypeWindow};
    return pluginTable.setwindow(npp, &forPlugin);
  });
}

// The engine's events are those of its own window system; the instance has a window of its own
// and gets its messages there. What is left to do here is to show that window in the page.
int16_t handleEvent(NPP npp, void* event) {
  if (!isPaintEvent(event)) return 0;
  const auto picture = bridge().onPluginThread([&] { return pluginWindows->picture(npp); });
  return paint(event, picture) ? 1 : 0;
}

// Variables between the descriptions and the script object are questions of the engine's platform.
NPError getValue(NPP npp, NPPVariable variable, void* value) {
  if (variable != NPPVpluginScriptableNPObject) return NPERR_GENERIC_ERROR;
  return bridge().onPluginThread([&] { return pluginTable.getvalue(npp, variable, value); });
}

}  // namespace

void usePlugin(PluginModule& module, PluginWindows& windows) {
  pluginModule = &module;
  pluginWindows = &windows;
}

NPError startPlugin(const NPNetscapeFuncs* browser, NPPluginFuncs* plugin) {
  catchExit();
  NPNetscapeFuncs* forPlugin = adoptEngineFunctions(browser, pluginWindows->topLevel());
  pluginTable = {};
  pluginTable.size = sizeof pluginTable;
  const NPError result =
      bridge().onPluginThread([&] { return pluginModule->initialize(forPlugin, &pluginTable); });
  if (result != NPERR_NO_ERROR) {
    std::fprintf(stderr, "orvane-browser: the library's start failed with %d\n", result);
    return result;
  }
  using T = NPPluginFuncs;
  plugin->version = pluginTable.version;
  fillThunks<&T::newstream, &T::destroystream, &T::asfile, &T::writeready, &T::write, &T::print,
             &T::urlnotify, &T::setvalue>(*plugin);
  plugin->newp = asTableMember(newInstance);
  plugin->destroy = asTableMember(destroyInstance);
  plugin->setwindow = asTableMember(setWindow);
  plugin->event = asTableMember(handleEvent);
  plugin->getvalue = asTableMember(getValue);
  return NPERR_NO_ERROR;
}

bool dropFiles(int x, int y, const std::vector<std::string>& paths) {
  return bridge().onPluginThread([&] { return pluginWindows->drop(x, y, paths); });
}

unsigned instancesMade() {
  return made;
}
unsigned instancesAlive() {
  return alive;
}

}  // namespace engine
