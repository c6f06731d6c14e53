#include "options.h"

#include <charconv>
#include <cstdio>
#include <map>

namespace engine {
namespace {

std::optional<int> number(const std::string& text) {
  int value = 0;
  const char* end = text.data() + text.size();
  const auto [last, error] = std::from_chars(text.data(), end, value);
  if (error != std::errc() || last != end || value < 0) return std::nullopt;
  return value;
}

bool readSize(const std::string& text, Options& options) {
  const size_t x = text.find('x');
  if (x == std::string::npos) return false;
  const std::optional<int> width = number(text.substr(0, x));
  const std::optional<int> height = number(text.substr(x + 1));
  if (!width || !height || *width == 0 || *height == 0) return false;
  options.width = *width;
  options.height = *height;
  return true;
}

bool readSeconds(const std::string& text, double& seconds) {
  const char* end = text.data() + text.size();
  const auto [last, error] = std::from_chars(text.data(), end, seconds);
  return error == std::errc() && last == end && seconds > 0 && seconds < 1e6;
}

bool setOption(Options& options, const std::string& name, const std::string& value) {
  static const std::map<std::string, std::string Options::*> texts = {
      {"--page", &Options::page},      {"--base-url", &Options::baseUrl},
      {"--root", &Options::root},      {"--dll", &Options::dll},
      {"--stubs", &Options::stubs},    {"--until", &Options::until},
      {"--fail-on", &Options::failOn}, {"--picture", &Options::picture},
  };
  static const std::map<std::string, std::optional<int> Options::*> numbers = {
      {"--remove-element-after", &Options::removeAfterMs},
      {"--reload-after", &Options::reloadAfterMs},
  };
  if (const auto found = texts.find(name); found != texts.end()) {
    options.*found->second = value;
    return true;
  }
  if (const auto found = numbers.find(name); found != numbers.end()) {
    options.*found->second = number(value);
    return (options.*found->second).has_value();
  }
  if (name == "--inject") {
    options.inject.push_back(value);
    return true;
  }
  if (name == "--console-descriptor") {
    options.consoleDescriptor = number(value).value_or(-1);
    return options.consoleDescriptor >= 0;
  }
  if (name == "--limit") return readSeconds(value, options.limitSeconds);
  if (name == "--size") return readSize(value, options);
  return false;
}

}  // namespace

std::optional<Options> parseOptions(const std::vector<std::string>& arguments,
                                    std::string& problem) {
  Options options;
  for (size_t i = 0; i < arguments.size(); i += 2) {
    if (i + 1 == arguments.size()) {
      problem = "no value after " + arguments[i];
      return std::nullopt;
    }
    if (!setOption(options, arguments[i], arguments[i + 1])) {
      problem = "bad option: " + arguments[i] + " " + arguments[i + 1];
      return std::nullopt;
    }
  }
  for (const auto& [name, value] :
       {std::pair{"--page", options.page}, {"--dll", options.dll}, {"--stubs", options.stubs}}) {
    if (!value.empty()) continue;
    problem = std::string(name) + " is missing";
    return std::nullopt;
  }
  return options;
}

}  // namespace engine
