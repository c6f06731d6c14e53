#include "tests/host/browser_functions.h"

#include "tests/host/counting_host.h"

namespace Vantrel::Web::Host {

namespace {

CountingHost& host() {
  return CountingHost::current();
}

const char* userAgent(NPP) {
  host().calls.record("NPN_UserAgent");
  return host().userAgent ? host().userAgent->c_str() : nullptr;
}

void* memAlloc(uint32_t size) {
  host().calls.record("NPN_MemAlloc");
  return host().memory.allocate(size, kPluginBlock);
}

void memFree(void* block) {
  host().calls.record("NPN_MemFree");
  host().memory.free(block);
}

NPError getUrlNotify(NPP npp, const char* url, const char* target, void* notifyData) {
  host().calls.record("NPN_GetURLNotify");
  if (notifyData != nullptr) host().faults.add("NPN_GetURLNotify with notify data");
  host().urlRequests.push_back({npp, url == nullptr ? "" : url, target != nullptr});
  return host().urlAnswer;
}

NPError getValue(NPP npp, NPNVariable variable, void* value) {
  host().calls.record("NPN_GetValue");
  if (variable == NPNVWindowNPObject) {
    return host().page.window(npp, static_cast<NPObject**>(value));
  }
  if (variable == NPNVnetscapeWindow) {
    *static_cast<void**>(value) = host().topWindow;
    return NPERR_NO_ERROR;
  }
  return NPERR_GENERIC_ERROR;
}

NPIdentifier getStringIdentifier(const char* name) {
  host().calls.record("NPN_GetStringIdentifier");
  return host().identifiers.ofText(name);
}

void getStringIdentifiers(const char** names, int32_t count, NPIdentifier* identifiers) {
  host().calls.record("NPN_GetStringIdentifiers");
  for (int32_t i = 0; i < count; ++i) identifiers[i] = host().identifiers.ofText(names[i]);
}

NPIdentifier getIntIdentifier(int32_t number) {
  host().calls.record("NPN_GetIntIdentifier");
  return host().identifiers.ofNumber(number);
}

bool identifierIsString(NPIdentifier identifier) {
  host().calls.record("NPN_IdentifierIsString");
  return host().identifiers.isText(identifier);
}

char* utf8FromIdentifier(NPIdentifier identifier) {
  host().calls.record("NPN_UTF8FromIdentifier");
  return host().identifiers.copyName(identifier);
}

int32_t intFromIdentifier(NPIdentifier identifier) {
  host().calls.record("NPN_IntFromIdentifier");
  return host().identifiers.number(identifier);
}

NPObject* createObject(NPP npp, NPClass* objectClass) {
  host().calls.record("NPN_CreateObject");
  return host().objects.createForPlugin(npp, objectClass);
}

NPObject* retainObject(NPObject* object) {
  host().calls.record("NPN_RetainObject");
  return host().objects.retainForPlugin(object);
}

void releaseObject(NPObject* object) {
  host().calls.record("NPN_ReleaseObject");
  host().objects.releaseForPlugin(object);
}

bool invoke(NPP, NPObject* object, NPIdentifier name, const NPVariant* args, uint32_t count,
            NPVariant* result) {
  host().calls.record("NPN_Invoke");
  return host().objects.requireLive(object, "NPN_Invoke") &&
         object->_class->invoke(object, name, args, count, result);
}

bool invokeDefault(NPP, NPObject* object, const NPVariant* args, uint32_t count,
                   NPVariant* result) {
  host().calls.record("NPN_InvokeDefault");
  return host().objects.requireLive(object, "NPN_InvokeDefault") &&
         object->_class->invokeDefault(object, args, count, result);
}

bool getProperty(NPP, NPObject* object, NPIdentifier name, NPVariant* result) {
  host().calls.record("NPN_GetProperty");
  return host().objects.requireLive(object, "NPN_GetProperty") &&
         object->_class->getProperty(object, name, result);
}

bool hasProperty(NPP, NPObject* object, NPIdentifier name) {
  host().calls.record("NPN_HasProperty");
  return host().objects.requireLive(object, "NPN_HasProperty") &&
         object->_class->hasProperty(object, name);
}

bool hasMethod(NPP, NPObject* object, NPIdentifier name) {
  host().calls.record("NPN_HasMethod");
  return host().objects.requireLive(object, "NPN_HasMethod") &&
         object->_class->hasMethod(object, name);
}

void releaseVariantValue(NPVariant* variant) {
  host().calls.record("NPN_ReleaseVariantValue");
  if (variant->type == NPVariantType_String) {
    host().memory.free(const_cast<char*>(variant->value.stringValue.UTF8Characters));
  } else if (variant->type == NPVariantType_Object) {
    host().objects.releaseForPlugin(variant->value.objectValue);
  }
  *variant = NPVariant{};
}

void pluginThreadAsyncCall(NPP npp, NPAsyncCallFunction function, void* argument) {
  host().calls.recordFromAnyThread("NPN_PluginThreadAsyncCall");
  host().async.add(npp, function, argument);
}

// Stands for each member that no plug-in of ours needs; the number keeps the functions apart.
template <int member, typename Result, typename... Arguments>
Result unexpected(Arguments...) {
  host().faults.add("browser function " + std::to_string(member) + " of the table was called");
  if constexpr (!std::is_void_v<Result>) return Result{};
}

template <int member, typename Result, typename... Arguments>
void report(Result(NP_ABI*& place)(Arguments...)) {
  place = &unexpected<member, Result, Arguments...>;
}

void fillUnexpected(NPNetscapeFuncs& table) {
  report<0>(table.geturl);
  report<1>(table.posturl);
  report<2>(table.requestread);
  report<3>(table.newstream);
  report<4>(table.write);
  report<5>(table.destroystream);
  report<6>(table.status);
  report<10>(table.memflush);
  report<11>(table.reloadplugins);
  report<12>(table.getJavaEnv);
  report<13>(table.getJavaPeer);
  report<15>(table.posturlnotify);
  report<17>(table.setvalue);
  report<18>(table.invalidaterect);
  report<19>(table.invalidateregion);
  report<20>(table.forceredraw);
  report<32>(table.evaluate);
  report<34>(table.setproperty);
  report<35>(table.removeproperty);
  report<39>(table.setexception);
  report<40>(table.pushpopupsenabledstate);
  report<41>(table.poppopupsenabledstate);
  report<42>(table.enumerate);
  report<44>(table.construct);
  report<45>(table.getvalueforurl);
  report<46>(table.setvalueforurl);
  report<47>(table.getauthenticationinfo);
  report<48>(table.scheduletimer);
  report<49>(table.unscheduletimer);
  report<50>(table.popupcontextmenu);
  report<51>(table.convertpoint);
  report<52>(table.handleevent);
  report<53>(table.unfocusinstance);
  report<54>(table.urlredirectresponse);
  report<55>(table.initasyncsurface);
  report<56>(table.finalizeasyncsurface);
  report<57>(table.setcurrentasyncsurface);
}

}  // namespace

void fillBrowserFunctions(NPNetscapeFuncs& table) {
  table = {};
  table.size = sizeof table;
  table.version = NP_PLUGIN_VERSION;
  fillUnexpected(table);
  table.uagent = userAgent;
  table.memalloc = memAlloc;
  table.memfree = memFree;
  table.geturlnotify = getUrlNotify;
  table.getvalue = getValue;
  table.getstringidentifier = getStringIdentifier;
  table.getstringidentifiers = getStringIdentifiers;
  table.getintidentifier = getIntIdentifier;
  table.identifierisstring = identifierIsString;
  table.utf8fromidentifier = utf8FromIdentifier;
  table.intfromidentifier = intFromIdentifier;
  table.createobject = createObject;
  table.retainobject = retainObject;
  table.releaseobject = releaseObject;
  table.invoke = invoke;
  table.invokeDefault = invokeDefault;
  table.getproperty = getProperty;
  table.hasproperty = hasProperty;
  table.hasmethod = hasMethod;
  table.releasevariantvalue = releaseVariantValue;
  table.pluginthreadasynccall = pluginThreadAsyncCall;
}

}  // namespace Vantrel::Web::Host
