#include "threads/modal_scope.h"

#include <mutex>

#include "threads/platform.h"

namespace Vantrel::Web {

namespace {

// Guards the list and what its members hold: the scopes of all threads that serve a page.
std::mutex scopesMutex;
ModalScope* firstScope = nullptr;

}  // namespace

ModalScope::ModalScope() {
  const std::lock_guard<std::mutex> lock(scopesMutex);
  next_ = firstScope;
  if (next_ != nullptr) next_->previous_ = this;
  firstScope = this;
}

ModalScope::~ModalScope() {
  {
    const std::lock_guard<std::mutex> lock(scopesMutex);
    (previous_ != nullptr ? previous_->next_ : firstScope) = next_;
    if (next_ != nullptr) next_->previous_ = previous_;
  }
  if (holdsModule_) releaseModuleLater();
}

void ModalScope::instanceEnds() {
  const std::lock_guard<std::mutex> lock(scopesMutex);
  for (ModalScope* scope = firstScope; scope != nullptr; scope = scope->next_) {
    if (!scope->holdsModule_) scope->holdsModule_ = holdModule();
  }
}

}  // namespace Vantrel::Web
