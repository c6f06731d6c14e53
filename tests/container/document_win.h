// The page's document as a control in it sees it: a container that answers for the document's
// interface, the document's location, the location's host. Each step can be broken.
//
// The real interfaces have more than a hundred members; all but the one that is asked for are stubs
// that a control must not call, and a call of one is a fault.
#pragma once

#include <oleidl.h>

#include <array>
#include <functional>
#include <string>
#include <utility>

#include "tests/container/reference_book_win.h"

namespace Vantrel::Web::Container {

enum class DocumentStep {
  kWorks,
  kFails,
  kNull,  // says yes and hands over a null pointer
};

struct PageAddress {
  DocumentStep container = DocumentStep::kWorks;
  DocumentStep document = DocumentStep::kWorks;
  DocumentStep location = DocumentStep::kWorks;
  DocumentStep hostname = DocumentStep::kWorks;
  std::wstring host = L"some.host";
};

// An object whose interface is laid out by hand: a table of stubs in which one member is real.
class StubbedObject : public Count {
 public:
  using Answer = std::function<HRESULT(void** result)>;

  // `member` is the place of the real member in the table.
  StubbedObject(ReferenceBook& book, std::string label, size_t member, Answer answer);

  // What is handed over as the interface.
  void* pointer() { return &face_; }
  void takeForCaller() { take(); }

 private:
  static constexpr size_t kMembers = 160;
  using Entry = void (*)();
  // What a caller takes for an object: a pointer to the table first, as the binary interface wants.
  struct Face {
    const Entry* table;
    StubbedObject* owner;
  };

  static StubbedObject& of(void* face) { return *static_cast<Face*>(face)->owner; }
  static HRESULT STDMETHODCALLTYPE query(void* face, REFIID id, void** result);
  static ULONG STDMETHODCALLTYPE addReference(void* face);
  static ULONG STDMETHODCALLTYPE release(void* face);
  static HRESULT STDMETHODCALLTYPE stub(void* face);
  static HRESULT STDMETHODCALLTYPE real(void* face, void** result);

  std::array<Entry, kMembers> table_{};
  Face face_{};
  const Answer answer_;
};

class Document : public Counted<IOleContainer> {
 public:
  Document(ReferenceBook& book, std::string label);

  PageAddress address;

  STDMETHODIMP ParseDisplayName(IBindCtx* context, LPOLESTR name, ULONG* eaten,
                                IMoniker** moniker) override;
  STDMETHODIMP EnumObjects(DWORD flags, IEnumUnknown** objects) override;
  STDMETHODIMP LockContainer(BOOL lock) override;
  STDMETHODIMP QueryInterface(REFIID id, void** result) override;

 private:
  StubbedObject& document_;
  StubbedObject& location_;
};

}  // namespace Vantrel::Web::Container
