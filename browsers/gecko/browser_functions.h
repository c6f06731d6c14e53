// The browser's functions, which every NPN_* call of the library goes through, and owners for what
// they hand out. Browser's thread only, but for pluginthreadasynccall, which any thread may call.
#pragma once

#include <cstdint>
#include <utility>

#include "browsers/gecko/netscape_plugin_api.h"

namespace Vantrel::Web::Gecko {

// A private copy of the browser's table, made by NP_Initialize. A function that we call and the
// browser does not have is replaced by one that fails, so that no call needs to ask; only
// pluginthreadasynccall may be null.
extern NPNetscapeFuncs browserFuncs;

// The bytes that the members we call take up; a table may end there.
inline constexpr uint16_t kNeededTableSize =
    offsetof(NPNetscapeFuncs, pluginthreadasynccall) + sizeof(NPN_PluginThreadAsyncCallProcPtr);

// Copies the whole table, or as many bytes as a shorter one that has all we need says it holds.
void copyBrowserFunctions(const NPNetscapeFuncs& funcs);

// One counted reference to a page object, released when its owner goes. May be empty.
class RetainedObject {
 public:
  RetainedObject() = default;
  // Takes a reference of its own.
  explicit RetainedObject(NPObject* retained) : object_(retained) {
    if (object_ != nullptr) browserFuncs.retainobject(object_);
  }
  ~RetainedObject() { reset(); }
  RetainedObject(RetainedObject&& other) noexcept
      : object_(std::exchange(other.object_, nullptr)) {}
  RetainedObject& operator=(RetainedObject&& other) noexcept {
    if (this != &other) {
      reset();
      object_ = std::exchange(other.object_, nullptr);
    }
    return *this;
  }

  void reset() {
    NPObject* const former = std::exchange(object_, nullptr);
    if (former != nullptr) browserFuncs.releaseobject(former);
  }
  // Gives the reference up without releasing it.
  NPObject* forget() { return std::exchange(object_, nullptr); }
  NPObject* get() const { return object_; }
  explicit operator bool() const { return object_ != nullptr; }

 private:
  NPObject* object_ = nullptr;
};

}  // namespace Vantrel::Web::Gecko
