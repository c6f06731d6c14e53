// The container's own COM objects and the book on them: each belongs to the book, which counts
// every AddRef and Release that a control or an engine makes. An object is never deleted before the
// book is, so that a use after the last Release is a fault and no crash.
//
// Made and used by the thread of one apartment; a call from another thread is a fault, as no
// container marshals its site to a control's workers.
#pragma once

#include <windows.h>
#include <unknwn.h>

#include <atomic>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "tests/host/call_log.h"
#include "tests/host/faults.h"

namespace Vantrel::Web::Container {

class ReferenceBook;

// The count of one object.
class Count {
 public:
  Count(ReferenceBook& book, std::string label) : book_(book), label_(std::move(label)) {}
  Count(const Count&) = delete;
  Count& operator=(const Count&) = delete;
  virtual ~Count() = default;

  // References held now, and how many were ever taken.
  int references() const { return references_; }
  int taken() const { return taken_; }
  const std::string& label() const { return label_; }

 protected:
  ULONG take();
  ULONG drop();
  // Notes a call by its name.
  void note(const char* call) const;
  ReferenceBook& book() const { return book_; }

 private:
  ReferenceBook& book_;
  const std::string label_;
  std::atomic<int> references_ = 0;
  std::atomic<int> taken_ = 0;
};

class ReferenceBook {
 public:
  ReferenceBook(Host::Faults& faults, Host::CallLog& calls) : faults_(faults), calls_(calls) {}
  ReferenceBook(const ReferenceBook&) = delete;
  ReferenceBook& operator=(const ReferenceBook&) = delete;

  // A new object of the container, which lives as long as the book.
  template <typename Object, typename... Arguments>
  Object& make(Arguments&&... arguments) {
    auto object = std::make_unique<Object>(*this, std::forward<Arguments>(arguments)...);
    Object& made = *object;
    objects_.push_back(std::move(object));
    return made;
  }

  Host::Faults& faults() { return faults_; }
  Host::CallLog& calls() { return calls_; }
  // References on all objects together.
  int references() const;
  // A fault for each object on which a reference is left.
  void close();

 private:
  Host::Faults& faults_;
  Host::CallLog& calls_;
  std::vector<std::unique_ptr<Count>> objects_;
};

// Base of an object that offers these interfaces; the first one is its identity. The platform's
// interfaces have no virtual destructor; the book deletes through Count, which has one.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wnon-virtual-dtor"
template <typename First, typename... More>
class Counted : public Count, public First, public More... {
 public:
  using Count::Count;

  STDMETHODIMP_(ULONG) AddRef() override { return take(); }
  STDMETHODIMP_(ULONG) Release() override { return drop(); }
  STDMETHODIMP QueryInterface(REFIID id, void** result) override {
    note("QueryInterface");
    if (result == nullptr) return E_POINTER;
    *result = id == __uuidof(IUnknown) ? static_cast<First*>(this) : find(id);
    if (*result == nullptr) return E_NOINTERFACE;
    take();
    return S_OK;
  }

 protected:
  // The interface of that name, null when this object has none. Objects with interfaces that derive
  // from each other, or that hide one, say more.
  virtual void* find(REFIID id) {
    void* found = nullptr;
    const auto offer = [&](REFIID offered, void* pointer) {
      if (id == offered) found = pointer;
    };
    offer(__uuidof(First), static_cast<First*>(this));
    (offer(__uuidof(More), static_cast<More*>(this)), ...);
    return found;
  }
};
#pragma GCC diagnostic pop

}  // namespace Vantrel::Web::Container
