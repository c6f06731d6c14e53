#include "tests/container/page_object_win.h"

namespace Vantrel::Web::Container {

void PageObject::add(const std::string& name, Member member) {
  const DISPID id = name.empty() ? DISPID_VALUE : static_cast<DISPID>(ids_.size() + 1);
  ids_[name] = id;
  members_[id] = std::move(member);
}

STDMETHODIMP PageObject::GetTypeInfoCount(UINT* count) {
  *count = 0;
  return S_OK;
}

STDMETHODIMP PageObject::GetTypeInfo(UINT, LCID, ITypeInfo** info) {
  if (info != nullptr) *info = nullptr;
  return DISP_E_BADINDEX;
}

STDMETHODIMP PageObject::GetIDsOfNames(REFIID, LPOLESTR* names, UINT count, LCID, DISPID* ids) {
  for (UINT i = 0; i < count; ++i) ids[i] = DISPID_UNKNOWN;
  const BSTR name = SysAllocString(names[0]);
  const auto found = ids_.find(utf8Of(name));
  SysFreeString(name);
  if (found == ids_.end()) return DISP_E_UNKNOWNNAME;
  ids[0] = found->second;
  return count == 1 ? S_OK : DISP_E_UNKNOWNNAME;
}

STDMETHODIMP PageObject::Invoke(DISPID id, REFIID, LCID, WORD, DISPPARAMS* parameters,
                                VARIANT* result, EXCEPINFO*, UINT*) {
  note("Invoke");
  const auto found = members_.find(id);
  if (found == members_.end()) return DISP_E_MEMBERNOTFOUND;
  const Member member = found->second;
  Variant answer;
  const HRESULT outcome = member(argumentsOf(*parameters), answer);
  if (result != nullptr) *result = answer.take();
  return outcome;
}

PageFunction::PageFunction(ReferenceBook& book, std::string label)
    : PageObject(book, std::move(label)) {
  add("", [this](const Variants& arguments, Variant&) {
    calls.push_back(arguments);
    if (onCall) onCall(arguments);
    return answer;
  });
}

std::vector<std::string> PageFunction::texts() const {
  std::vector<std::string> found;
  for (const Variants& arguments : calls)
    found.push_back(arguments.empty() ? "(none)" : arguments[0].asText());
  return found;
}

}  // namespace Vantrel::Web::Container
