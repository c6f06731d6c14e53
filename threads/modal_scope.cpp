#include "threads/modal_scope.h"

#include "threads/platform.h"

namespace Vantrel::Web {

namespace {

ModalScope* innermost = nullptr;  // the browser's thread alone touches it

}  // namespace

ModalScope::ModalScope() : outer_(innermost) {
  innermost = this;
}

ModalScope::~ModalScope() {
  innermost = outer_;
  if (holdsModule_) releaseModuleLater();
}

void ModalScope::instanceEnds() {
  for (ModalScope* scope = innermost; scope != nullptr; scope = scope->outer_) {
    if (!scope->holdsModule_) scope->holdsModule_ = holdModule();
  }
}

}  // namespace Vantrel::Web
