#include "browsers/gecko/page_calls.h"

#include <cstdint>

#include "browsers/gecko/browser_functions.h"
#include "browsers/gecko/variant.h"
#include "threads/modal_scope.h"

namespace Vantrel::Web::Gecko {

namespace {

// A string argument. Its characters go back to the browser's allocator unless the argument as a
// whole was given back.
class StringArgument {
 public:
  explicit StringArgument(const std::string& text) { stringToVariant(text, &variant_); }
  ~StringArgument() {
    const char* const characters = variant_.value.stringValue.UTF8Characters;
    if (characters != nullptr) browserFuncs.memfree(const_cast<char*>(characters));
  }
  StringArgument(const StringArgument&) = delete;
  StringArgument& operator=(const StringArgument&) = delete;

  const NPVariant& get() const { return variant_; }
  void giveBack() {
    if (variant_.value.stringValue.UTF8Characters != nullptr) {
      browserFuncs.releasevariantvalue(&variant_);
    }
    variant_ = {NPVariantType_Void, {}};
    variant_.value.stringValue = {nullptr, 0};
  }

 private:
  NPVariant variant_;
};

// A returned string is left to the browser as it is; any other value is released.
void release(bool returned, NPVariant& result) {
  if (returned && result.type != NPVariantType_String) browserFuncs.releasevariantvalue(&result);
}

void invokeDefault(NPP npp, NPObject* function, const NPVariant* args, uint32_t count) {
  NPVariant result = {NPVariantType_Void, {}};
  release(browserFuncs.invokeDefault(npp, function, args, count, &result), result);
}

}  // namespace

void callPage(NPP npp, NPObject* function, const std::string& text) {
  const ModalScope scope;
  const StringArgument argument(text);
  invokeDefault(npp, function, &argument.get(), 1);
}

void callMethod(NPP npp, const std::weak_ptr<bool>& life, NPObject* object, const char* method,
                const std::string& text) {
  if (object == nullptr) return;
  const ModalScope scope;
  // The page may replace the object while it runs, as it does where it is asked for the method; the
  // object stays alive until it has returned.
  const RetainedObject running(object);
  const NPIdentifier name = browserFuncs.getstringidentifier(method);
  if (!browserFuncs.hasmethod(npp, object, name) || life.expired()) return;
  StringArgument argument(text);
  NPVariant result = {NPVariantType_Void, {}};
  release(browserFuncs.invoke(npp, object, name, &argument.get(), 1, &result), result);
  argument.giveBack();
}

void sendEvent(NPP npp, NPObject* target, PageEvent event, const std::string& payload) {
  if (target == nullptr) return;
  const ModalScope scope;
  // As above: the page may replace its function.
  const RetainedObject running(target);
  const StringArgument name(pageEventName(event));
  const StringArgument text(payload);
  const NPVariant args[] = {name.get(), text.get()};
  invokeDefault(npp, target, args, 2);
}

}  // namespace Vantrel::Web::Gecko
