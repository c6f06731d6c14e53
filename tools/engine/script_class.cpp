#include "script_class.h"

#include <map>
#include <memory>
#include <mutex>

#include "bridge.h"

namespace engine {
namespace {

// The engine knows the first member only and hands its address back in every call.
struct WrappedClass {
  NPClass table;
  NPClass* plugin;
};

NPClass* pluginClass(NPClass* table) {
  return reinterpret_cast<WrappedClass*>(table)->plugin;
}

// A function of a class table that takes the object first: the native form of one member.
template <auto member, typename Pointer>
struct ClassThunk;

template <auto member, typename Result, typename... Args>
struct ClassThunk<member, Result (NP_ABI* NPClass::*)(NPObject*, Args...)> {
  static Result call(NPObject* object, Args... args) {
    return bridge().onPluginThread(
        [&] { return (pluginClass(object->_class)->*member)(object, args...); });
  }
};

NPObject* allocate(NPP npp, NPClass* table) {
  return bridge().onPluginThread(
      [&] { return pluginClass(table)->allocate(npp, pluginClass(table)); });
}

// A member that the plug-in left null stays null: the engine then does its own.
template <auto member>
void wrap(WrappedClass& wrapped) {
  if (wrapped.plugin->*member)
    wrapped.table.*member = asTableMember(ClassThunk<member, decltype(member)>::call);
}

std::unique_ptr<WrappedClass> wrapClass(NPClass* plugin) {
  auto wrapped = std::make_unique<WrappedClass>(WrappedClass{{}, plugin});
  wrapped->table.structVersion = plugin->structVersion;
  if (plugin->allocate != nullptr) wrapped->table.allocate = asTableMember(allocate);
  wrap<&NPClass::deallocate>(*wrapped);
  wrap<&NPClass::invalidate>(*wrapped);
  wrap<&NPClass::hasMethod>(*wrapped);
  wrap<&NPClass::invoke>(*wrapped);
  wrap<&NPClass::invokeDefault>(*wrapped);
  wrap<&NPClass::hasProperty>(*wrapped);
  wrap<&NPClass::getProperty>(*wrapped);
  wrap<&NPClass::setProperty>(*wrapped);
  wrap<&NPClass::removeProperty>(*wrapped);
  if (plugin->structVersion >= 2) wrap<&NPClass::enumerate>(*wrapped);
  if (plugin->structVersion >= 3) wrap<&NPClass::construct>(*wrapped);
  return wrapped;
}

}  // namespace

NPClass* engineClass(NPClass* plugin) {
  static std::mutex mutex;  // guards classes
  static std::map<NPClass*, std::unique_ptr<WrappedClass>> classes;
  const std::lock_guard lock(mutex);
  std::unique_ptr<WrappedClass>& wrapped = classes[plugin];
  if (!wrapped) wrapped = wrapClass(plugin);
  return &wrapped->table;
}

}  // namespace engine
