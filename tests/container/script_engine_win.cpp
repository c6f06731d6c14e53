#include "tests/container/script_engine_win.h"

#include <algorithm>
#include <stdexcept>

namespace Vantrel::Web::Container {

namespace {

constexpr CLSID kJScriptEngine = {
    0xF414C260, 0x6AC0, 0x11CF, {0xB6, 0xD1, 0x00, 0xAA, 0x00, 0xBB, 0xBB, 0x58}};
constexpr CLSID kVBScriptEngine = {
    0xB54F3741, 0x5B07, 0x11CF, {0xA4, 0xB0, 0x00, 0xAA, 0x00, 0x4A, 0x55, 0xE8}};
// The version of the language that browsers with plug-ins speak, in which JSON is there.
constexpr DWORD kInvokeVersioning = 0x4000;
constexpr LONG kLanguageVersion = 2;
constexpr LCID kLocale = 1033;

std::string takeText(BSTR text) {
  const std::string copy = utf8Of(text);
  SysFreeString(text);
  return copy;
}

}  // namespace

STDMETHODIMP ScriptSite::GetLCID(LCID* locale) {
  *locale = kLocale;
  return S_OK;
}

STDMETHODIMP ScriptSite::GetItemInfo(LPCOLESTR name, DWORD mask, IUnknown** item,
                                     ITypeInfo** type) {
  if (type != nullptr) *type = nullptr;
  if (item != nullptr) *item = nullptr;
  const auto found = items.find(name);
  if (found == items.end()) return TYPE_E_ELEMENTNOTFOUND;
  if ((mask & SCRIPTINFO_IUNKNOWN) == 0) return S_OK;
  *item = found->second;
  found->second->AddRef();
  return S_OK;
}

STDMETHODIMP ScriptSite::GetDocVersionString(BSTR* version) {
  *version = newText(L"1");
  return S_OK;
}

STDMETHODIMP ScriptSite::OnScriptError(IActiveScriptError* error) {
  EXCEPINFO exception{};
  error->GetExceptionInfo(&exception);
  if (exception.pfnDeferredFillIn != nullptr) exception.pfnDeferredFillIn(&exception);
  DWORD context = 0;
  ULONG line = 0;
  LONG column = 0;
  error->GetSourcePosition(&context, &line, &column);
  errors.push_back({takeText(exception.bstrDescription), exception.scode,
                    static_cast<unsigned>(line) + 1, static_cast<unsigned>(column) + 1});
  SysFreeString(exception.bstrSource);
  SysFreeString(exception.bstrHelpFile);
  return S_OK;
}

STDMETHODIMP ScriptSite::GetWindow(HWND* window) {
  *window = window_;
  return S_OK;
}

ScriptEngine::ScriptEngine(ReferenceBook& book, Language language, HWND window)
    : site_(book.make<ScriptSite>("script site", window)) {
  const CLSID engine = language == Language::kJScript ? kJScriptEngine : kVBScriptEngine;
  if (FAILED(CoCreateInstance(engine, nullptr, CLSCTX_INPROC_SERVER, IID_IActiveScript,
                              engine_.putVoid())) ||
      FAILED(engine_->QueryInterface(__uuidof(IActiveScriptParse), parser_.putVoid())))
    throw std::runtime_error("there is no engine for the script's language");
  ComPointer<IActiveScriptProperty> property;
  if (SUCCEEDED(engine_->QueryInterface(__uuidof(IActiveScriptProperty), property.putVoid()))) {
    Variant version = Variant::integer(kLanguageVersion);
    property->SetProperty(kInvokeVersioning, nullptr, &version.raw());
  }
  if (FAILED(parser_->InitNew()) || FAILED(engine_->SetScriptSite(&site_)) ||
      FAILED(engine_->SetScriptState(SCRIPTSTATE_STARTED)))
    throw std::runtime_error("the script engine does not start");
}

ScriptEngine::~ScriptEngine() {
  close();
}

void ScriptEngine::close() {
  if (engine_) engine_->Close();
  parser_.reset();
  engine_.reset();
}

void ScriptEngine::add(const std::string& name, IUnknown* object, bool members) {
  const std::wstring wide = wideOf(name);
  site_.items[wide] = object;
  const DWORD flags = SCRIPTITEM_ISVISIBLE | (members ? SCRIPTITEM_GLOBALMEMBERS : 0);
  engine_->AddNamedItem(wide.c_str(), flags);
}

HRESULT ScriptEngine::parse(const std::string& text, DWORD flags, VARIANT* result) {
  EXCEPINFO exception{};
  return parser_->ParseScriptText(wideOf(text).c_str(), nullptr, nullptr, nullptr, 0, 0, flags,
                                  result, &exception);
}

bool ScriptEngine::run(const std::string& text) {
  return SUCCEEDED(parse(text, SCRIPTTEXT_ISVISIBLE, nullptr));
}

Variant ScriptEngine::evaluate(const std::string& expression) {
  Variant value;
  if (FAILED(parse(expression, SCRIPTTEXT_ISEXPRESSION, value.put()))) return {};
  return value;
}

HRESULT ScriptEngine::callGlobal(const std::string& name, const Variants& arguments) {
  ComPointer<IDispatch> globals;
  const HRESULT found = engine_->GetScriptDispatch(nullptr, globals.put());
  return FAILED(found) ? found : callMethod(globals.get(), name, arguments);
}

static HRESULT callMember(IDispatch* object, DISPID member, const Variants& arguments) {
  std::vector<VARIANT> list;
  for (const Variant& argument : arguments) list.push_back(argument.get());
  std::reverse(list.begin(), list.end());
  DISPPARAMS parameters{list.data(), nullptr, static_cast<UINT>(list.size()), 0};
  return object->Invoke(member, IID_NULL, kLocale, DISPATCH_METHOD, &parameters, nullptr, nullptr,
                        nullptr);
}

HRESULT callFunction(IDispatch* function, const Variants& arguments) {
  return callMember(function, DISPID_VALUE, arguments);
}

HRESULT callMethod(IDispatch* object, const std::string& name, const Variants& arguments) {
  std::wstring wide = wideOf(name);
  LPOLESTR text = wide.data();
  DISPID member = DISPID_UNKNOWN;
  const HRESULT found = object->GetIDsOfNames(IID_NULL, &text, 1, kLocale, &member);
  return FAILED(found) ? found : callMember(object, member, arguments);
}

}  // namespace Vantrel::Web::Container
