#include "browsers/gecko/page_calls.h"

#include <array>
#include <cstdint>

#include "browsers/gecko/browser_functions.h"
#include "browsers/gecko/variant.h"

namespace Vantrel::Web::Gecko {

namespace {

// A string argument whose characters go back to the browser's allocator.
class StringArgument {
 public:
  explicit StringArgument(const std::string& text) { stringToVariant(text, &variant_); }
  ~StringArgument() {
    if (variant_.value.stringValue.UTF8Characters != nullptr) {
      browserFuncs.memfree(const_cast<char*>(variant_.value.stringValue.UTF8Characters));
    }
  }
  StringArgument(const StringArgument&) = delete;
  StringArgument& operator=(const StringArgument&) = delete;

  const NPVariant& get() const { return variant_; }

 private:
  NPVariant variant_;
};

// A returned string is left to the browser as it is; any other value is released.
void release(bool returned, NPVariant& result) {
  if (returned && result.type != NPVariantType_String) browserFuncs.releasevariantvalue(&result);
}

void invokeDefault(NPP npp, NPObject* function, const NPVariant* args, uint32_t count) {
  // The page may replace the function while it runs; it stays alive until it has returned.
  const RetainedObject running(function);
  NPVariant result = {NPVariantType_Void, {}};
  release(browserFuncs.invokeDefault(npp, function, args, count, &result), result);
}

}  // namespace

const char* pageEventName(PageEvent event) {
  static constexpr std::array<const char*, 5> kNames = {"drop", "dropex", "transfer", "dragleave",
                                                        "dragover"};
  return kNames[static_cast<size_t>(event)];
}

void callPage(NPP npp, NPObject* function, const std::string& text) {
  const StringArgument argument(text);
  invokeDefault(npp, function, &argument.get(), 1);
}

void callMethod(NPP npp, NPObject* object, const char* method, const std::string& text) {
  if (object == nullptr) return;
  const NPIdentifier name = browserFuncs.getstringidentifier(method);
  if (!browserFuncs.hasmethod(npp, object, name)) return;
  const RetainedObject running(object);
  const StringArgument argument(text);
  NPVariant result = {NPVariantType_Void, {}};
  release(browserFuncs.invoke(npp, object, name, &argument.get(), 1, &result), result);
}

void sendEvent(NPP npp, NPObject* target, PageEvent event, const std::string& payload) {
  if (target == nullptr) return;
  const StringArgument name(pageEventName(event));
  const StringArgument text(payload);
  const NPVariant args[] = {name.get(), text.get()};
  invokeDefault(npp, target, args, 2);
}

}  // namespace Vantrel::Web::Gecko
