#include "tests/container/document_win.h"

#include "tests/container/variant_win.h"

namespace Vantrel::Web::Container {

namespace {

// Of the document: IHTMLDocument2 with get_location; of the location: IHTMLLocation with
// get_hostname. The places of both members in their tables are part of the platform's interface.
constexpr IID kDocumentInterface = {
    0x332C4425, 0x26CB, 0x11D0, {0xB4, 0x83, 0x00, 0xC0, 0x4F, 0xD9, 0x01, 0x19}};
constexpr size_t kGetLocation = 37;
constexpr size_t kGetHostname = 14;

template <typename Function>
auto entryOf(Function function) {
  return reinterpret_cast<void (*)()>(function);
}

}  // namespace

StubbedObject::StubbedObject(ReferenceBook& book, std::string label, size_t member, Answer answer)
    : Count(book, std::move(label)), answer_(std::move(answer)) {
  table_.fill(entryOf(&stub));
  table_[0] = entryOf(&query);
  table_[1] = entryOf(&addReference);
  table_[2] = entryOf(&release);
  table_.at(member) = entryOf(&real);
  face_ = {table_.data(), this};
}

HRESULT STDMETHODCALLTYPE StubbedObject::query(void* face, REFIID id, void** result) {
  *result = id == IID_IUnknown ? face : nullptr;
  if (*result == nullptr) return E_NOINTERFACE;
  of(face).take();
  return S_OK;
}

ULONG STDMETHODCALLTYPE StubbedObject::addReference(void* face) {
  return of(face).take();
}

ULONG STDMETHODCALLTYPE StubbedObject::release(void* face) {
  return of(face).drop();
}

HRESULT STDMETHODCALLTYPE StubbedObject::stub(void* face) {
  StubbedObject& self = of(face);
  self.book().faults().add(self.label() + ": another member than the known one was called");
  return E_NOTIMPL;
}

HRESULT STDMETHODCALLTYPE StubbedObject::real(void* face, void** result) {
  of(face).note("get");
  return of(face).answer_(result);
}

Document::Document(ReferenceBook& owner, std::string label)
    : Counted(owner, std::move(label)),
      document_(owner.make<StubbedObject>("document", kGetLocation,
                                          [this](void** result) -> HRESULT {
                                            if (address.location == DocumentStep::kFails)
                                              return E_ACCESSDENIED;
                                            *result = address.location == DocumentStep::kWorks
                                                          ? location_.pointer()
                                                          : nullptr;
                                            if (*result != nullptr) location_.takeForCaller();
                                            return S_OK;
                                          })),
      location_(
          owner.make<StubbedObject>("location", kGetHostname, [this](void** result) -> HRESULT {
            if (address.hostname == DocumentStep::kFails) return E_ACCESSDENIED;
            *result = address.hostname == DocumentStep::kWorks ? newText(address.host) : nullptr;
            return S_OK;
          })) {}

STDMETHODIMP Document::ParseDisplayName(IBindCtx*, LPOLESTR, ULONG*, IMoniker** moniker) {
  if (moniker != nullptr) *moniker = nullptr;
  return E_NOTIMPL;
}

STDMETHODIMP Document::EnumObjects(DWORD, IEnumUnknown** objects) {
  if (objects != nullptr) *objects = nullptr;
  return E_NOTIMPL;
}

STDMETHODIMP Document::LockContainer(BOOL) {
  return S_OK;
}

STDMETHODIMP Document::QueryInterface(REFIID id, void** result) {
  if (result == nullptr || id != kDocumentInterface) return Counted::QueryInterface(id, result);
  note("QueryInterface");
  *result = nullptr;
  if (address.document == DocumentStep::kFails) return E_NOINTERFACE;
  if (address.document == DocumentStep::kNull) return S_OK;
  *result = document_.pointer();
  document_.takeForCaller();
  return S_OK;
}

}  // namespace Vantrel::Web::Container
