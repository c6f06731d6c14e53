// One of the platform's script engines as a page's: named objects, the running of texts, and the
// errors that reach nobody. Thread of the apartment; the engine ends with the object, which gives
// back all references that scripts held.
#pragma once

#include <windows.h>
#include <activscp.h>

#include <map>
#include <string>
#include <vector>

#include "dialogs/dialog_com_win.h"
#include "tests/container/reference_book_win.h"
#include "tests/container/variant_win.h"

namespace Vantrel::Web::Container {

enum class Language { kJScript, kVBScript };

// An error that no script caught.
struct ScriptError {
  std::string text;
  HRESULT number = S_OK;
  // Counted from 1.
  unsigned line = 0;
  unsigned column = 0;
};

// What the engine asks of its host.
class ScriptSite : public Counted<IActiveScriptSite, IActiveScriptSiteWindow> {
 public:
  ScriptSite(ReferenceBook& book, std::string label, HWND window)
      : Counted(book, std::move(label)), window_(window) {}

  std::map<std::wstring, IUnknown*> items;
  std::vector<ScriptError> errors;

  STDMETHODIMP GetLCID(LCID* locale) override;
  STDMETHODIMP GetItemInfo(LPCOLESTR name, DWORD mask, IUnknown** item, ITypeInfo** type) override;
  STDMETHODIMP GetDocVersionString(BSTR* version) override;
  STDMETHODIMP OnScriptTerminate(const VARIANT*, const EXCEPINFO*) override { return S_OK; }
  STDMETHODIMP OnStateChange(SCRIPTSTATE) override { return S_OK; }
  STDMETHODIMP OnScriptError(IActiveScriptError* error) override;
  STDMETHODIMP OnEnterScript() override { return S_OK; }
  STDMETHODIMP OnLeaveScript() override { return S_OK; }
  STDMETHODIMP GetWindow(HWND* window) override;
  STDMETHODIMP EnableModeless(BOOL) override { return S_OK; }

 private:
  const HWND window_;
};

class ScriptEngine {
 public:
  // Throws std::runtime_error when the platform has no such engine.
  ScriptEngine(ReferenceBook& book, Language language, HWND window);
  ScriptEngine(const ScriptEngine&) = delete;
  ScriptEngine& operator=(const ScriptEngine&) = delete;
  ~ScriptEngine();

  // An object that scripts know by this name. The caller keeps it alive. With `members`, its
  // members are functions of every script too.
  void add(const std::string& name, IUnknown* object, bool members = false);

  // Runs a text; false when it ended with an error, which is then the last of errors().
  bool run(const std::string& text);
  // The value of an expression, empty after an error.
  Variant evaluate(const std::string& expression);
  // Calls a function of the scripts by its name, if there is one.
  HRESULT callGlobal(const std::string& name, const Variants& arguments);
  // Errors that no script has caught, those of functions that were called from outside included.
  const std::vector<ScriptError>& errors() const { return site_.errors; }
  void forgetErrors() { site_.errors.clear(); }
  // Ends all scripts; what they held is given back.
  void close();

 private:
  HRESULT parse(const std::string& text, DWORD flags, VARIANT* result);

  ScriptSite& site_;
  ComPointer<IActiveScript> engine_;
  ComPointer<IActiveScriptParse> parser_;
};

// Calls a function of a script with these arguments; S_OK when it ended well.
HRESULT callFunction(IDispatch* function, const Variants& arguments);
// The same for a function that is a member of an object.
HRESULT callMethod(IDispatch* object, const std::string& name, const Variants& arguments);

}  // namespace Vantrel::Web::Container
