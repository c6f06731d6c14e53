#include "tests/host/page.h"

#include <algorithm>
#include <utility>

namespace Vantrel::Web::Host {

namespace {

// What a failed call leaves in the result: using it as a value crashes.
NPVariant poisoned() {
  NPVariant variant{};
  variant.type = NPVariantType_Object;
  variant.value.objectValue = nullptr;
  variant.value.doubleValue = -1.5e300;
  return variant;
}

PageObject& pageObject(NPObject* object) {
  return static_cast<PageObject&>(*object);
}

bool answerCall(PageObject& object, std::string method, const NPVariant* args, uint32_t count,
                NPVariant* result) {
  PageCall call{std::move(method), {}};
  for (uint32_t i = 0; i < count; ++i) call.arguments.push_back(copyOf(args[i]));
  object.calls.push_back(call);
  if (object.onCall) object.onCall(call);
  if (result == nullptr) return !object.throws;
  if (object.throws) {
    *result = poisoned();
    return false;
  }
  const Value& answer = object.answer;
  *result = NPVariant{};
  result->type = answer.type;
  if (answer.isText()) {
    result->value.stringValue = {object.page.memory().copyText(answer.text, kPageResultBlock),
                                 static_cast<uint32_t>(answer.text.size())};
  } else if (answer.type == NPVariantType_Object) {
    result->value.objectValue = object.page.objects().retainForPlugin(answer.object);
  } else if (answer.type == NPVariantType_Double) {
    result->value.doubleValue = answer.real;
  } else if (answer.type == NPVariantType_Int32) {
    result->value.intValue = answer.integer;
  } else if (answer.type == NPVariantType_Bool) {
    result->value.boolValue = answer.truth;
  }
  return true;
}

bool hasMethod(NPObject* object, NPIdentifier name) {
  PageObject& target = pageObject(object);
  const std::string method = target.page.identifiers().text(name);
  const bool has =
      std::find(target.methods.begin(), target.methods.end(), method) != target.methods.end();
  // Called as a copy: the accessor may be what the page's last reference goes with.
  if (const auto asked = target.onMethodAsked) asked();
  return has;
}

bool invoke(NPObject* object, NPIdentifier name, const NPVariant* args, uint32_t count,
            NPVariant* result) {
  if (!hasMethod(object, name)) return false;
  PageObject& target = pageObject(object);
  return answerCall(target, target.page.identifiers().text(name), args, count, result);
}

bool invokeDefault(NPObject* object, const NPVariant* args, uint32_t count, NPVariant* result) {
  return answerCall(pageObject(object), "", args, count, result);
}

bool hasProperty(NPObject* object, NPIdentifier name) {
  PageObject& target = pageObject(object);
  return target.properties.contains(target.page.identifiers().text(name));
}

bool getProperty(NPObject* object, NPIdentifier name, NPVariant* result) {
  PageObject& target = pageObject(object);
  const auto found = target.properties.find(target.page.identifiers().text(name));
  return found != target.properties.end() && found->second(result);
}

bool refuseProperty(NPObject*, NPIdentifier, const NPVariant*) {
  return false;
}

NPClass pageClass = {NP_CLASS_STRUCT_VERSION,
                     nullptr,
                     nullptr,
                     nullptr,
                     hasMethod,
                     invoke,
                     invokeDefault,
                     hasProperty,
                     getProperty,
                     refuseProperty,
                     nullptr,
                     nullptr,
                     nullptr};

}  // namespace

std::string hostnameBlock(NPP npp) {
  return "hostname for instance " + std::to_string(reinterpret_cast<uintptr_t>(npp));
}

PageObject::PageObject(Page& owner, std::string name)
    : NPObject{&pageClass, 0}, page(owner), label(std::move(name)) {}

PageReference::PageReference(PageReference&& other) noexcept
    : objects_(other.objects_), object_(std::exchange(other.object_, nullptr)) {}

PageReference& PageReference::operator=(PageReference&& other) noexcept {
  std::swap(objects_, other.objects_);
  std::swap(object_, other.object_);
  return *this;
}

PageReference::~PageReference() {
  drop();
}

void PageReference::drop() {
  if (object_ != nullptr) objects_->release(std::exchange(object_, nullptr));
}

Page::Page(Faults& faults, Objects& objects, BrowserMemory& memory, Identifiers& identifiers)
    : faults_(faults), objects_(objects), memory_(memory), identifiers_(identifiers) {}

Page::~Page() = default;

PageObject& Page::make(NPP owner, std::string label) {
  made_.push_back(std::make_unique<PageObject>(*this, label));
  objects_.enter(made_.back().get(), owner, std::move(label));
  return *made_.back();
}

PageReference Page::makeFunction(std::string label) {
  return {objects_, make(nullptr, std::move(label))};
}

PageReference Page::makeObject(std::string label, std::vector<std::string> methods) {
  PageObject& object = make(nullptr, std::move(label));
  object.methods = std::move(methods);
  return {objects_, object};
}

Page::Frame& Page::frameOf(NPP npp) {
  Frame& frame = frames_[npp];
  if (frame.window != nullptr) return frame;
  frame.window = &make(npp, "window");
  frame.location = &make(npp, "location");
  frame.window->properties["location"] = [this, npp](NPVariant* result) {
    return readLocation(npp, result);
  };
  frame.location->properties["hostname"] = [this, npp](NPVariant* result) {
    return readHostname(npp, result);
  };
  return frame;
}

NPError Page::window(NPP npp, NPObject** result) {
  switch (address.window) {
    case Step::kFails:
      return NPERR_GENERIC_ERROR;
    case Step::kUntouched:
      return NPERR_NO_ERROR;
    case Step::kNull:
      *result = nullptr;
      return NPERR_NO_ERROR;
    case Step::kFailsButWrites:
      *result = frameOf(npp).window;
      return NPERR_GENERIC_ERROR;
    default:
      *result = objects_.retainForPlugin(frameOf(npp).window);
      return NPERR_NO_ERROR;
  }
}

bool Page::readLocation(NPP npp, NPVariant* result) {
  switch (address.location) {
    case Step::kFails:
      return false;
    case Step::kUntouched:
      return true;
    case Step::kNull:
      result->type = NPVariantType_Null;
      return true;
    case Step::kNumber:
      result->type = NPVariantType_Int32;
      result->value.intValue = 7;
      return true;
    case Step::kText:
      result->type = NPVariantType_String;
      result->value.stringValue = {memory_.copyText("other.host", hostnameBlock(npp)), 10};
      return true;
    case Step::kFailsButWrites:
      *result = poisoned();
      return false;
    case Step::kWorks:
      break;
  }
  result->type = NPVariantType_Object;
  result->value.objectValue = objects_.retainForPlugin(frames_[npp].location);
  return true;
}

bool Page::readHostname(NPP npp, NPVariant* result) {
  switch (address.hostname) {
    case Step::kFails:
      return false;
    case Step::kUntouched:
      return true;
    case Step::kNull:
      result->type = NPVariantType_Null;
      return true;
    case Step::kNumber:
      result->type = NPVariantType_Int32;
      result->value.intValue = 7;
      return true;
    case Step::kFailsButWrites:
      result->type = NPVariantType_String;
      result->value.stringValue = {"wrong.host", 10};
      return false;
    default:
      break;
  }
  result->type = NPVariantType_String;
  result->value.stringValue = {memory_.copyText(address.host, hostnameBlock(npp)),
                               static_cast<uint32_t>(address.host.size())};
  return true;
}

PageObject* Page::windowOf(NPP npp) const {
  const auto found = frames_.find(npp);
  return found == frames_.end() ? nullptr : found->second.window;
}

PageObject* Page::locationOf(NPP npp) const {
  const auto found = frames_.find(npp);
  return found == frames_.end() ? nullptr : found->second.location;
}

void Page::forget(NPP npp) {
  frames_.erase(npp);
}

}  // namespace Vantrel::Web::Host
