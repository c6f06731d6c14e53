#include "tests/support/fake_browser.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>

namespace Vantrel::Web::Gecko {

namespace {
FakeBrowser* current = nullptr;
}

FakeBrowser::FakeBrowser() {
  current = this;
  browserFuncs = {};
  browserFuncs.memalloc = [](uint32_t size) -> void* {
    if (current->outOfMemory) return nullptr;
    ++current->blocks;
    return std::malloc(size);
  };
  browserFuncs.memfree = [](void* block) {
    if (block != nullptr) --current->blocks;
    std::free(block);
  };
  browserFuncs.retainobject = [](NPObject* object) {
    ++current->retains;
    ++object->referenceCount;
    return object;
  };
  browserFuncs.releaseobject = [](NPObject* object) {
    EXPECT_GT(object->referenceCount, 0u);
    --object->referenceCount;
  };
  browserFuncs.releasevariantvalue = [](NPVariant* variant) {
    ++current->releasedVariants;
    if (variant->type != NPVariantType_String) return;
    browserFuncs.memfree(const_cast<char*>(variant->value.stringValue.UTF8Characters));
  };
  browserFuncs.invokeDefault = [](NPP npp, NPObject* function, const NPVariant* args,
                                  uint32_t count, NPVariant* result) {
    EXPECT_EQ(npp, &current->instance);
    EXPECT_GT(function->referenceCount, 0u) << "called without a reference";
    std::vector<std::string> values;
    for (uint32_t i = 0; i < count; ++i) {
      EXPECT_EQ(args[i].type, NPVariantType_String);
      const NPString& string = args[i].value.stringValue;
      values.emplace_back(string.UTF8Characters, string.UTF8Length);
    }
    current->invocations.push_back(values);
    if (current->onInvokeDefault) *result = current->onInvokeDefault(function, values);
    return current->invokeResult;
  };
  browserFuncs.invoke = [](NPP npp, NPObject* object, NPIdentifier name, const NPVariant* args,
                           uint32_t count, NPVariant* result) {
    EXPECT_EQ(npp, &current->instance);
    EXPECT_EQ(count, 1u);
    const NPString& string = args[0].value.stringValue;
    const std::vector<std::string> values = {*static_cast<const std::string*>(name),
                                             {string.UTF8Characters, string.UTF8Length}};
    current->invocations.push_back(values);
    if (current->onInvokeDefault) *result = current->onInvokeDefault(object, values);
    return current->invokeResult;
  };
  browserFuncs.hasmethod = [](NPP, NPObject* object, NPIdentifier name) {
    const std::vector<std::string>& known = current->methods_[object];
    return std::count(known.begin(), known.end(), *static_cast<const std::string*>(name)) != 0;
  };
  browserFuncs.getstringidentifier = [](const char* name) { return current->identifier(name); };
  browserFuncs.identifierisstring = [](NPIdentifier name) { return name != nullptr; };
  browserFuncs.utf8fromidentifier = [](NPIdentifier name) -> char* {
    const std::string& text = *static_cast<const std::string*>(name);
    const auto size = static_cast<uint32_t>(text.size() + 1);
    auto* const copy = static_cast<char*>(browserFuncs.memalloc(size));
    if (copy != nullptr) std::memcpy(copy, text.c_str(), size);
    return copy;
  };
  browserFuncs.createobject = [](NPP npp, NPClass* objectClass) {
    current->created_ = objectClass->allocate(npp, objectClass);
    current->created_->_class = objectClass;
    current->created_->referenceCount = 1;
    return current->created_;
  };
  browserFuncs.uagent = [](NPP) { return current->userAgent; };
  browserFuncs.getvalue = [](NPP, NPNVariable, void* value) {
    if (!current->hasWindow) return NPERR_GENERIC_ERROR;
    *static_cast<NPObject**>(value) = current->newObject();
    return NPERR_NO_ERROR;
  };
  browserFuncs.getproperty = [](NPP, NPObject*, NPIdentifier name, NPVariant* result) {
    const std::string& text = *static_cast<const std::string*>(name);
    const NPVariant& value = text == "location" ? current->location : current->hostname;
    if (value.type == NPVariantType_Void) return false;
    *result = value;
    return true;
  };
  browserFuncs.geturlnotify = [](NPP, const char* url, const char*, void*) {
    current->requestedUrls.emplace_back(url);
    return current->urlResult;
  };
  browserFuncs.pluginthreadasynccall = [](NPP npp, NPAsyncCallFunction function, void* argument) {
    EXPECT_EQ(npp, &current->instance);
    current->asyncCalls_.emplace_back(function, argument);
  };
}

FakeBrowser::~FakeBrowser() {
  int references = 0;
  for (const auto& object : objects_) references += static_cast<int>(object->referenceCount);
  EXPECT_EQ(references, expectedReferences_);
  EXPECT_EQ(blocks, 0);
  current = nullptr;
  browserFuncs = {};
}

NPObject* FakeBrowser::newObject() {
  return objects_.emplace_back(std::make_unique<NPObject>()).get();
}

NPObject* FakeBrowser::newObjectWithMethods(const std::vector<std::string>& names) {
  NPObject* const object = newObject();
  methods_[object] = names;
  return object;
}

NPIdentifier FakeBrowser::identifier(const std::string& name) {
  return const_cast<std::string*>(&*identifiers_.insert(name).first);
}

NPVariant FakeBrowser::text(const std::string& value) {
  const std::vector<char>& bytes = texts_.emplace_back(value.begin(), value.end());
  NPVariant variant = {NPVariantType_String, {}};
  variant.value.stringValue = {bytes.data(), static_cast<uint32_t>(bytes.size())};
  return variant;
}

NPVariant FakeBrowser::number(int32_t value) {
  NPVariant variant = {NPVariantType_Int32, {}};
  variant.value.intValue = value;
  return variant;
}

NPVariant FakeBrowser::number(double value) {
  NPVariant variant = {NPVariantType_Double, {}};
  variant.value.doubleValue = value;
  return variant;
}

NPVariant FakeBrowser::boolean(bool value) {
  NPVariant variant = {NPVariantType_Bool, {}};
  variant.value.boolValue = value;
  return variant;
}

NPVariant FakeBrowser::object() {
  NPVariant variant = {NPVariantType_Object, {}};
  variant.value.objectValue = newObject();
  return variant;
}

int FakeBrowser::runAsyncCalls() {
  int count = 0;
  while (!asyncCalls_.empty()) {
    const auto [function, argument] = asyncCalls_.front();
    asyncCalls_.erase(asyncCalls_.begin());
    function(argument);
    ++count;
  }
  return count;
}

}  // namespace Vantrel::Web::Gecko
