#include "tests/container/reference_book_win.h"

namespace Vantrel::Web::Container {

ULONG Count::take() {
  note("AddRef");
  ++taken_;
  return static_cast<ULONG>(++references_);
}

ULONG Count::drop() {
  note("Release");
  const int left = --references_;
  if (left < 0) {
    book_.faults().add(label_ + ": released once too often");
    references_ = 0;
    return 0;
  }
  return static_cast<ULONG>(left);
}

void Count::note(const char* call) const {
  book_.calls().record((label_ + "::" + call).c_str());
}

int ReferenceBook::references() const {
  int sum = 0;
  for (const auto& object : objects_) sum += object->references();
  return sum;
}

void ReferenceBook::close() {
  for (const auto& object : objects_) {
    const int left = object->references();
    if (left == 0) continue;
    faults_.add(object->label() + ": " + std::to_string(left) + " references were never released");
  }
}

}  // namespace Vantrel::Web::Container
