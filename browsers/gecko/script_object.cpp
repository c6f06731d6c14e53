#include "browsers/gecko/script_object.h"

#include <exception>
#include <memory>
#include <string>
#include <string_view>

#include "browsers/gecko/browser_functions.h"
#include "browsers/gecko/orvane_web_plugin.h"
#include "browsers/gecko/script_methods.h"
#include "browsers/gecko/variant.h"
#include "runtime/ov_log.h"
#include "text/error_reply.h"
#include "threads/guarded.h"

namespace Vantrel::Web::Gecko {

namespace {

struct BrowserMemory {
  void operator()(char* text) const { browserFuncs.memfree(text); }
};

// The name of a string identifier; null for another identifier, or if the browser gives no text.
std::unique_ptr<char, BrowserMemory> nameOf(NPIdentifier identifier) {
  if (!browserFuncs.identifierisstring(identifier)) return nullptr;
  return std::unique_ptr<char, BrowserMemory>(browserFuncs.utf8fromidentifier(identifier));
}

const ScriptMethod* findMethod(NPIdentifier identifier) {
  const auto name = nameOf(identifier);
  return name ? findScriptMethod(name.get()) : nullptr;
}

ovOrvaneWebPlugin* pluginOf(NPObject* object) {
  return object != nullptr ? static_cast<ovOrvaneWebScriptObject*>(object)->plugin : nullptr;
}

// Calls the method if it takes the arguments; what it throws becomes the error reply.
bool callMethod(ovOrvaneWebPlugin& plugin, const ScriptMethod& method, Arguments args,
                NPVariant* result) {
  OV_DEBUG("%s(): argCount=%u", method.name, static_cast<uint32_t>(args.size()));
  if (!acceptsArguments(method, args)) return false;
  try {
    return (plugin.*method.function)(args, result);
  } catch (const std::exception& exception) {
    stringToVariant(exceptionJsonErrorReply(exception), result);
    return true;
  }
}

void objectToVariant(NPObject* object, NPVariant* result) {
  if (object == nullptr) return setNull(result);
  // The browser releases what it is handed.
  *result = {NPVariantType_Object, {}};
  result->value.objectValue = browserFuncs.retainobject(object);
}

bool readName(ovOrvaneWebPlugin& plugin, NPVariant* result) {
  const std::string& name = plugin.core->name;
  if (name.empty()) {
    stringToVariant(nullptr, result);
  } else {
    stringToVariant(name, result);
  }
  return true;
}

bool writeName(ovOrvaneWebPlugin& plugin, const NPVariant& value) {
  if (value.type != NPVariantType_String) return false;
  plugin.core->name = textOf(value);
  return true;
}

struct ScriptProperty {
  const char* name;
  bool (*read)(ovOrvaneWebPlugin& plugin, NPVariant* result);
  bool (*write)(ovOrvaneWebPlugin& plugin, const NPVariant& value);
};

constexpr ScriptProperty kProperties[] = {
    {"name", readName, writeName},
    {"dropObserver",
     [](ovOrvaneWebPlugin& plugin, NPVariant* result) {
       objectToVariant(plugin.getDropObserver(), result);
       return true;
     },
     [](ovOrvaneWebPlugin& plugin, const NPVariant& value) {
       plugin.setDropObserver(value);
       return true;
     }},
    {"eventHandler",
     [](ovOrvaneWebPlugin& plugin, NPVariant* result) {
       objectToVariant(plugin.getEventHandler(), result);
       return true;
     },
     [](ovOrvaneWebPlugin& plugin, const NPVariant& value) {
       plugin.setEventHandler(value);
       return true;
     }},
};

const ScriptProperty* findProperty(NPIdentifier identifier) {
  const auto name = nameOf(identifier);
  if (!name) return nullptr;
  for (const ScriptProperty& property : kProperties) {
    if (std::string_view(name.get()) == property.name) return &property;
  }
  return nullptr;
}

// What the browser may look at for as long as the process lives: it can release a script object
// after the instance, or even this library, has gone. Such memory is never given back; the link
// keeps it in sight of tools that look for lost memory.
template <class Record>
struct Kept : Record {
  Kept* former;
};

template <class Record>
Record* keep(const Record& record) {
  static Kept<Record>* latest = nullptr;
  latest = new Kept<Record>{record, latest};
  return latest;
}

NPObject* NP_ABI allocate(NPP, NPClass*) {
  return guarded<NPObject*>(nullptr, [] { return keep(ovOrvaneWebScriptObject{}); });
}

void NP_ABI ignore(NPObject*) {}

bool NP_ABI hasMethod(NPObject*, NPIdentifier identifier) {
  return guarded(false, [=] { return findMethod(identifier) != nullptr; });
}

bool NP_ABI invoke(NPObject* object, NPIdentifier identifier, const NPVariant* args,
                   uint32_t argCount, NPVariant* result) {
  return guarded(false, [=] {
    ovOrvaneWebPlugin* const plugin = pluginOf(object);
    const ScriptMethod* const method = plugin != nullptr ? findMethod(identifier) : nullptr;
    return method != nullptr && callMethod(*plugin, *method, Arguments(args, argCount), result);
  });
}

bool NP_ABI invokeDefault(NPObject*, const NPVariant*, uint32_t, NPVariant*) {
  return false;
}

bool NP_ABI removeProperty(NPObject*, NPIdentifier) {
  return false;
}

bool NP_ABI hasProperty(NPObject*, NPIdentifier identifier) {
  return guarded(false, [identifier] { return findProperty(identifier) != nullptr; });
}

bool NP_ABI getProperty(NPObject* object, NPIdentifier identifier, NPVariant* result) {
  return guarded(false, [=] {
    ovOrvaneWebPlugin* const plugin = pluginOf(object);
    const ScriptProperty* const property = plugin != nullptr ? findProperty(identifier) : nullptr;
    return property != nullptr && property->read(*plugin, result);
  });
}

bool NP_ABI setProperty(NPObject* object, NPIdentifier identifier, const NPVariant* value) {
  return guarded(false, [=] {
    ovOrvaneWebPlugin* const plugin = pluginOf(object);
    const ScriptProperty* const property = plugin != nullptr ? findProperty(identifier) : nullptr;
    return property != nullptr && property->write(*plugin, *value);
  });
}

}  // namespace

NPClass* createScriptClass() {
  // `enumerate` and `construct` are null: the browser must not call what is not there.
  return keep(NPClass{NP_CLASS_STRUCT_VERSION, allocate, ignore, ignore, hasMethod, invoke,
                      invokeDefault, hasProperty, getProperty, setProperty, removeProperty, nullptr,
                      nullptr});
}

}  // namespace Vantrel::Web::Gecko
