// The Netscape plug-in interface as browsers on 64-bit Windows publish it: the names, numbers and
// record layouts that this library, its test host and the engine bridge use. Written from the
// published interface, version 27. It is a C interface: no function here may let an exception out.
//
// NP_ABI names the calling convention of every function. It is empty where this header meets a
// Windows compiler; a native host that calls into the Windows library defines it before including.
#pragma once

#include <cstddef>
#include <cstdint>

#ifndef NP_ABI
#define NP_ABI
#endif

#define NP_FUNCTION(result, name, ...) using name = result(NP_ABI*)(__VA_ARGS__)

using NPError = int16_t;
inline constexpr NPError NPERR_NO_ERROR = 0;
inline constexpr NPError NPERR_GENERIC_ERROR = 1;
inline constexpr NPError NPERR_INVALID_INSTANCE_ERROR = 2;
inline constexpr NPError NPERR_INVALID_FUNCTABLE_ERROR = 3;

using NPReason = int16_t;
inline constexpr NPReason NPRES_DONE = 0;
inline constexpr NPReason NPRES_NETWORK_ERR = 1;
inline constexpr NPReason NPRES_USER_BREAK = 2;

using NPBool = unsigned char;
using NPMIMEType = char*;
using NPIdentifier = void*;

// Version that the plug-in writes into its function table.
inline constexpr uint16_t NP_PLUGIN_VERSION = 27;

enum NPPVariable : int32_t {
  NPPVpluginNameString = 1,
  NPPVpluginDescriptionString = 2,
  NPPVpluginWindowBool = 3,
  NPPVpluginTransparentBool = 4,
  NPPVpluginScriptableNPObject = 15,
};

enum NPNVariable : int32_t {
  NPNVnetscapeWindow = 3,
  NPNVWindowNPObject = 15,
  NPNVPluginElementNPObject = 16,
};

// One instance: pdata belongs to the plug-in, ndata to the browser.
struct NPP_t {
  void* pdata;
  void* ndata;
};
using NPP = NPP_t*;

struct NPSavedData {
  int32_t len;
  void* buf;
};

struct NPRect {
  uint16_t top, left, bottom, right;
};

enum NPWindowType : int32_t { NPWindowTypeWindow = 1, NPWindowTypeDrawable = 2 };

struct NPWindow {
  void* window;  // the window handle
  int32_t x, y;
  uint32_t width, height;
  NPRect clipRect;
  NPWindowType type;
};

struct NPStream {
  void* pdata;
  void* ndata;
  const char* url;
  uint32_t end;
  uint32_t lastmodified;
  void* notifyData;
  const char* headers;
};

// Counted text: the characters need not end in a NUL byte.
struct NPString {
  const char* UTF8Characters;
  uint32_t UTF8Length;
};

enum NPVariantType : int32_t {
  NPVariantType_Void = 0,
  NPVariantType_Null = 1,
  NPVariantType_Bool = 2,
  NPVariantType_Int32 = 3,
  NPVariantType_Double = 4,
  NPVariantType_String = 5,
  NPVariantType_Object = 6,
};

struct NPObject;

struct NPVariant {
  NPVariantType type;
  union {
    bool boolValue;
    int32_t intValue;
    double doubleValue;
    NPString stringValue;
    NPObject* objectValue;
  } value;
};

struct NPClass;

struct NPObject {
  NPClass* _class;
  uint32_t referenceCount;
};

NP_FUNCTION(NPObject*, NPAllocateFunctionPtr, NPP npp, NPClass* objectClass);
NP_FUNCTION(void, NPDeallocateFunctionPtr, NPObject* object);
NP_FUNCTION(void, NPInvalidateFunctionPtr, NPObject* object);
NP_FUNCTION(bool, NPHasMethodFunctionPtr, NPObject* object, NPIdentifier name);
NP_FUNCTION(bool, NPInvokeFunctionPtr, NPObject* object, NPIdentifier name, const NPVariant* args,
            uint32_t argCount, NPVariant* result);
NP_FUNCTION(bool, NPInvokeDefaultFunctionPtr, NPObject* object, const NPVariant* args,
            uint32_t argCount, NPVariant* result);
NP_FUNCTION(bool, NPHasPropertyFunctionPtr, NPObject* object, NPIdentifier name);
NP_FUNCTION(bool, NPGetPropertyFunctionPtr, NPObject* object, NPIdentifier name, NPVariant* result);
NP_FUNCTION(bool, NPSetPropertyFunctionPtr, NPObject* object, NPIdentifier name,
            const NPVariant* value);
NP_FUNCTION(bool, NPRemovePropertyFunctionPtr, NPObject* object, NPIdentifier name);
NP_FUNCTION(bool, NPEnumerationFunctionPtr, NPObject* object, NPIdentifier** value,
            uint32_t* count);
NP_FUNCTION(bool, NPConstructFunctionPtr, NPObject* object, const NPVariant* args,
            uint32_t argCount, NPVariant* result);

struct NPClass {
  uint32_t structVersion;
  NPAllocateFunctionPtr allocate;
  NPDeallocateFunctionPtr deallocate;
  NPInvalidateFunctionPtr invalidate;
  NPHasMethodFunctionPtr hasMethod;
  NPInvokeFunctionPtr invoke;
  NPInvokeDefaultFunctionPtr invokeDefault;
  NPHasPropertyFunctionPtr hasProperty;
  NPGetPropertyFunctionPtr getProperty;
  NPSetPropertyFunctionPtr setProperty;
  NPRemovePropertyFunctionPtr removeProperty;
  NPEnumerationFunctionPtr enumerate;
  NPConstructFunctionPtr construct;
};
inline constexpr uint32_t NP_CLASS_STRUCT_VERSION = 3;

// Functions of the browser.
NP_FUNCTION(NPError, NPN_GetURLProcPtr, NPP, const char* url, const char* target);
NP_FUNCTION(NPError, NPN_PostURLProcPtr, NPP, const char* url, const char* target, uint32_t length,
            const char* buffer, NPBool file);
NP_FUNCTION(NPError, NPN_RequestReadProcPtr, NPStream*, void* ranges);
NP_FUNCTION(NPError, NPN_NewStreamProcPtr, NPP, NPMIMEType, const char* target, NPStream**);
NP_FUNCTION(int32_t, NPN_WriteProcPtr, NPP, NPStream*, int32_t length, void* buffer);
NP_FUNCTION(NPError, NPN_DestroyStreamProcPtr, NPP, NPStream*, NPReason);
NP_FUNCTION(void, NPN_StatusProcPtr, NPP, const char* message);
NP_FUNCTION(const char*, NPN_UserAgentProcPtr, NPP);
NP_FUNCTION(void*, NPN_MemAllocProcPtr, uint32_t size);
NP_FUNCTION(void, NPN_MemFreeProcPtr, void*);
NP_FUNCTION(uint32_t, NPN_MemFlushProcPtr, uint32_t size);
NP_FUNCTION(void, NPN_ReloadPluginsProcPtr, NPBool reloadPages);
NP_FUNCTION(void*, NPN_GetJavaEnvProcPtr, void);
NP_FUNCTION(void*, NPN_GetJavaPeerProcPtr, NPP);
NP_FUNCTION(NPError, NPN_GetURLNotifyProcPtr, NPP, const char* url, const char* target,
            void* notifyData);
NP_FUNCTION(NPError, NPN_PostURLNotifyProcPtr, NPP, const char* url, const char* target,
            uint32_t length, const char* buffer, NPBool file, void* notifyData);
NP_FUNCTION(NPError, NPN_GetValueProcPtr, NPP, NPNVariable, void* value);
NP_FUNCTION(NPError, NPN_SetValueProcPtr, NPP, NPPVariable, void* value);
NP_FUNCTION(void, NPN_InvalidateRectProcPtr, NPP, NPRect*);
NP_FUNCTION(void, NPN_InvalidateRegionProcPtr, NPP, void* region);
NP_FUNCTION(void, NPN_ForceRedrawProcPtr, NPP);
NP_FUNCTION(NPIdentifier, NPN_GetStringIdentifierProcPtr, const char* name);
NP_FUNCTION(void, NPN_GetStringIdentifiersProcPtr, const char** names, int32_t count,
            NPIdentifier*);
NP_FUNCTION(NPIdentifier, NPN_GetIntIdentifierProcPtr, int32_t);
NP_FUNCTION(bool, NPN_IdentifierIsStringProcPtr, NPIdentifier);
NP_FUNCTION(char*, NPN_UTF8FromIdentifierProcPtr, NPIdentifier);
NP_FUNCTION(int32_t, NPN_IntFromIdentifierProcPtr, NPIdentifier);
NP_FUNCTION(NPObject*, NPN_CreateObjectProcPtr, NPP, NPClass*);
NP_FUNCTION(NPObject*, NPN_RetainObjectProcPtr, NPObject*);
NP_FUNCTION(void, NPN_ReleaseObjectProcPtr, NPObject*);
NP_FUNCTION(bool, NPN_InvokeProcPtr, NPP, NPObject*, NPIdentifier, const NPVariant* args,
            uint32_t argCount, NPVariant* result);
NP_FUNCTION(bool, NPN_InvokeDefaultProcPtr, NPP, NPObject*, const NPVariant* args,
            uint32_t argCount, NPVariant* result);
NP_FUNCTION(bool, NPN_EvaluateProcPtr, NPP, NPObject*, NPString* script, NPVariant* result);
NP_FUNCTION(bool, NPN_GetPropertyProcPtr, NPP, NPObject*, NPIdentifier, NPVariant* result);
NP_FUNCTION(bool, NPN_SetPropertyProcPtr, NPP, NPObject*, NPIdentifier, const NPVariant* value);
NP_FUNCTION(bool, NPN_RemovePropertyProcPtr, NPP, NPObject*, NPIdentifier);
NP_FUNCTION(bool, NPN_HasPropertyProcPtr, NPP, NPObject*, NPIdentifier);
NP_FUNCTION(bool, NPN_HasMethodProcPtr, NPP, NPObject*, NPIdentifier);
NP_FUNCTION(void, NPN_ReleaseVariantValueProcPtr, NPVariant*);
NP_FUNCTION(void, NPN_SetExceptionProcPtr, NPObject*, const char* message);
NP_FUNCTION(void, NPN_PushPopupsEnabledStateProcPtr, NPP, NPBool enabled);
NP_FUNCTION(void, NPN_PopPopupsEnabledStateProcPtr, NPP);
NP_FUNCTION(bool, NPN_EnumerateProcPtr, NPP, NPObject*, NPIdentifier**, uint32_t* count);
NP_FUNCTION(void, NPAsyncCallFunction, void*);
NP_FUNCTION(void, NPN_PluginThreadAsyncCallProcPtr, NPP, NPAsyncCallFunction, void*);
NP_FUNCTION(bool, NPN_ConstructProcPtr, NPP, NPObject*, const NPVariant* args, uint32_t argCount,
            NPVariant* result);
// A member that nothing of ours calls.
NP_FUNCTION(void, NPN_UnusedProcPtr, void);

// The browser's function table.
struct NPNetscapeFuncs {
  uint16_t size;
  uint16_t version;
  NPN_GetURLProcPtr geturl;
  NPN_PostURLProcPtr posturl;
  NPN_RequestReadProcPtr requestread;
  NPN_NewStreamProcPtr newstream;
  NPN_WriteProcPtr write;
  NPN_DestroyStreamProcPtr destroystream;
  NPN_StatusProcPtr status;
  NPN_UserAgentProcPtr uagent;
  NPN_MemAllocProcPtr memalloc;
  NPN_MemFreeProcPtr memfree;
  NPN_MemFlushProcPtr memflush;
  NPN_ReloadPluginsProcPtr reloadplugins;
  NPN_GetJavaEnvProcPtr getJavaEnv;
  NPN_GetJavaPeerProcPtr getJavaPeer;
  NPN_GetURLNotifyProcPtr geturlnotify;
  NPN_PostURLNotifyProcPtr posturlnotify;
  NPN_GetValueProcPtr getvalue;
  NPN_SetValueProcPtr setvalue;
  NPN_InvalidateRectProcPtr invalidaterect;
  NPN_InvalidateRegionProcPtr invalidateregion;
  NPN_ForceRedrawProcPtr forceredraw;
  NPN_GetStringIdentifierProcPtr getstringidentifier;
  NPN_GetStringIdentifiersProcPtr getstringidentifiers;
  NPN_GetIntIdentifierProcPtr getintidentifier;
  NPN_IdentifierIsStringProcPtr identifierisstring;
  NPN_UTF8FromIdentifierProcPtr utf8fromidentifier;
  NPN_IntFromIdentifierProcPtr intfromidentifier;
  NPN_CreateObjectProcPtr createobject;
  NPN_RetainObjectProcPtr retainobject;
  NPN_ReleaseObjectProcPtr releaseobject;
  NPN_InvokeProcPtr invoke;
  NPN_InvokeDefaultProcPtr invokeDefault;
  NPN_EvaluateProcPtr evaluate;
  NPN_GetPropertyProcPtr getproperty;
  NPN_SetPropertyProcPtr setproperty;
  NPN_RemovePropertyProcPtr removeproperty;
  NPN_HasPropertyProcPtr hasproperty;
  NPN_HasMethodProcPtr hasmethod;
  NPN_ReleaseVariantValueProcPtr releasevariantvalue;
  NPN_SetExceptionProcPtr setexception;
  NPN_PushPopupsEnabledStateProcPtr pushpopupsenabledstate;
  NPN_PopPopupsEnabledStateProcPtr poppopupsenabledstate;
  NPN_EnumerateProcPtr enumerate;
  NPN_PluginThreadAsyncCallProcPtr pluginthreadasynccall;
  NPN_ConstructProcPtr construct;
  NPN_UnusedProcPtr getvalueforurl;
  NPN_UnusedProcPtr setvalueforurl;
  NPN_UnusedProcPtr getauthenticationinfo;
  NPN_UnusedProcPtr scheduletimer;
  NPN_UnusedProcPtr unscheduletimer;
  NPN_UnusedProcPtr popupcontextmenu;
  NPN_UnusedProcPtr convertpoint;
  NPN_UnusedProcPtr handleevent;
  NPN_UnusedProcPtr unfocusinstance;
  NPN_UnusedProcPtr urlredirectresponse;
  NPN_UnusedProcPtr initasyncsurface;
  NPN_UnusedProcPtr finalizeasyncsurface;
  NPN_UnusedProcPtr setcurrentasyncsurface;
};

// Functions of the plug-in.
NP_FUNCTION(NPError, NPP_NewProcPtr, NPMIMEType, NPP, uint16_t mode, int16_t argc, char* argn[],
            char* argv[], NPSavedData*);
NP_FUNCTION(NPError, NPP_DestroyProcPtr, NPP, NPSavedData**);
NP_FUNCTION(NPError, NPP_SetWindowProcPtr, NPP, NPWindow*);
NP_FUNCTION(NPError, NPP_NewStreamProcPtr, NPP, NPMIMEType, NPStream*, NPBool seekable,
            uint16_t* stype);
NP_FUNCTION(NPError, NPP_DestroyStreamProcPtr, NPP, NPStream*, NPReason);
NP_FUNCTION(void, NPP_StreamAsFileProcPtr, NPP, NPStream*, const char* fileName);
NP_FUNCTION(int32_t, NPP_WriteReadyProcPtr, NPP, NPStream*);
NP_FUNCTION(int32_t, NPP_WriteProcPtr, NPP, NPStream*, int32_t offset, int32_t length,
            void* buffer);
NP_FUNCTION(void, NPP_PrintProcPtr, NPP, void* print);
NP_FUNCTION(int16_t, NPP_HandleEventProcPtr, NPP, void* event);
NP_FUNCTION(void, NPP_URLNotifyProcPtr, NPP, const char* url, NPReason, void* notifyData);
NP_FUNCTION(NPError, NPP_GetValueProcPtr, NPP, NPPVariable, void* value);
NP_FUNCTION(NPError, NPP_SetValueProcPtr, NPP, NPNVariable, void* value);

// The plug-in's function table.
struct NPPluginFuncs {
  uint16_t size;
  uint16_t version;
  NPP_NewProcPtr newp;
  NPP_DestroyProcPtr destroy;
  NPP_SetWindowProcPtr setwindow;
  NPP_NewStreamProcPtr newstream;
  NPP_DestroyStreamProcPtr destroystream;
  NPP_StreamAsFileProcPtr asfile;
  NPP_WriteReadyProcPtr writeready;
  NPP_WriteProcPtr write;
  NPP_PrintProcPtr print;
  NPP_HandleEventProcPtr event;
  NPP_URLNotifyProcPtr urlnotify;
  void* javaClass;
  NPP_GetValueProcPtr getvalue;
  NPP_SetValueProcPtr setvalue;
  NPN_UnusedProcPtr gotfocus;
  NPN_UnusedProcPtr lostfocus;
  NPN_UnusedProcPtr urlredirectnotify;
  NPN_UnusedProcPtr clearsitedata;
  NPN_UnusedProcPtr getsiteswithdata;
  NPN_UnusedProcPtr didComposite;
};

// Entries of the module.
NP_FUNCTION(NPError, NP_InitializeProcPtr, NPNetscapeFuncs*);
NP_FUNCTION(NPError, NP_GetEntryPointsProcPtr, NPPluginFuncs*);
NP_FUNCTION(NPError, NP_ShutdownProcPtr, void);

// The layouts are the interface: a browser compiled elsewhere fills and reads these records.
static_assert(sizeof(NPString) == 16 && sizeof(NPVariant) == 24);
static_assert(offsetof(NPVariant, value) == 8 && offsetof(NPString, UTF8Length) == 8);
static_assert(sizeof(NPObject) == 16 && offsetof(NPObject, referenceCount) == 8);
static_assert(sizeof(NPClass) == 104 && offsetof(NPClass, invoke) == 40);
static_assert(offsetof(NPClass, setProperty) == 72 && offsetof(NPClass, construct) == 96);
static_assert(sizeof(NPP_t) == 16);
static_assert(sizeof(NPWindow) == 40 && offsetof(NPWindow, x) == 8);
static_assert(offsetof(NPWindow, width) == 16 && offsetof(NPWindow, type) == 32);
static_assert(sizeof(NPStream) == 48 && offsetof(NPStream, url) == 16);
static_assert(sizeof(NPNetscapeFuncs) == 472);
static_assert(offsetof(NPNetscapeFuncs, uagent) == 64);
static_assert(offsetof(NPNetscapeFuncs, memalloc) == 72);
static_assert(offsetof(NPNetscapeFuncs, memfree) == 80);
static_assert(offsetof(NPNetscapeFuncs, geturlnotify) == 120);
static_assert(offsetof(NPNetscapeFuncs, getvalue) == 136);
static_assert(offsetof(NPNetscapeFuncs, setvalue) == 144);
static_assert(offsetof(NPNetscapeFuncs, getstringidentifier) == 176);
static_assert(offsetof(NPNetscapeFuncs, identifierisstring) == 200);
static_assert(offsetof(NPNetscapeFuncs, utf8fromidentifier) == 208);
static_assert(offsetof(NPNetscapeFuncs, createobject) == 224);
static_assert(offsetof(NPNetscapeFuncs, retainobject) == 232);
static_assert(offsetof(NPNetscapeFuncs, releaseobject) == 240);
static_assert(offsetof(NPNetscapeFuncs, invoke) == 248);
static_assert(offsetof(NPNetscapeFuncs, invokeDefault) == 256);
static_assert(offsetof(NPNetscapeFuncs, getproperty) == 272);
static_assert(offsetof(NPNetscapeFuncs, hasmethod) == 304);
static_assert(offsetof(NPNetscapeFuncs, releasevariantvalue) == 312);
static_assert(offsetof(NPNetscapeFuncs, pluginthreadasynccall) == 352);
static_assert(offsetof(NPNetscapeFuncs, setcurrentasyncsurface) == 464);
static_assert(sizeof(NPPluginFuncs) == 168);
static_assert(offsetof(NPPluginFuncs, newp) == 8 && offsetof(NPPluginFuncs, setwindow) == 24);
static_assert(offsetof(NPPluginFuncs, write) == 64 && offsetof(NPPluginFuncs, urlnotify) == 88);
static_assert(offsetof(NPPluginFuncs, javaClass) == 96);
static_assert(offsetof(NPPluginFuncs, getvalue) == 104);
static_assert(offsetof(NPPluginFuncs, setvalue) == 112);
static_assert(offsetof(NPPluginFuncs, didComposite) == 160);
