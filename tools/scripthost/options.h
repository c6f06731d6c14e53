// The command line of the script host.
#pragma once

#include <map>
#include <string>
#include <vector>

namespace Vantrel::ScriptHost {

struct Options {
  std::wstring script;
  // What the control is known by.
  std::wstring program = L"Orvane.OrvaneWebCtrl.1";
  // The page's host.
  std::wstring host = L"demo.orvane.test";
  // A picture's file that is served to the control, and where its drawing goes.
  std::wstring image;
  std::wstring picture;
  int limitSeconds = 60;
  // The element's parameters, and the members of the script's `order`.
  std::map<std::string, std::string> parameters;
  std::map<std::string, std::string> order;
};

// Throws std::runtime_error with the usage for what is no option.
Options readOptions(const std::vector<std::wstring>& arguments);

}  // namespace Vantrel::ScriptHost
