// Lists as the platform hands them out, one element or more at a time.
#pragma once

#include <windows.h>
#include <ocidl.h>

#include <utility>
#include <vector>

#include "browsers/activex/com_base_win.h"
#include "threads/guarded.h"

namespace Vantrel::Web::ActiveX {

// A list that was complete when it was asked for. `Kept` is what it keeps of an element and gives
// as an `Element`, with a reference for the caller: `void give(Element*) const`.
template <class Interface, class Element, class Kept>
class Enumerator final : public CountedObject<Interface> {
 public:
  Enumerator(std::vector<Kept> elements, size_t position)
      : elements_(std::move(elements)), position_(position) {}

  HRESULT STDMETHODCALLTYPE Next(ULONG count, Element* elements, ULONG* given) override {
    if (elements == nullptr || (given == nullptr && count != 1)) return E_POINTER;
    ULONG done = 0;
    for (; done < count && position_ < elements_.size(); ++done) {
      elements_[position_++].give(&elements[done]);
    }
    if (given != nullptr) *given = done;
    return done == count ? S_OK : S_FALSE;
  }

  HRESULT STDMETHODCALLTYPE Skip(ULONG count) override {
    const size_t left = elements_.size() - position_;
    position_ += count < left ? count : left;
    return count <= left ? S_OK : S_FALSE;
  }

  HRESULT STDMETHODCALLTYPE Reset() override {
    position_ = 0;
    return S_OK;
  }

  HRESULT STDMETHODCALLTYPE Clone(Interface** copy) override {
    if (copy == nullptr) return E_POINTER;
    *copy = nullptr;
    return guarded<HRESULT>(E_OUTOFMEMORY, [=, this] {
      *copy = new Enumerator(elements_, position_);
      return S_OK;
    });
  }

 private:
  const std::vector<Kept> elements_;
  size_t position_;
};

}  // namespace Vantrel::Web::ActiveX
