// Torture for a loaded library: the n-th call of the platform that a piece of work makes through it
// fails. The calls are those that the test has added; only calls of the thread that began the work
// count. One at a time.
#pragma once

#include <windows.h>

#include <memory>
#include <vector>

#include "tests/support/import_patch_win.h"

namespace Vantrel::Web::TestSupport {

class FailingImports {
 public:
  explicit FailingImports(HMODULE library) : library_(library) { current_ = this; }
  ~FailingImports() {
    patches_.clear();
    current_ = nullptr;
  }
  FailingImports(const FailingImports&) = delete;
  FailingImports& operator=(const FailingImports&) = delete;

  // A call by its name and what it gives when it fails. `Tag` is a type of its own for each.
  template <class Tag, class Function, class Result>
  void add(const char* name, Result result) {
    using Call = Replacement<Tag, Function>;
    Call::name = name;
    Call::failure = static_cast<decltype(Call::failure)>(result);
    patches_.push_back(std::make_unique<ImportPatch>(library_, name, Call::call));
    Call::real = patches_.back()->former<Function>();
  }

  // Runs the work with its n-th call failing. The name of the call that did, null if there were
  // fewer than n.
  template <class Work>
  const char* runWithFailing(int n, Work work) {
    failed_ = nullptr;
    left_ = n;
    thread_ = GetCurrentThreadId();
    work();
    thread_ = 0;
    return failed_;
  }

  // Counts a call; whether it is the one to fail.
  static bool fails(const char* name) {
    FailingImports* const self = current_;
    if (self == nullptr || self->thread_ != GetCurrentThreadId() || --self->left_ != 0) {
      return false;
    }
    self->failed_ = name;
    return true;
  }

 private:
  template <class Tag, class Function>
  struct Replacement;
  template <class Tag, class Return, class... Arguments>
  struct Replacement<Tag, Return(Arguments...)> {
    static inline const char* name = nullptr;
    static inline Return failure = {};
    static inline Return (*real)(Arguments...) = nullptr;
    static Return call(Arguments... arguments) {
      if (!fails(name)) return real(arguments...);
      SetLastError(ERROR_NOT_ENOUGH_MEMORY);
      return failure;
    }
  };

  static inline FailingImports* current_ = nullptr;

  const HMODULE library_;
  std::vector<std::unique_ptr<ImportPatch>> patches_;
  DWORD thread_ = 0;  // 0 while nothing is under way
  int left_ = 0;
  const char* failed_ = nullptr;
};

}  // namespace Vantrel::Web::TestSupport

// Adds a call of the platform that the test itself knows by its header.
#define OV_FAILING_IMPORT(imports, function, result) \
  (imports).add<struct function##Tag, decltype(function)>(#function, result)
