#include "browsers/gecko/fake_browser.h"

#include <gtest/gtest.h>

#include <cstdlib>

namespace Vantrel::Web {

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
    if (block) --current->blocks;
    std::free(block);
  };
  browserFuncs.retainobject = [](NPObject* object) {
    ++object->referenceCount;
    return object;
  };
  browserFuncs.releaseobject = [](NPObject* object) {
    EXPECT_GT(object->referenceCount, 0u);
    --object->referenceCount;
  };
  browserFuncs.releasevariantvalue = [](NPVariant*) { ++current->releasedVariants; };
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
  browserFuncs.pluginthreadasynccall = [](NPP npp, NPAsyncCallFunction function, void* argument) {
    EXPECT_EQ(npp, &current->instance);
    current->asyncCalls.emplace_back(function, argument);
  };
}

FakeBrowser::~FakeBrowser() {
  int references = 0;
  for (const auto& object : objects) references += static_cast<int>(object->referenceCount);
  EXPECT_EQ(references, expectedReferences);
  EXPECT_EQ(blocks, 0);
  current = nullptr;
  browserFuncs = {};
}

NPObject* FakeBrowser::newObject() {
  return objects.emplace_back(std::make_unique<NPObject>()).get();
}

NPVariant FakeBrowser::text(const std::string& value) {
  const std::vector<char>& bytes = texts.emplace_back(value.begin(), value.end());
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
  while (!asyncCalls.empty()) {
    const auto [function, argument] = asyncCalls.front();
    asyncCalls.erase(asyncCalls.begin());
    function(argument);
    ++count;
  }
  return count;
}

}  // namespace Vantrel::Web
