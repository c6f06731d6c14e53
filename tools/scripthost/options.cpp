#include "tools/scripthost/options.h"

#include <stdexcept>

#include "text/wide_text.h"

namespace Vantrel::ScriptHost {

namespace {

constexpr char kUsage[] =
    "usage: orvane_script_host [--program ID] [--host NAME] [--image FILE] [--picture FILE]\n"
    "  [--limit SECONDS] [--parameter NAME=VALUE ...] SCRIPT [NAME=VALUE ...]";

void addPair(const std::wstring& text, std::map<std::string, std::string>& pairs) {
  const size_t sign = text.find(L'=');
  if (sign == std::wstring::npos || sign == 0) throw std::runtime_error(kUsage);
  pairs[Web::toUtf8(text.substr(0, sign))] = Web::toUtf8(text.substr(sign + 1));
}

void readOption(const std::wstring& name, const std::wstring& value, Options& options) {
  if (name == L"--program") {
    options.program = value;
  } else if (name == L"--host") {
    options.host = value;
  } else if (name == L"--image") {
    options.image = value;
  } else if (name == L"--picture") {
    options.picture = value;
  } else if (name == L"--limit") {
    options.limitSeconds = std::stoi(value);
  } else if (name == L"--parameter") {
    addPair(value, options.parameters);
  } else {
    throw std::runtime_error(kUsage);
  }
}

}  // namespace

Options readOptions(const std::vector<std::wstring>& arguments) {
  Options options;
  for (size_t i = 0; i < arguments.size(); ++i) {
    const std::wstring& argument = arguments[i];
    if (argument.rfind(L"--", 0) == 0) {
      if (++i == arguments.size()) throw std::runtime_error(kUsage);
      readOption(argument, arguments[i], options);
    } else if (options.script.empty()) {
      options.script = argument;
    } else {
      addPair(argument, options.order);
    }
  }
  if (options.script.empty()) throw std::runtime_error(kUsage);
  return options;
}

}  // namespace Vantrel::ScriptHost
