// The methods of the dispatch interface: each with its name and number, what it wants, what it
// gives back, and what becomes of what it throws. Constant data; a test compares it with the type
// library.
#pragma once

#include <windows.h>
#include <oleauto.h>

#include <array>
#include <exception>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "browsers/activex/dispatch_arguments_win.h"

namespace Vantrel::Web::ActiveX {

class COrvaneWebCtrl;

// What a method throws when the desktop client has not replied: a script error with a text of its
// own.
class ContactRefused : public std::exception {};

// The two properties.
inline constexpr DISPID kNameId = 1;
inline constexpr DISPID kEventHandlerId = 28;
inline constexpr wchar_t kNameProperty[] = L"name";
inline constexpr wchar_t kEventHandlerProperty[] = L"eventHandler";

// A method's text for the script; none is a text that is null.
using MethodText = std::optional<std::string>;
using MethodFunction = MethodText (COrvaneWebCtrl::*)(const DispatchArguments& args);

enum class MethodResult {
  kNothing,
  kText,
  kBytes,  // a text of plain characters, which may be long
};

// What becomes of an exception; it is logged but for the last.
enum class OnException {
  kReply,  // a text that is an error reply; nothing for a method without a result
  kScriptError,
  kNullText,
  kSilence,
};

struct DispatchMethod {
  const wchar_t* name;
  DISPID id;
  MethodResult result;
  MethodFunction function;
  std::array<Parameter, kMostParameters> parameters;
  size_t count;
  OnException onException = OnException::kReply;
  // What stands before the exception's text; null for nothing.
  const char* failure = nullptr;

  std::span<const Parameter> wanted() const { return {parameters.data(), count}; }
};

std::span<const DispatchMethod> dispatchMethods();

// Null for an unknown one. Names are compared without regard to case.
const DispatchMethod* findDispatchMethod(DISPID id);
const DispatchMethod* findDispatchMethod(const wchar_t* name);

bool isSameName(const wchar_t* left, const wchar_t* right);

}  // namespace Vantrel::Web::ActiveX
