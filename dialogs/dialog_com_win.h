// What the platform's dialogs share of COM: the thread's apartment for the life of an object, and
// owners for references and texts.
#pragma once

#include <windows.h>
#include <objbase.h>

#include <memory>
#include <string>
#include <string_view>
#include <utility>

namespace Vantrel::Web {

// One counted reference, released with its owner. May be empty.
template <typename Interface>
class ComPointer {
 public:
  ComPointer() = default;
  // Takes a reference of its own; null is none.
  explicit ComPointer(Interface* pointer) : pointer_(pointer) {
    if (pointer_ != nullptr) pointer_->AddRef();
  }
  ComPointer(ComPointer&& other) noexcept : pointer_(std::exchange(other.pointer_, nullptr)) {}
  ComPointer& operator=(ComPointer&& other) noexcept {
    // Given back last: what goes with it may come back here.
    const ComPointer former(std::move(*this));
    pointer_ = std::exchange(other.pointer_, nullptr);
    return *this;
  }
  ~ComPointer() { reset(); }
  ComPointer(const ComPointer&) = delete;
  ComPointer& operator=(const ComPointer&) = delete;

  // Where a call is to put a reference, which is then ours; what was held before goes.
  Interface** put() {
    reset();
    return &pointer_;
  }
  void** putVoid() { return reinterpret_cast<void**>(put()); }
  Interface* get() const { return pointer_; }
  Interface* operator->() const { return pointer_; }
  explicit operator bool() const { return pointer_ != nullptr; }
  void reset() {
    if (Interface* const former = std::exchange(pointer_, nullptr)) former->Release();
  }

 private:
  Interface* pointer_ = nullptr;
};

// A block of the task allocator: a text or an item list that a call has handed over.
struct TaskMemoryFree {
  void operator()(void* block) const { CoTaskMemFree(block); }
};
template <typename T>
using TaskMemory = std::unique_ptr<T, TaskMemoryFree>;

// Brings COM up on this thread and takes it down again; the two are a pair also after a failure,
// which is logged behind `words`.
class ComApartment {
 public:
  explicit ComApartment(const char* words);
  ~ComApartment() { CoUninitialize(); }
  ComApartment(const ComApartment&) = delete;
  ComApartment& operator=(const ComApartment&) = delete;
};

// Lower-case hexadecimal digits without padding.
std::string hexText(HRESULT result);

// Throws SystemException with `words` and the result's digits if `result` is a failure.
void require(HRESULT result, std::string_view words);

}  // namespace Vantrel::Web
