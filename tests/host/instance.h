// One plug-in instance as a browser holds it: made by NPP_New, called by the page through its
// script object, ended in two steps. destroy() is NPP_Destroy; settle() is what a browser does
// then: it frees all objects of the instance whatever is held on them. Before that it compares what
// the plug-in still holds with what it is known to hold, exactly. Browser's thread only.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "tests/host/counting_host.h"
#include "tests/host/values.h"

namespace Vantrel::Web::Host {

// One element parameter; either side may be missing.
using Parameter = std::pair<std::optional<std::string>, std::optional<std::string>>;

struct CallResult {
  bool accepted = false;
  Value value;
};

// What the plug-in holds for ever by design, besides the references and the text of the hostname
// look-up, which the host works out itself from the address it played.
struct Kept {
  // The reference of NPN_CreateObject; 0 when no script object was made.
  int scriptObject = 1;
  // References on page objects, such as an observer that was set at the end.
  std::vector<std::pair<NPObject*, int>> objects = {};
  // One that is being called has a reference more, which goes when it returns.
  NPObject* running = nullptr;
  // Texts returned by page functions.
  int pageResults = 0;
};

class Instance {
 public:
  explicit Instance(CountingHost& host, const std::vector<Parameter>& parameters = {});
  // With an argument count that may differ from the number of parameters given.
  Instance(CountingHost& host, const std::vector<Parameter>& parameters, int16_t count);
  Instance(const Instance&) = delete;
  Instance& operator=(const Instance&) = delete;
  // Ends the instance with the usual expectations if the test did not.
  ~Instance();

  // Result of NPP_New.
  NPError error() const { return error_; }
  NPP npp() { return &npp_; }

  // The script object, by NPP_GetValue at the first use; the browser's reference is held here.
  NPObject* script();
  bool hasMethod(std::string_view name);
  bool hasProperty(std::string_view name);
  CallResult call(std::string_view name, const std::vector<Value>& arguments = {});
  CallResult invoke(NPIdentifier name, const std::vector<Value>& arguments);
  CallResult get(std::string_view name);
  bool set(std::string_view name, const Value& value);

  // Calls that are queued at the end are dropped by destroy(), as browsers do, unless this is set.
  bool deliverLateCalls = false;

  NPError destroy();
  void settle(const Kept& kept = {});
  // Both.
  void end(const Kept& kept = {});

 private:
  void create(const std::vector<Parameter>& parameters, int16_t count);
  CallResult receive(bool accepted, NPVariant& result);
  void settleReferences(NPObject* object, int known, const std::string& what);
  void settleHostname();

  CountingHost& host_;
  NPP_t npp_{};
  NPError error_ = NPERR_NO_ERROR;
  NPObject* script_ = nullptr;
  // The address that the host played when the instance was made.
  const Address address_;
  bool destroyed_ = false;
  bool settled_ = false;
};

}  // namespace Vantrel::Web::Host
