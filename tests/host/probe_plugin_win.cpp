// A tiny plug-in that misbehaves on request: each script method commits one offence against the
// browser, so that the tests of the counting host see that it is caught. Without such a call it is
// clean and behaves as the real library does by design.
#include <windows.h>

#include <cstring>
#include <map>
#include <string>
#include <thread>

#include "browsers/gecko/netscape_plugin_api.h"

namespace {

NPNetscapeFuncs browser;
NPObject* borrowed = nullptr;

struct Call {
  NPObject* self;
  const NPVariant* args;
  NPVariant* result;
};

char* firstText(const Call& call) {
  return const_cast<char*>(call.args[0].value.stringValue.UTF8Characters);
}

void deliver(void* function) {
  NPVariant result{};
  auto* object = static_cast<NPObject*>(function);
  browser.invokeDefault(nullptr, object, nullptr, 0, &result);
  browser.releasevariantvalue(&result);
  browser.releaseobject(object);
}

bool answerText(const Call& call) {
  const NPString& text = call.args[0].value.stringValue;
  char* copy = static_cast<char*>(browser.memalloc(text.UTF8Length + 1));
  std::memcpy(copy, text.UTF8Characters, text.UTF8Length);
  copy[text.UTF8Length] = '\0';
  call.result->type = NPVariantType_String;
  call.result->value.stringValue = {copy, text.UTF8Length};
  return true;
}

bool leakMemory(const Call&) {
  return browser.memalloc(10) != nullptr;
}

bool overrun(const Call&) {
  char* block = static_cast<char*>(browser.memalloc(10));
  volatile size_t behind = 10;
  block[behind] = 'x';
  browser.memfree(block);
  return true;
}

bool freeTwice(const Call&) {
  void* block = browser.memalloc(10);
  browser.memfree(block);
  browser.memfree(block);
  return true;
}

bool writeFreed(const Call&) {
  char* block = static_cast<char*>(browser.memalloc(10));
  browser.memfree(block);
  *static_cast<volatile char*>(block) = 'x';
  return true;
}

bool leakReference(const Call& call) {
  browser.retainobject(call.args[0].value.objectValue);
  return true;
}

bool releaseTooOften(const Call& call) {
  browser.releaseobject(call.args[0].value.objectValue);
  return true;
}

bool borrow(const Call& call) {
  borrowed = call.args[0].value.objectValue;
  return true;
}

bool useBorrowed(const Call&) {
  NPVariant result{};
  return browser.invokeDefault(nullptr, borrowed, nullptr, 0, &result);
}

bool callOffThread(const Call&) {
  std::thread([] { browser.memfree(browser.memalloc(1)); }).join();
  return true;
}

bool callBackLater(const Call& call) {
  NPObject* function = browser.retainobject(call.args[0].value.objectValue);
  std::thread([function] { browser.pluginthreadasynccall(nullptr, deliver, function); }).join();
  return true;
}

// Leaves a thread behind, in a module that stays mapped for it.
bool leakThread(const Call&) {
  HMODULE self;
  GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS, reinterpret_cast<LPCWSTR>(&browser),
                     &self);
  // Until it runs, the system does not know where a thread starts.
  static const HANDLE running = CreateEventW(nullptr, TRUE, FALSE, nullptr);
  const auto wait = [](void*) -> DWORD {
    SetEvent(running);
    Sleep(INFINITE);
    return 0;
  };
  CloseHandle(CreateThread(nullptr, 0, wait, nullptr, 0, nullptr));
  WaitForSingleObject(running, INFINITE);
  return true;
}

bool readBehindText(const Call& call) {
  volatile char* text = firstText(call);
  return text[call.args[0].value.stringValue.UTF8Length] == 'x';
}

bool readBehindArguments(const Call& call) {
  return call.args[1].type == NPVariantType_Null;
}

bool answerOwnMemory(const Call& call) {
  call.result->type = NPVariantType_String;
  call.result->value.stringValue = {"static", 6};
  return true;
}

bool refuseWithResult(const Call& call) {
  call.result->type = NPVariantType_Bool;
  return false;
}

bool callUnneeded(const Call&) {
  return browser.geturl(nullptr, "x", nullptr) == 0;
}

bool inventIdentifier(const Call& call) {
  return browser.identifierisstring(const_cast<NPVariant*>(call.args));
}

bool leakName(const Call&) {
  return browser.utf8fromidentifier(browser.getstringidentifier("name")) != nullptr;
}

bool releaseCallResult(const Call& call) {
  NPVariant result{};
  browser.invokeDefault(nullptr, call.args[0].value.objectValue, nullptr, 0, &result);
  browser.releasevariantvalue(&result);
  return true;
}

bool keepCallResult(const Call& call) {
  NPVariant result{};
  return browser.invokeDefault(nullptr, call.args[0].value.objectValue, nullptr, 0, &result);
}

const std::map<std::string, bool (*)(const Call&)> kMethods = {
    {"answerText", answerText},
    {"leakMemory", leakMemory},
    {"overrun", overrun},
    {"freeTwice", freeTwice},
    {"writeFreed", writeFreed},
    {"leakReference", leakReference},
    {"releaseTooOften", releaseTooOften},
    {"borrow", borrow},
    {"useBorrowed", useBorrowed},
    {"callOffThread", callOffThread},
    {"callBackLater", callBackLater},
    {"leakThread", leakThread},
    {"readBehindText", readBehindText},
    {"readBehindArguments", readBehindArguments},
    {"answerOwnMemory", answerOwnMemory},
    {"refuseWithResult", refuseWithResult},
    {"callUnneeded", callUnneeded},
    {"inventIdentifier", inventIdentifier},
    {"leakName", leakName},
    {"releaseCallResult", releaseCallResult},
    {"keepCallResult", keepCallResult},
};

std::string nameOf(NPIdentifier identifier) {
  char* name = browser.utf8fromidentifier(identifier);
  std::string text = name == nullptr ? "" : name;
  browser.memfree(name);
  return text;
}

NPObject* allocate(NPP, NPClass*) {
  return new NPObject{};
}
void deallocate(NPObject* object) {
  delete object;
}
void invalidate(NPObject*) {}
bool hasMethod(NPObject*, NPIdentifier name) {
  return kMethods.contains(nameOf(name));
}

bool invoke(NPObject* self, NPIdentifier name, const NPVariant* args, uint32_t, NPVariant* result) {
  const auto found = kMethods.find(nameOf(name));
  return found != kMethods.end() && found->second({self, args, result});
}

NPClass scriptClass = {NP_CLASS_STRUCT_VERSION,
                       allocate,
                       deallocate,
                       invalidate,
                       hasMethod,
                       invoke,
                       nullptr,
                       nullptr,
                       nullptr,
                       nullptr,
                       nullptr,
                       nullptr,
                       nullptr};

void readHostname(NPP npp) {
  NPObject* window = nullptr;
  if (browser.getvalue(npp, NPNVWindowNPObject, static_cast<void*>(&window)) != 0) return;
  NPVariant location{};
  NPVariant hostname{};
  if (window == nullptr) return;
  const bool found =
      browser.getproperty(npp, window, browser.getstringidentifier("location"), &location);
  if (!found || location.type != NPVariantType_Object) return;
  browser.getproperty(npp, location.value.objectValue, browser.getstringidentifier("hostname"),
                      &hostname);
}

NPError create(NPMIMEType, NPP npp, uint16_t, int16_t argc, char**, char**, NPSavedData*) {
  readHostname(npp);
  // A parameter makes the probe look twice, which leaves more than the host knows of.
  if (argc != 0) readHostname(npp);
  npp->pdata = browser.createobject(npp, &scriptClass);
  return NPERR_NO_ERROR;
}

NPError destroy(NPP npp, NPSavedData**) {
  npp->pdata = nullptr;
  return NPERR_NO_ERROR;
}

NPError getValue(NPP npp, NPPVariable variable, void* value) {
  if (variable != NPPVpluginScriptableNPObject) return NPERR_GENERIC_ERROR;
  *static_cast<NPObject**>(value) = browser.retainobject(static_cast<NPObject*>(npp->pdata));
  return NPERR_NO_ERROR;
}

}  // namespace

extern "C" {

__declspec(dllexport) NPError NP_Initialize(NPNetscapeFuncs* table) {
  std::memcpy(&browser, table, sizeof browser);
  return NPERR_NO_ERROR;
}

__declspec(dllexport) NPError NP_GetEntryPoints(NPPluginFuncs* table) {
  table->newp = create;
  table->destroy = destroy;
  table->getvalue = getValue;
  return NPERR_NO_ERROR;
}

__declspec(dllexport) NPError NP_Shutdown() {
  return NPERR_NO_ERROR;
}
}
