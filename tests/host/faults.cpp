#include "tests/host/faults.h"

#include <utility>

namespace Vantrel::Web::Host {

void Faults::add(std::string text) {
  const std::lock_guard<std::mutex> guard(mutex_);
  texts_.push_back(std::move(text));
}

std::vector<std::string> Faults::take() {
  const std::lock_guard<std::mutex> guard(mutex_);
  return std::exchange(texts_, {});
}

bool Faults::empty() const {
  const std::lock_guard<std::mutex> guard(mutex_);
  return texts_.empty();
}

}  // namespace Vantrel::Web::Host
