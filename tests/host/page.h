// The page's side of the browser: functions and objects of the page that record how the plug-in
// calls them, and the chain window.location.hostname of each instance, every step of which can be
// broken. Browser's thread only. Page objects live at most as long as the Page that made them; a
// dead one stays in memory until then, so that its use is a fault and no crash.
#pragma once

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "browsers/gecko/netscape_plugin_api.h"
#include "tests/host/browser_memory.h"
#include "tests/host/identifiers.h"
#include "tests/host/objects.h"
#include "tests/host/values.h"

namespace Vantrel::Web::Host {

// Label of the blocks with the hostname that an instance was given.
std::string hostnameBlock(NPP npp);
inline constexpr char kPageResultBlock[] = "result of a page function";

class Page;

// One call of a page function; `method` is empty for a call of the function itself.
struct PageCall {
  std::string method;
  std::vector<Value> arguments;
};

class PageObject : public NPObject {
 public:
  PageObject(Page& owner, std::string name);

  Page& page;
  const std::string label;
  // What a call returns; `throws` makes it fail and leave a poisoned result instead.
  Value answer;
  bool throws = false;
  // Runs inside a call, after it was recorded.
  std::function<void(const PageCall&)> onCall;
  // Runs when the object is asked for a method, as an accessor of the page's does.
  std::function<void()> onMethodAsked;
  std::vector<std::string> methods;
  std::map<std::string, std::function<bool(NPVariant*)>> properties;
  std::vector<PageCall> calls;
};

// One reference of the page on an object of its own.
class PageReference {
 public:
  PageReference(Objects& objects, PageObject& object) : objects_(&objects), object_(&object) {}
  PageReference(PageReference&& other) noexcept;
  PageReference& operator=(PageReference&& other) noexcept;
  ~PageReference();

  PageObject* operator->() const { return object_; }
  PageObject* get() const { return object_; }
  Value value() const { return Value::of(object_); }
  // Gives the reference up early.
  void drop();

 private:
  Objects* objects_;
  PageObject* object_;
};

// How one step of the hostname look-up ends.
enum class Step {
  kWorks,
  kFails,           // the browser says no and leaves the result as it was
  kFailsButWrites,  // the browser says no and leaves something in the result
  kUntouched,       // the browser says yes and leaves the result as it was
  kNull,
  kNumber,
  kText,  // of `location` only: a text where an object belongs
};

struct Address {
  Step window = Step::kWorks;
  Step location = Step::kWorks;
  Step hostname = Step::kWorks;
  std::string host = "some.host";
};

class Page {
 public:
  Page(Faults& faults, Objects& objects, BrowserMemory& memory, Identifiers& identifiers);
  Page(const Page&) = delete;
  Page& operator=(const Page&) = delete;
  ~Page();

  PageReference makeFunction(std::string label);
  PageReference makeObject(std::string label, std::vector<std::string> methods);

  // What NPN_GetValue answers for the window of an instance; makes the window at its first use.
  NPError window(NPP npp, NPObject** result);
  // Frames of the hostname look-up of an instance, null when none was asked for.
  PageObject* windowOf(NPP npp) const;
  PageObject* locationOf(NPP npp) const;
  void forget(NPP npp);

  Address address;

  Faults& faults() { return faults_; }
  Objects& objects() { return objects_; }
  BrowserMemory& memory() { return memory_; }
  Identifiers& identifiers() { return identifiers_; }

 private:
  struct Frame {
    PageObject* window = nullptr;
    PageObject* location = nullptr;
  };

  PageObject& make(NPP owner, std::string label);
  Frame& frameOf(NPP npp);
  bool readLocation(NPP npp, NPVariant* result);
  bool readHostname(NPP npp, NPVariant* result);

  Faults& faults_;
  Objects& objects_;
  BrowserMemory& memory_;
  Identifiers& identifiers_;
  std::vector<std::unique_ptr<PageObject>> made_;
  std::map<NPP, Frame> frames_;
};

}  // namespace Vantrel::Web::Host
