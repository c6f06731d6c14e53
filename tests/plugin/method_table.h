// The methods of the script object with what each demands of its arguments. The tests of names and
// arguments walk it.
#pragma once

#include <string>
#include <vector>

#include "tests/host/values.h"

namespace Vantrel::Web {

enum class Demand { kText, kFullText, kBoolean, kNumber, kObject };

struct MethodEntry {
  const char* name;
  std::vector<Demand> demands;
  // Further arguments are ignored; otherwise the count is exact.
  bool takesMore = false;
  // One more argument of this kind may follow.
  std::vector<Demand> optional = {};
};

const std::vector<MethodEntry>& methodTable();

// Arguments that the method takes.
std::vector<Host::Value> goodArguments(const MethodEntry& method, NPObject* object);
Host::Value goodValue(Demand demand, NPObject* object);
// Values that a demand refuses.
std::vector<Host::Value> badValues(Demand demand, NPObject* object);

}  // namespace Vantrel::Web
