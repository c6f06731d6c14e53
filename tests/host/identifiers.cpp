#include "tests/host/identifiers.h"

#include <cstring>
#include <utility>

namespace Vantrel::Web::Host {

Identifiers::Identifiers(Faults& faults, BrowserMemory& memory)
    : faults_(faults), memory_(memory) {}

NPIdentifier Identifiers::ofText(std::string_view name) {
  auto found = texts_.find(name);
  if (found == texts_.end()) {
    auto record = std::make_unique<Record>(Record{true, std::string(name), 0});
    found = texts_.emplace(std::string(name), std::move(record)).first;
    known_.insert(found->second.get());
  }
  return found->second.get();
}

NPIdentifier Identifiers::ofNumber(int32_t number) {
  auto& record = numbers_[number];
  if (!record) {
    record = std::make_unique<Record>(Record{false, "", number});
    known_.insert(record.get());
  }
  return record.get();
}

const Identifiers::Record* Identifiers::find(NPIdentifier identifier) {
  if (known_.contains(identifier)) return static_cast<const Record*>(identifier);
  faults_.add("a pointer that is no identifier was used as one");
  return nullptr;
}

bool Identifiers::isText(NPIdentifier identifier) {
  const Record* record = find(identifier);
  return record != nullptr && record->isText;
}

int32_t Identifiers::number(NPIdentifier identifier) {
  const Record* record = find(identifier);
  return record == nullptr ? 0 : record->number;
}

std::string Identifiers::text(NPIdentifier identifier) {
  const Record* record = find(identifier);
  return record == nullptr ? std::string() : record->text;
}

char* Identifiers::copyName(NPIdentifier identifier) {
  const Record* record = find(identifier);
  if (record == nullptr || !record->isText) return nullptr;
  if (std::exchange(failNextName_, false)) return nullptr;
  const auto size = static_cast<uint32_t>(record->text.size() + 1);
  void* block = memory_.allocate(size, kNameBlock);
  if (block != nullptr) std::memcpy(block, record->text.c_str(), size);
  return static_cast<char*>(block);
}

}  // namespace Vantrel::Web::Host
