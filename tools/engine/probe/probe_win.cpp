// A plug-in that answers questions about its browser. The browser's own test runs it: every script
// method exercises one road through the bridge.
#include <windows.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <map>
#include <string>

#include "browsers/gecko/netscape_plugin_api.h"

namespace {

NPNetscapeFuncs browser{};
DWORD browserThread = 0;
LONG calls = 0;
LONG instancesMade = 0;
LONG instancesDestroyed = 0;
LONG asyncDelivered = 0;
constexpr UINT callMessage = 1151;
constexpr UINT faultMessage = 1152;

struct Instance {
  NPP npp;
  HWND window;
  NPObject* script;
  NPObject* handler;
  std::map<std::string, std::string> parameters;
};

struct ScriptObject : NPObject {
  Instance* instance;
};

Instance* instanceOf(NPObject* object) {
  return static_cast<ScriptObject*>(object)->instance;
}

std::string nameOf(NPIdentifier identifier) {
  if (!browser.identifierisstring(identifier)) return {};
  char* characters = browser.utf8fromidentifier(identifier);
  std::string name = characters;
  browser.memfree(characters);
  return name;
}

void setText(NPVariant* result, const std::string& text) {
  auto* characters = static_cast<char*>(browser.memalloc(static_cast<uint32_t>(text.size()) + 1));
  std::memcpy(characters, text.c_str(), text.size() + 1);
  result->type = NPVariantType_String;
  result->value.stringValue = {characters, static_cast<uint32_t>(text.size())};
}

void setNumber(NPVariant* result, int number) {
  result->type = NPVariantType_Int32;
  result->value.intValue = number;
}

std::string textOf(const NPVariant& value) {
  if (value.type != NPVariantType_String) return {};
  return {value.value.stringValue.UTF8Characters, value.value.stringValue.UTF8Length};
}

int numberOf(const NPVariant& value) {
  if (value.type == NPVariantType_Double) return static_cast<int>(value.value.doubleValue);
  return value.type == NPVariantType_Int32 ? value.value.intValue : 0;
}

NPObject* objectOf(const NPVariant& value) {
  return value.type == NPVariantType_Object ? value.value.objectValue : nullptr;
}

void copyVariant(const NPVariant& from, NPVariant* to) {
  if (from.type == NPVariantType_String) {
    setText(to, textOf(from));
    return;
  }
  *to = from;
  if (NPObject* object = objectOf(from)) browser.retainobject(object);
}

std::string describe(const NPVariant& value) {
  char text[64] = "";
  switch (value.type) {
    case NPVariantType_Void:
      return "void";
    case NPVariantType_Null:
      return "null";
    case NPVariantType_Bool:
      return value.value.boolValue ? "bool true" : "bool false";
    case NPVariantType_Int32:
      std::snprintf(text, sizeof text, "int %d", value.value.intValue);
      break;
    case NPVariantType_Double:
      std::snprintf(text, sizeof text, "double %.17g", value.value.doubleValue);
      break;
    case NPVariantType_String:
      return "string " + textOf(value);
    case NPVariantType_Object:
      return "object";
  }
  return text;
}

// A page function that is called later, once or several times, from another place.
struct LaterCall {
  NPP npp;
  NPObject* function;
  int delayMs;
  int left;
};

void callFunction(NPP npp, NPObject* function, int argument) {
  NPVariant value{}, result{};
  setNumber(&value, argument);
  if (browser.invokeDefault(npp, function, &value, 1, &result))
    browser.releasevariantvalue(&result);
}

void deliver(void* argument) {
  auto* call = static_cast<LaterCall*>(argument);
  InterlockedIncrement(&asyncDelivered);
  if (GetCurrentThreadId() != browserThread) std::abort();
  const int number = call->left;
  callFunction(call->npp, call->function, number);
  browser.releaseobject(call->function);
  delete call;
}

DWORD WINAPI postFromWorker(void* argument) {
  auto* call = static_cast<LaterCall*>(argument);
  Sleep(static_cast<DWORD>(call->delayMs));
  for (int i = 1; i <= call->left; ++i)
    browser.pluginthreadasynccall(call->npp, deliver,
                                  new LaterCall{call->npp, call->function, 0, i});
  delete call;
  return 0;
}

DWORD WINAPI askFromWorker(void* argument) {
  browser.uagent(static_cast<NPP>(argument));
  return 0;
}

void startWorker(LPTHREAD_START_ROUTINE function, void* argument) {
  CloseHandle(CreateThread(nullptr, 0, function, argument, 0, nullptr));
}

LRESULT CALLBACK messageProcedure(HWND window, UINT message, WPARAM wparam, LPARAM lparam) {
  if (message == faultMessage) RaiseException(EXCEPTION_ACCESS_VIOLATION, 0, 0, nullptr);
  if (message != callMessage) return DefWindowProcW(window, message, wparam, lparam);
  auto* call = reinterpret_cast<LaterCall*>(lparam);
  callFunction(call->npp, call->function, call->left);
  browser.releaseobject(call->function);
  delete call;
  return 0;
}

HWND messageWindow() {
  static HWND window = nullptr;
  if (window) return window;
  WNDCLASSW description{};
  description.lpfnWndProc = messageProcedure;
  description.lpszClassName = L"ProbeMessages";
  RegisterClassW(&description);
  window = CreateWindowExW(0, L"ProbeMessages", L"", 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr, nullptr,
                           nullptr);
  return window;
}

// A modal dialog's loop in small.
void pumpMessages(DWORD milliseconds) {
  const ULONGLONG end = GetTickCount64() + milliseconds;
  while (GetTickCount64() < end) {
    MSG message;
    while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) DispatchMessageW(&message);
    Sleep(1);
  }
}

std::string hostName(NPP npp) {
  NPObject* window = nullptr;
  NPVariant location{}, host{};
  if (browser.getvalue(npp, NPNVWindowNPObject, &window) != NPERR_NO_ERROR) return "no window";
  browser.getproperty(npp, window, browser.getstringidentifier("location"), &location);
  browser.getproperty(npp, objectOf(location), browser.getstringidentifier("hostname"), &host);
  const std::string name = textOf(host);
  browser.releasevariantvalue(&host);
  browser.releasevariantvalue(&location);
  browser.releaseobject(window);
  return name;
}

std::string windowState(const Instance& instance) {
  RECT area{};
  if (!IsWindow(instance.window) || !GetClientRect(instance.window, &area)) return "none";
  return std::to_string(area.right) + "x" + std::to_string(area.bottom);
}

std::string browserWindow(NPP npp) {
  HWND window = nullptr;
  browser.getvalue(npp, NPNVnetscapeWindow, &window);
  return IsWindow(window) ? "window" : "none";
}

std::string tableState() {
  return std::to_string(browser.size) + (browser.initasyncsurface ? " full" : " zeroed");
}

std::string counts() {
  return "made " + std::to_string(instancesMade) + " destroyed " +
         std::to_string(instancesDestroyed) + " async " + std::to_string(asyncDelivered);
}

using Answer = bool (*)(Instance&, const NPVariant* args, uint32_t count, NPVariant* result);

NPObject* retained(const NPVariant& function) {
  return browser.retainobject(objectOf(function));
}

const std::map<std::string, Answer> methods = {
    {"echo",
     [](Instance&, const NPVariant* args, uint32_t, NPVariant* result) {
       copyVariant(args[0], result);
       return true;
     }},
    {"describe",
     [](Instance&, const NPVariant* args, uint32_t count, NPVariant* result) {
       setText(result, count ? describe(args[0]) : "nothing");
       return true;
     }},
    {"integer",
     [](Instance&, const NPVariant* args, uint32_t, NPVariant* result) {
       setNumber(result, numberOf(args[0]));
       return true;
     }},
    {"call",
     [](Instance& instance, const NPVariant* args, uint32_t, NPVariant* result) {
       return browser.invokeDefault(instance.npp, objectOf(args[0]), args + 1, 1, result);
     }},
    {"callLater",
     [](Instance& instance, const NPVariant* args, uint32_t, NPVariant*) {
       const int times = numberOf(args[1]);
       NPObject* function = objectOf(args[0]);
       for (int i = 0; i < times; ++i) browser.retainobject(function);
       startWorker(postFromWorker, new LaterCall{instance.npp, function, numberOf(args[2]), times});
       return true;
     }},
    {"callFromMessage",
     [](Instance& instance, const NPVariant* args, uint32_t, NPVariant*) {
       auto* call = new LaterCall{instance.npp, retained(args[0]), 0, numberOf(args[1])};
       PostMessageW(messageWindow(), callMessage, 0, reinterpret_cast<LPARAM>(call));
       return true;
     }},
    {"pump",
     [](Instance&, const NPVariant* args, uint32_t, NPVariant*) {
       pumpMessages(static_cast<DWORD>(numberOf(args[0])));
       return true;
     }},
    {"raise",
     [](Instance& instance, const NPVariant* args, uint32_t, NPVariant*) {
       browser.setexception(instance.script, textOf(args[0]).c_str());
       return true;
     }},
    {"refuse", [](Instance&, const NPVariant*, uint32_t, NPVariant*) { return false; }},
    {"askOffThread",
     [](Instance& instance, const NPVariant*, uint32_t, NPVariant*) {
       startWorker(askFromWorker, instance.npp);
       return true;
     }},
    {"never",
     [](Instance&, const NPVariant*, uint32_t, NPVariant*) {
       Sleep(INFINITE);
       return true;
     }},
    {"fault",
     [](Instance&, const NPVariant*, uint32_t, NPVariant*) {
       RaiseException(EXCEPTION_ACCESS_VIOLATION, 0, 0, nullptr);
       return true;
     }},
    {"faultInMessage",
     [](Instance&, const NPVariant*, uint32_t, NPVariant*) {
       PostMessageW(messageWindow(), faultMessage, 0, 0);
       return true;
     }},
    {"throwException", [](Instance&, const NPVariant*, uint32_t, NPVariant*) -> bool { throw 5; }},
    {"abort",
     [](Instance&, const NPVariant*, uint32_t, NPVariant*) {
       std::abort();
       return true;
     }},
    {"calls",
     [](Instance&, const NPVariant*, uint32_t, NPVariant* result) {
       setNumber(result, calls);
       return true;
     }},
    {"counts",
     [](Instance&, const NPVariant*, uint32_t, NPVariant* result) {
       setText(result, counts());
       return true;
     }},
    {"hostName",
     [](Instance& instance, const NPVariant*, uint32_t, NPVariant* result) {
       setText(result, hostName(instance.npp));
       return true;
     }},
    {"userAgent",
     [](Instance& instance, const NPVariant*, uint32_t, NPVariant* result) {
       setText(result, browser.uagent(instance.npp));
       return true;
     }},
    {"windowState",
     [](Instance& instance, const NPVariant*, uint32_t, NPVariant* result) {
       setText(result, windowState(instance));
       return true;
     }},
    {"browserWindow",
     [](Instance& instance, const NPVariant*, uint32_t, NPVariant* result) {
       setText(result, browserWindow(instance.npp));
       return true;
     }},
    {"tableState",
     [](Instance&, const NPVariant*, uint32_t, NPVariant* result) {
       setText(result, tableState());
       return true;
     }},
    {"environment",
     [](Instance&, const NPVariant* args, uint32_t, NPVariant* result) {
       char value[256] = "";
       GetEnvironmentVariableA(textOf(args[0]).c_str(), value, sizeof value);
       setText(result, value);
       return true;
     }},
    {"start",
     [](Instance&, const NPVariant* args, uint32_t, NPVariant* result) {
       STARTUPINFOA startup{};
       startup.cb = sizeof startup;
       PROCESS_INFORMATION process{};
       std::string command = textOf(args[0]);
       const BOOL started = CreateProcessA(nullptr, command.data(), nullptr, nullptr, FALSE, 0,
                                           nullptr, nullptr, &startup, &process);
       if (started) {
         CloseHandle(process.hThread);
         CloseHandle(process.hProcess);
       }
       setText(result, started ? "started" : "not started");
       return true;
     }},
    {"parameter",
     [](Instance& instance, const NPVariant* args, uint32_t, NPVariant* result) {
       setText(result, instance.parameters[textOf(args[0])]);
       return true;
     }},
};

bool hasMethod(NPObject*, NPIdentifier name) {
  return methods.count(nameOf(name)) != 0;
}

bool invoke(NPObject* object, NPIdentifier name, const NPVariant* args, uint32_t count,
            NPVariant* result) {
  if (GetCurrentThreadId() != browserThread) std::abort();
  InterlockedIncrement(&calls);
  *result = {};
  return methods.at(nameOf(name))(*instanceOf(object), args, count, result);
}

bool hasProperty(NPObject*, NPIdentifier name) {
  return nameOf(name) == "handler";
}

bool getProperty(NPObject* object, NPIdentifier, NPVariant* result) {
  NPObject* handler = instanceOf(object)->handler;
  result->type = handler ? NPVariantType_Object : NPVariantType_Null;
  result->value.objectValue = handler ? browser.retainobject(handler) : nullptr;
  return true;
}

bool setProperty(NPObject* object, NPIdentifier, const NPVariant* value) {
  Instance* instance = instanceOf(object);
  if (instance->handler) browser.releaseobject(instance->handler);
  instance->handler = objectOf(*value);
  if (instance->handler) browser.retainobject(instance->handler);
  return true;
}

NPObject* allocateObject(NPP, NPClass*) {
  return new ScriptObject{};
}
void deallocateObject(NPObject* object) {
  delete static_cast<ScriptObject*>(object);
}

NPClass scriptClass = {NP_CLASS_STRUCT_VERSION,
                       allocateObject,
                       deallocateObject,
                       nullptr,
                       hasMethod,
                       invoke,
                       nullptr,
                       hasProperty,
                       getProperty,
                       setProperty,
                       nullptr,
                       nullptr,
                       nullptr};

NPError newInstance(NPMIMEType, NPP npp, uint16_t, int16_t argc, char* argn[], char* argv[],
                    NPSavedData*) {
  auto* instance = new Instance{npp, nullptr, nullptr, nullptr, {}};
  for (int16_t i = 0; i < argc; ++i)
    if (argn[i] && argv[i]) instance->parameters[argn[i]] = argv[i];
  instance->script = browser.createobject(npp, &scriptClass);
  static_cast<ScriptObject*>(instance->script)->instance = instance;
  npp->pdata = instance;
  InterlockedIncrement(&instancesMade);
  return NPERR_NO_ERROR;
}

NPError destroyInstance(NPP npp, NPSavedData**) {
  auto* instance = static_cast<Instance*>(npp->pdata);
  if (instance->handler) browser.releaseobject(instance->handler);
  delete instance;
  npp->pdata = nullptr;
  InterlockedIncrement(&instancesDestroyed);
  return NPERR_NO_ERROR;
}

// Green with a red left half.
LRESULT CALLBACK paintedProcedure(HWND window, UINT message, WPARAM wparam, LPARAM lparam) {
  if (message != WM_PAINT) return DefWindowProcW(window, message, wparam, lparam);
  PAINTSTRUCT paint;
  HDC context = BeginPaint(window, &paint);
  RECT area;
  GetClientRect(window, &area);
  HBRUSH green = CreateSolidBrush(RGB(0, 128, 0)), red = CreateSolidBrush(RGB(255, 0, 0));
  FillRect(context, &area, green);
  area.right /= 2;
  FillRect(context, &area, red);
  DeleteObject(green);
  DeleteObject(red);
  EndPaint(window, &paint);
  return 0;
}

NPError setWindow(NPP npp, NPWindow* window) {
  if (!window) return NPERR_NO_ERROR;
  auto* handle = static_cast<HWND>(window->window);
  static_cast<Instance*>(npp->pdata)->window = handle;
  SetWindowLongPtrW(handle, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(paintedProcedure));
  InvalidateRect(handle, nullptr, TRUE);
  return NPERR_NO_ERROR;
}

NPError getValue(NPP npp, NPPVariable variable, void* value) {
  if (variable != NPPVpluginScriptableNPObject) return NPERR_GENERIC_ERROR;
  *static_cast<NPObject**>(value) =
      browser.retainobject(static_cast<Instance*>(npp->pdata)->script);
  return NPERR_NO_ERROR;
}

}  // namespace

extern "C" {

NPError NP_Initialize(NPNetscapeFuncs* table) {
  browser = *table;
  browserThread = GetCurrentThreadId();
  return NPERR_NO_ERROR;
}

NPError NP_GetEntryPoints(NPPluginFuncs* table) {
  table->version = NP_PLUGIN_VERSION;
  table->newp = newInstance;
  table->destroy = destroyInstance;
  table->setwindow = setWindow;
  table->getvalue = getValue;
  return NPERR_NO_ERROR;
}

NPError NP_Shutdown() {
  std::fprintf(stderr, "probe: shut down on the %s thread, %s\n",
               GetCurrentThreadId() == browserThread ? "same" : "wrong", counts().c_str());
  std::fflush(stderr);
  return NPERR_NO_ERROR;
}
}
