#include "tests/host/objects.h"

#include <cstdlib>
#include <utility>

namespace Vantrel::Web::Host {

Objects::Objects(Faults& faults) : faults_(faults) {}

NPObject* Objects::createForPlugin(NPP owner, NPClass* objectClass) {
  NPObject* object = objectClass->allocate != nullptr
                         ? objectClass->allocate(owner, objectClass)
                         : static_cast<NPObject*>(std::malloc(sizeof(NPObject)));
  if (object == nullptr) return nullptr;
  object->_class = objectClass;
  object->referenceCount = 1;
  live_[object] = {owner, "script object", true, 1, 0};
  ++references_;
  return object;
}

void Objects::enter(NPObject* object, NPP owner, std::string label) {
  object->referenceCount = 1;
  live_[object] = {owner, std::move(label), false, 0, 1};
}

NPObject* Objects::retainForPlugin(NPObject* object) {
  if (!requireLive(object, "NPN_RetainObject")) return object;
  ++live_[object].plugin;
  ++object->referenceCount;
  ++references_;
  return object;
}

void Objects::releaseForPlugin(NPObject* object) {
  if (!requireLive(object, "NPN_ReleaseObject")) return;
  Record& record = live_[object];
  if (record.plugin == 0) {
    faults_.add("the plug-in released a reference that is not its own: " + record.label);
    return;
  }
  --record.plugin;
  --object->referenceCount;
  freeIfUnused(object);
}

void Objects::retain(NPObject* object) {
  if (!requireLive(object, "a reference of the browser")) return;
  ++live_[object].browser;
  ++object->referenceCount;
}

void Objects::release(NPObject* object) {
  if (!requireLive(object, "the browser's release")) return;
  --live_[object].browser;
  --object->referenceCount;
  freeIfUnused(object);
}

void Objects::takeOver(NPObject* object) {
  if (!requireLive(object, "an object handed to the browser")) return;
  Record& record = live_[object];
  if (record.plugin == 0) {
    faults_.add("the plug-in handed out a reference that it does not hold: " + record.label);
    retain(object);
    return;
  }
  --record.plugin;
  ++record.browser;
}

bool Objects::isLive(const NPObject* object) const {
  return live_.contains(const_cast<NPObject*>(object));
}

bool Objects::requireLive(const NPObject* object, const char* use) {
  if (isLive(object)) return true;
  faults_.add(std::string(use) + (object == nullptr ? " of a null object" : " of a dead object"));
  return false;
}

int Objects::pluginReferences(const NPObject* object) const {
  const auto found = live_.find(const_cast<NPObject*>(object));
  return found == live_.end() ? 0 : found->second.plugin;
}

int Objects::browserReferences(const NPObject* object) const {
  const auto found = live_.find(const_cast<NPObject*>(object));
  return found == live_.end() ? 0 : found->second.browser;
}

std::vector<NPObject*> Objects::createdFor(NPP owner) const {
  std::vector<NPObject*> found;
  for (const auto& [object, record] : live_) {
    if (record.owner == owner && record.created) found.push_back(object);
  }
  return found;
}

std::vector<std::string> Objects::describe() const {
  std::vector<std::string> lines;
  for (const auto& [object, record] : live_) {
    lines.push_back(record.label + ": plug-in " + std::to_string(record.plugin) + ", browser " +
                    std::to_string(record.browser));
  }
  return lines;
}

void Objects::writeOff(NPObject* object, int count) {
  for (int i = 0; i < count; ++i) releaseForPlugin(object);
}

void Objects::endInstance(NPP owner) {
  std::vector<NPObject*> ended;
  for (const auto& [object, record] : live_) {
    if (record.owner == owner) ended.push_back(object);
  }
  for (NPObject* object : ended) {
    if (object->_class->invalidate != nullptr) object->_class->invalidate(object);
  }
  for (NPObject* object : ended) {
    live_.erase(object);
    object->referenceCount = 0;
    if (object->_class->deallocate != nullptr) object->_class->deallocate(object);
  }
}

void Objects::freeIfUnused(NPObject* object) {
  if (object->referenceCount != 0) return;
  live_.erase(object);
  if (object->_class->deallocate != nullptr) object->_class->deallocate(object);
}

}  // namespace Vantrel::Web::Host
