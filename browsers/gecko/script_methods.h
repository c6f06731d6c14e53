// The methods that a page can call, by name. Constant data.
#pragma once

#include <cstdint>
#include <span>
#include <string_view>

#include "browsers/gecko/netscape_plugin_api.h"

namespace Vantrel::Web::Gecko {

class ovOrvaneWebPlugin;

using ScriptMethod = bool (ovOrvaneWebPlugin::*)(const NPVariant* args, uint32_t argCount,
                                                 NPVariant* result);

struct NamedScriptMethod {
  const char* name;
  ScriptMethod method;
};

// In the order in which a name is looked for.
std::span<const NamedScriptMethod> scriptMethods();

// Exact and case-sensitive; null for an unknown name.
const NamedScriptMethod* findScriptMethod(std::string_view name);

}  // namespace Vantrel::Web::Gecko
