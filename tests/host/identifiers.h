// The browser's identifiers: interned names and numbers, one record for each, alive as long as the
// host. Browser's thread only.
#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <string_view>

#include "browsers/gecko/netscape_plugin_api.h"
#include "tests/host/browser_memory.h"
#include "tests/host/faults.h"

namespace Vantrel::Web::Host {

inline constexpr char kNameBlock[] = "name of an identifier";

class Identifiers {
 public:
  Identifiers(Faults& faults, BrowserMemory& memory);

  NPIdentifier ofText(std::string_view name);
  NPIdentifier ofNumber(int32_t number);

  // A pointer that is no identifier of this browser is a fault; it reads as no text and number 0.
  bool isText(NPIdentifier identifier);
  int32_t number(NPIdentifier identifier);
  std::string text(NPIdentifier identifier);
  // The name in a block that the plug-in must free, or null for a number. `fail` makes it null
  // once.
  char* copyName(NPIdentifier identifier);
  void failNextName() { failNextName_ = true; }

  int count() const { return static_cast<int>(known_.size()); }

 private:
  struct Record {
    bool isText;
    std::string text;
    int32_t number;
  };
  const Record* find(NPIdentifier identifier);

  Faults& faults_;
  BrowserMemory& memory_;
  std::map<std::string, std::unique_ptr<Record>, std::less<>> texts_;
  std::map<int32_t, std::unique_ptr<Record>> numbers_;
  std::set<const void*> known_;
  bool failNextName_ = false;
};

}  // namespace Vantrel::Web::Host
