#include "bench/plain_browser_win.h"

#include <windows.h>

#include <condition_variable>
#include <cstdlib>
#include <cstring>
#include <deque>
#include <map>
#include <mutex>
#include <utility>

#include "bench/bench.h"

namespace Vantrel::Web::Bench {
namespace {

constexpr wchar_t kLibrary[] = L"nporvaneweb.dll";
constexpr char kUserAgent[] = "Mozilla/5.0 (Windows NT 6.1; rv:52.0) Firefox/52.0";
constexpr std::string_view kHostname = "some.host";

struct PostedCall {
  NPP npp;
  NPAsyncCallFunction function;
  void* argument;
};

std::mutex postedMutex;  // guards posted
std::condition_variable postedChanged;
std::deque<PostedCall> posted;

// Identifiers are the addresses of these texts.
std::map<std::string, int, std::less<>> identifiers;

NPIdentifier identifierOf(const char* name) {
  const auto entry = identifiers.try_emplace(name, 0).first;
  return const_cast<std::string*>(&entry->first);
}

const std::string& nameOf(NPIdentifier identifier) {
  return *static_cast<const std::string*>(identifier);
}

NPVariant textVariant(std::string_view text) {
  NPVariant variant = {NPVariantType_String, {}};
  variant.value.stringValue = {text.data(), static_cast<uint32_t>(text.size())};
  return variant;
}

char* copyOf(std::string_view text) {
  char* const copy = static_cast<char*>(std::malloc(text.size() + 1));
  std::memcpy(copy, text.data(), text.size());
  copy[text.size()] = '\0';
  return copy;
}

// A page function is the only object of ours that the library calls.
bool NP_ABI callFunction(NPObject* object, const NPVariant* args, uint32_t count,
                         NPVariant* result) {
  *result = {NPVariantType_Void, {}};
  std::string_view text;
  if (count > 0 && args[0].type == NPVariantType_String) {
    const NPString given = args[0].value.stringValue;
    text = {given.UTF8Characters, given.UTF8Length};
  }
  static_cast<PageFunction*>(object)->call(text);
  return true;
}

NPClass* functionClass() {
  static NPClass table{};
  table.structVersion = NP_CLASS_STRUCT_VERSION;
  table.invokeDefault = callFunction;
  return &table;
}

// The page's window, which stands for its location too.
NPObject* window() {
  static PageFunction object([](std::string_view) {});
  return &object;
}

const char* NP_ABI userAgent(NPP) {
  return kUserAgent;
}

void* NP_ABI allocate(uint32_t size) {
  return std::malloc(size);
}

void NP_ABI release(void* block) {
  std::free(block);
}

NPError NP_ABI getUrlNotify(NPP, const char*, const char*, void*) {
  return NPERR_NO_ERROR;
}

NPError NP_ABI getValue(NPP, NPNVariable variable, void* value) {
  if (variable != NPNVWindowNPObject) return NPERR_GENERIC_ERROR;
  *static_cast<NPObject**>(value) = window();
  return NPERR_NO_ERROR;
}

NPIdentifier NP_ABI stringIdentifier(const char* name) {
  return identifierOf(name);
}

bool NP_ABI isString(NPIdentifier) {
  return true;
}

char* NP_ABI textOf(NPIdentifier identifier) {
  return copyOf(nameOf(identifier));
}

NPObject* NP_ABI createObject(NPP npp, NPClass* objectClass) {
  NPObject* const object = objectClass->allocate(npp, objectClass);
  object->_class = objectClass;
  object->referenceCount = 1;
  return object;
}

// Objects live as long as the process: there are few, and how they end is not measured.
NPObject* NP_ABI retain(NPObject* object) {
  ++object->referenceCount;
  return object;
}

void NP_ABI releaseObject(NPObject* object) {
  --object->referenceCount;
}

bool NP_ABI invokeDefault(NPP, NPObject* object, const NPVariant* args, uint32_t count,
                          NPVariant* result) {
  return object->_class->invokeDefault(object, args, count, result);
}

bool NP_ABI getProperty(NPP, NPObject*, NPIdentifier name, NPVariant* result) {
  if (nameOf(name) == "hostname") {
    *result = {NPVariantType_String, {}};
    result->value.stringValue = {copyOf(kHostname), static_cast<uint32_t>(kHostname.size())};
  } else {
    *result = {NPVariantType_Object, {}};
    result->value.objectValue = retain(window());
  }
  return true;
}

void NP_ABI releaseVariant(NPVariant* variant) {
  if (variant->type == NPVariantType_String) {
    std::free(const_cast<char*>(variant->value.stringValue.UTF8Characters));
  }
  *variant = {NPVariantType_Void, {}};
}

void NP_ABI post(NPP npp, NPAsyncCallFunction function, void* argument) {
  const std::lock_guard lock(postedMutex);
  posted.push_back({npp, function, argument});
  postedChanged.notify_one();
}

NPNetscapeFuncs browserTable() {
  NPNetscapeFuncs table{};
  table.size = sizeof table;
  table.version = NP_PLUGIN_VERSION;
  table.uagent = userAgent;
  table.memalloc = allocate;
  table.memfree = release;
  table.geturlnotify = getUrlNotify;
  table.getvalue = getValue;
  table.getstringidentifier = stringIdentifier;
  table.identifierisstring = isString;
  table.utf8fromidentifier = textOf;
  table.createobject = createObject;
  table.retainobject = retain;
  table.releaseobject = releaseObject;
  table.invokeDefault = invokeDefault;
  table.getproperty = getProperty;
  table.releasevariantvalue = releaseVariant;
  table.pluginthreadasynccall = post;
  return table;
}

}  // namespace

PageFunction::PageFunction(std::function<void(std::string_view)> onCall)
    : NPObject{functionClass(), 1}, call(std::move(onCall)) {}

PlainBrowser::PlainBrowser() : module_(LoadLibraryW(kLibrary)) {
  require(module_ != nullptr, "the library loads");
  static NPNetscapeFuncs table = browserTable();
  require(exported<NPError(NPNetscapeFuncs*)>("NP_Initialize")(&table) == NPERR_NO_ERROR,
          "NP_Initialize");
  plugin_.size = sizeof plugin_;
  require(exported<NPError(NPPluginFuncs*)>("NP_GetEntryPoints")(&plugin_) == NPERR_NO_ERROR,
          "NP_GetEntryPoints");
}

PlainBrowser::~PlainBrowser() {
  exported<NPError()>("NP_Shutdown")();
  FreeLibrary(static_cast<HMODULE>(module_));
}

void (*PlainBrowser::address(const char* name) const)() {
  const FARPROC function = GetProcAddress(static_cast<HMODULE>(module_), name);
  require(function != nullptr, name);
  return reinterpret_cast<void (*)()>(function);
}

void PlainBrowser::runUntil(const std::function<bool()>& done) {
  while (!done()) {
    std::unique_lock lock(postedMutex);
    postedChanged.wait(lock, [] { return !posted.empty(); });
    const PostedCall call = posted.front();
    posted.pop_front();
    lock.unlock();
    call.function(call.argument);
  }
}

PlainInstance::PlainInstance(const PlainBrowser& browser) : browser_(browser) {
  char type[] = "application/x-orvane-web";
  require(browser_.plugin().newp(type, &npp_, 1, 0, nullptr, nullptr, nullptr) == NPERR_NO_ERROR,
          "NPP_New");
  browser_.plugin().getvalue(&npp_, NPPVpluginScriptableNPObject, &script_);
  require(script_ != nullptr, "a script object");
}

PlainInstance::~PlainInstance() {
  end();
}

void PlainInstance::end() {
  if (std::exchange(ended_, true)) return;
  browser_.plugin().destroy(&npp_, nullptr);
  const std::lock_guard lock(postedMutex);
  std::erase_if(posted, [this](const PostedCall& call) { return call.npp == &npp_; });
}

size_t PlainInstance::call(const char* method, const std::vector<std::string_view>& texts,
                           PageFunction* function) {
  std::vector<NPVariant> arguments;
  arguments.reserve(texts.size() + 1);
  for (const std::string_view text : texts) arguments.push_back(textVariant(text));
  if (function != nullptr) {
    arguments.push_back({NPVariantType_Object, {}});
    arguments.back().value.objectValue = function;
  }
  NPVariant result{};
  require(script_->_class->invoke(script_, identifierOf(method), arguments.data(),
                                  static_cast<uint32_t>(arguments.size()), &result),
          method);
  const size_t length =
      result.type == NPVariantType_String ? result.value.stringValue.UTF8Length : 0;
  releaseVariant(&result);
  return length;
}

}  // namespace Vantrel::Web::Bench
