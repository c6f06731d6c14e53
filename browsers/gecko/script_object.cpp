#include "browsers/gecko/script_object.h"

#include <exception>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "browsers/gecko/browser_functions.h"
#include "browsers/gecko/orvane_web_plugin.h"
#include "browsers/gecko/script_methods.h"
#include "browsers/gecko/variant.h"
#include "runtime/ov_log.h"
#include "text/error_reply.h"

namespace Vantrel::Web::Gecko {

namespace {

// The name of a string identifier; none for another identifier, or if the browser gives no text.
std::optional<std::string> nameOf(NPIdentifier identifier) {
  if (!browserFuncs.identifierisstring(identifier)) return {};
  const std::unique_ptr<char, void (*)(char*)> text(
      browserFuncs.utf8fromidentifier(identifier),
      [](char* browserText) { browserFuncs.memfree(browserText); });
  if (!text) return {};
  return std::string(text.get());
}

ovOrvaneWebPlugin* pluginOf(NPObject* object) {
  return object != nullptr ? static_cast<ovOrvaneWebScriptObject*>(object)->plugin : nullptr;
}

// What the browser gets when even an answer cannot be made.
template <class Function>
bool guarded(Function function) {
  try {
    return function();
  } catch (const std::exception& exception) {
    ov_err("%s", exception.what());
  }
  return false;
}

// Calls the method; what it throws becomes the error reply.
bool callMethod(ovOrvaneWebPlugin& plugin, const NamedScriptMethod& method, const NPVariant* args,
                uint32_t argCount, NPVariant* result) {
  OV_DEBUG("%s(): argCount=%u", method.name, argCount);
  try {
    return (plugin.*method.method)(args, argCount, result);
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
  const std::optional<std::string> name = nameOf(identifier);
  if (!name) return nullptr;
  for (const ScriptProperty& property : kProperties) {
    if (*name == property.name) return &property;
  }
  return nullptr;
}

// The script objects of the process. The browser frees none of them, so that one that a page keeps
// stays readable; their memory goes with the module.
std::vector<std::unique_ptr<ovOrvaneWebScriptObject>> scriptObjects;

NPObject* NP_ABI allocate(NPP, NPClass*) {
  ovOrvaneWebScriptObject* object = nullptr;
  guarded([&object] {
    object = scriptObjects.emplace_back(std::make_unique<ovOrvaneWebScriptObject>()).get();
    return true;
  });
  return object;
}

void NP_ABI ignore(NPObject*) {}

bool NP_ABI hasMethod(NPObject*, NPIdentifier identifier) {
  return guarded([identifier] {
    const std::optional<std::string> name = nameOf(identifier);
    return name && findScriptMethod(*name) != nullptr;
  });
}

bool NP_ABI invoke(NPObject* object, NPIdentifier identifier, const NPVariant* args,
                   uint32_t argCount, NPVariant* result) {
  return guarded([=] {
    ovOrvaneWebPlugin* const plugin = pluginOf(object);
    if (plugin == nullptr) return false;
    const std::optional<std::string> name = nameOf(identifier);
    const NamedScriptMethod* const method = name ? findScriptMethod(*name) : nullptr;
    return method != nullptr && callMethod(*plugin, *method, args, argCount, result);
  });
}

bool NP_ABI invokeDefault(NPObject*, const NPVariant*, uint32_t, NPVariant*) {
  return false;
}

bool NP_ABI removeProperty(NPObject*, NPIdentifier) {
  return false;
}

bool NP_ABI hasProperty(NPObject*, NPIdentifier identifier) {
  return guarded([identifier] { return findProperty(identifier) != nullptr; });
}

bool NP_ABI getProperty(NPObject* object, NPIdentifier identifier, NPVariant* result) {
  return guarded([=] {
    ovOrvaneWebPlugin* const plugin = pluginOf(object);
    const ScriptProperty* const property = plugin != nullptr ? findProperty(identifier) : nullptr;
    return property != nullptr && property->read(*plugin, result);
  });
}

bool NP_ABI setProperty(NPObject* object, NPIdentifier identifier, const NPVariant* value) {
  return guarded([=] {
    ovOrvaneWebPlugin* const plugin = pluginOf(object);
    const ScriptProperty* const property = plugin != nullptr ? findProperty(identifier) : nullptr;
    return property != nullptr && property->write(*plugin, *value);
  });
}

}  // namespace

NPClass* scriptClass() {
  // `enumerate` and `construct` are null: the browser must not call what is not there.
  static NPClass table = {NP_CLASS_STRUCT_VERSION,
                          allocate,
                          ignore,
                          ignore,
                          hasMethod,
                          invoke,
                          invokeDefault,
                          hasProperty,
                          getProperty,
                          setProperty,
                          removeProperty,
                          nullptr,
                          nullptr};
  return &table;
}

}  // namespace Vantrel::Web::Gecko
