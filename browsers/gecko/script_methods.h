// The methods that a page can call: each with its name, what it wants of its arguments, what a
// refusal logs, and the function. Constant data.
#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <string_view>

#include "browsers/gecko/netscape_plugin_api.h"
#include "browsers/gecko/variant.h"

namespace Vantrel::Web::Gecko {

class ovOrvaneWebPlugin;

// The page's arguments, as many as the method's entry allows and of the kinds it wants.
using Arguments = std::span<const NPVariant>;

// False refuses the call after all; then nothing was done.
using ScriptFunction = bool (ovOrvaneWebPlugin::*)(Arguments args, NPVariant* result);

struct WantedArgument {
  Argument kind = Argument::kAnything;
  // What is logged when it is something else, in place of the method's own words.
  const char* refusal = nullptr;
};

struct ScriptMethod {
  // As many as a method can want.
  static constexpr size_t kMostWanted = 5;
  // For `most`: further arguments are ignored.
  static constexpr uint32_t kAnyNumber = UINT32_MAX;

  const char* name;
  ScriptFunction function;
  std::array<WantedArgument, kMostWanted> wanted;
  uint32_t least;
  uint32_t most;
  const char* refusal;  // null: the page is told, the log is not
};

// In the order in which a name is looked for.
std::span<const ScriptMethod> scriptMethods();

// Exact and case-sensitive; null for an unknown name.
const ScriptMethod* findScriptMethod(std::string_view name);

// Whether the method takes these arguments. A refusal is logged as the method's entry says.
bool acceptsArguments(const ScriptMethod& method, Arguments args);

}  // namespace Vantrel::Web::Gecko
