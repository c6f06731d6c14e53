// The script object's own answers: names of methods and properties, and the three properties with
// the references that they hold.
#include <gmock/gmock.h>

#include <algorithm>
#include <cctype>

#include "tests/plugin/method_table.h"
#include "tests/plugin/plugin_fixture.h"

namespace Vantrel::Web {
namespace {

class PropertiesTest : public PluginTest {
 protected:
  int held(const Host::PageReference& object) {
    return host().objects.pluginReferences(object.get());
  }
};

TEST_F(PropertiesTest, TheThirtyMethodsAreThere) {
  Instance instance(host());
  EXPECT_EQ(methodTable().size(), 30U);
  for (const MethodEntry& method : methodTable()) {
    EXPECT_TRUE(instance.hasMethod(method.name)) << method.name;
    EXPECT_FALSE(instance.hasProperty(method.name)) << method.name;
  }
}

TEST_F(PropertiesTest, NamesAreComparedExactly) {
  Instance instance(host());
  for (const MethodEntry& method : methodTable()) {
    const std::string name = method.name;
    std::string lower = name;
    std::transform(lower.begin(), lower.end(), lower.begin(),
                   [](unsigned char byte) { return static_cast<char>(std::tolower(byte)); });
    for (const std::string& other : {lower, name + " ", " " + name, name.substr(1),
                                     name.substr(0, name.size() - 1), name + "2"}) {
      EXPECT_FALSE(instance.hasMethod(other)) << other;
      EXPECT_FALSE(instance.call(other).accepted) << other;
    }
  }
  for (const char* other : {"", "Name", "name ", "eventhandler", "dropobserver", "queryversion"}) {
    EXPECT_FALSE(instance.hasMethod(other)) << other;
    EXPECT_FALSE(instance.hasProperty(other)) << other;
    EXPECT_FALSE(instance.get(other).accepted) << other;
    EXPECT_FALSE(instance.set(other, text("x"))) << other;
  }
}

TEST_F(PropertiesTest, ThreePropertiesAreThere) {
  Instance instance(host());
  for (const char* name : {"name", "dropObserver", "eventHandler"}) {
    EXPECT_TRUE(instance.hasProperty(name)) << name;
    EXPECT_FALSE(instance.hasMethod(name)) << name;
  }
}

TEST_F(PropertiesTest, NumbersAreNoNames) {
  Instance instance(host());
  const NPIdentifier number = host().identifiers.ofNumber(7);
  const NPClass* table = instance.script()->_class;
  NPVariant value{};
  EXPECT_FALSE(table->hasMethod(instance.script(), number));
  EXPECT_FALSE(table->hasProperty(instance.script(), number));
  EXPECT_FALSE(table->getProperty(instance.script(), number, &value));
  EXPECT_FALSE(table->setProperty(instance.script(), number, &value));
  EXPECT_FALSE(instance.invoke(number, {}).accepted);
}

TEST_F(PropertiesTest, ABrowserWithoutAnAnswerToTheNameMatchesNothing) {
  Instance instance(host());
  instance.script();
  host().identifiers.failNextName();
  EXPECT_FALSE(instance.hasMethod("queryVersion"));
  host().identifiers.failNextName();
  EXPECT_FALSE(instance.call("queryVersion").accepted);
  host().identifiers.failNextName();
  EXPECT_FALSE(instance.get("name").accepted);
  EXPECT_TRUE(instance.hasMethod("queryVersion"));
}

TEST_F(PropertiesTest, TheClassHasNoGarbage) {
  Instance instance(host());
  const NPClass* table = instance.script()->_class;
  EXPECT_EQ(table->structVersion, 3U);
  EXPECT_EQ(table->enumerate, nullptr);
  EXPECT_EQ(table->construct, nullptr);
  NPVariant result{};
  EXPECT_FALSE(table->invokeDefault(instance.script(), nullptr, 0, &result));
  EXPECT_FALSE(table->removeProperty(instance.script(), host().identifiers.ofText("name")));
}

TEST_F(PropertiesTest, ANullObjectIsRefused) {
  Instance instance(host());
  const NPClass* table = instance.script()->_class;
  const NPIdentifier method = host().identifiers.ofText("queryVersion");
  NPVariant result{};
  EXPECT_FALSE(table->invoke(nullptr, method, nullptr, 0, &result));
}

TEST_F(PropertiesTest, NameStartsAsNullTextAndKeepsWhatIsSet) {
  Instance instance(host());
  EXPECT_EQ(instance.get("name").value, Value::nullString());
  EXPECT_TRUE(instance.set("name", text("my name")));
  EXPECT_EQ(instance.get("name").value, text("my name"));
  EXPECT_TRUE(instance.set("name", text("")));
  EXPECT_EQ(instance.get("name").value, Value::nullString());
  EXPECT_TRUE(instance.set("name", text("\xC3\xA4\xE2\x82\xAC")));
  EXPECT_EQ(instance.get("name").value, text("\xC3\xA4\xE2\x82\xAC"));
}

TEST_F(PropertiesTest, NameTakesTextOnly) {
  Instance instance(host());
  Host::PageReference object = host().page.makeObject("object", {});
  instance.set("name", text("kept"));
  for (const Value& value : {Value::number(5), Value::number(5.5), Value::boolean(true),
                             Value::null(), Value::undefined(), object.value()}) {
    EXPECT_FALSE(instance.set("name", value)) << value;
  }
  EXPECT_EQ(instance.get("name").value, text("kept"));
}

TEST_F(PropertiesTest, NameIsReadByItsLength) {
  Instance instance(host());
  EXPECT_TRUE(instance.set("name", Value::stringInside("abcdef", 3)));
  EXPECT_EQ(instance.get("name").value, text("abc"));
  EXPECT_TRUE(instance.set("name", Value::nullString()));
  EXPECT_EQ(instance.get("name").value, Value::nullString());
}

TEST_F(PropertiesTest, NamesOfInstancesAreTheirOwn) {
  Instance first(host());
  Instance second(host());
  first.set("name", text("first"));
  EXPECT_EQ(second.get("name").value, Value::nullString());
}

TEST_F(PropertiesTest, WithoutBrowserMemoryANameIsNullText) {
  Instance instance(host());
  instance.set("name", text("my name"));
  host().memory.failAllocationAfter(0);
  EXPECT_EQ(instance.get("name").value, Value::nullString());
  EXPECT_EQ(instance.get("name").value, text("my name"));
}

class ObjectPropertyTest : public PropertiesTest, public testing::WithParamInterface<std::string> {
 protected:
  const std::string& property() const { return GetParam(); }
  bool isObserver() const { return property() == "dropObserver"; }
  std::string set() const { return isObserver() ? "Drop observer set" : "Event handler set"; }
  std::string removed() const {
    return isObserver() ? "Drop observer removed" : "Event handler removed";
  }
};

TEST_P(ObjectPropertyTest, IsNullUntilItIsSet) {
  Instance instance(host());
  EXPECT_EQ(instance.get(property()).value, Value::null());
}

TEST_P(ObjectPropertyTest, HoldsOneReferenceAndHandsOutItsOwn) {
  Host::PageReference object = host().page.makeFunction("object");
  Instance instance(host());
  EXPECT_TRUE(instance.set(property(), object.value()));
  EXPECT_TRUE(logHas("LOG " + set() + "\r\n"));
  EXPECT_EQ(held(object), 1);
  for (int i = 0; i < 5; ++i) {
    EXPECT_EQ(instance.get(property()).value, object.value());
    EXPECT_EQ(held(object), 1);
  }
  instance.end({.objects = {{object.get(), 1}}});
}

TEST_P(ObjectPropertyTest, EveryOtherValueClearsIt) {
  Host::PageReference object = host().page.makeFunction("object");
  Instance instance(host());
  size_t removals = 0;
  for (const Value& value : {Value::number(5), Value::number(5.5), Value::boolean(true),
                             Value::null(), Value::undefined(), text("text")}) {
    EXPECT_TRUE(instance.set(property(), object.value()));
    EXPECT_TRUE(instance.set(property(), value)) << value;
    EXPECT_EQ(instance.get(property()).value, Value::null()) << value;
    EXPECT_EQ(logCount(removed()), ++removals) << value;
  }
  // A former handler is still sent the events.
  EXPECT_EQ(held(object), isObserver() ? 0 : 1);
}

TEST_P(ObjectPropertyTest, ClearingWhatIsNotSetSaysNothing) {
  Instance instance(host());
  EXPECT_TRUE(instance.set(property(), Value::null()));
  EXPECT_FALSE(logHas(removed()));
}

TEST_P(ObjectPropertyTest, AnotherObjectReplacesTheFormer) {
  Host::PageReference first = host().page.makeFunction("first");
  Host::PageReference second = host().page.makeFunction("second");
  Instance instance(host());
  instance.set(property(), first.value());
  instance.set(property(), second.value());
  EXPECT_EQ(instance.get(property()).value, second.value());
  EXPECT_EQ(held(first), 0);
  EXPECT_EQ(held(second), 1);
  EXPECT_EQ(logCount(removed()), 1U);
  EXPECT_EQ(logCount(set()), 2U);
  instance.end({.objects = {{second.get(), 1}}});
}

TEST_P(ObjectPropertyTest, TheSameObjectAgainIsHeldOnce) {
  Host::PageReference object = host().page.makeFunction("object");
  Instance instance(host());
  for (int i = 0; i < 3; ++i) instance.set(property(), object.value());
  EXPECT_EQ(held(object), 1);
  instance.end({.objects = {{object.get(), 1}}});
}

TEST_P(ObjectPropertyTest, ItIsKeptAliveByTheInstanceAlone) {
  Host::PageReference object = host().page.makeFunction("object");
  NPObject* const pointer = object.get();
  Instance instance(host());
  instance.set(property(), object.value());
  object.drop();
  EXPECT_TRUE(host().objects.isLive(pointer));
  EXPECT_EQ(instance.get(property()).value, Value::of(pointer));
  instance.end({.objects = {{pointer, 1}}});
}

TEST_P(ObjectPropertyTest, InstancesHoldTheirOwn) {
  Host::PageReference object = host().page.makeFunction("object");
  Instance first(host());
  Instance second(host());
  first.set(property(), object.value());
  second.set(property(), object.value());
  EXPECT_EQ(held(object), 2);
  first.destroy();
  EXPECT_EQ(held(object), 2);
  second.end({.objects = {{object.get(), 2}}});
  first.settle();
}

INSTANTIATE_TEST_SUITE_P(Both, ObjectPropertyTest,
                         testing::Values(std::string("dropObserver"), std::string("eventHandler")),
                         [](const auto& parameter) { return parameter.param; });

TEST_F(PropertiesTest, AClearedHandlerIsHeldUntilAnotherComes) {
  Host::PageReference first = host().page.makeFunction("first");
  Host::PageReference second = host().page.makeFunction("second");
  Instance instance(host());
  instance.set("eventHandler", first.value());
  instance.set("eventHandler", Value::null());
  EXPECT_EQ(instance.get("eventHandler").value, Value::null());
  EXPECT_EQ(held(first), 1);
  instance.set("eventHandler", Value::null());
  EXPECT_EQ(held(first), 1);
  instance.set("eventHandler", second.value());
  EXPECT_EQ(held(first), 0);
  instance.end({.objects = {{second.get(), 1}}});
}

TEST_F(PropertiesTest, AClearedHandlerIsGivenBackAtTheEnd) {
  Host::PageReference handler = host().page.makeFunction("handler");
  Instance instance(host());
  instance.set("eventHandler", handler.value());
  instance.set("eventHandler", Value::number(1));
  instance.destroy();
  EXPECT_EQ(held(handler), 0);
}

TEST_F(PropertiesTest, AClearedHandlerMaySetItselfAgain) {
  Host::PageReference handler = host().page.makeFunction("handler");
  Instance instance(host());
  for (int i = 0; i < 3; ++i) {
    instance.set("eventHandler", handler.value());
    instance.set("eventHandler", Value::null());
  }
  instance.set("eventHandler", handler.value());
  EXPECT_EQ(held(handler), 1);
  instance.end({.objects = {{handler.get(), 1}}});
}

TEST_F(PropertiesTest, AfterTheEndTheScriptObjectAnswersFalse) {
  Host::PageReference object = host().page.makeFunction("object");
  Instance instance(host());
  instance.set("name", text("my name"));
  instance.script();
  instance.destroy();
  EXPECT_FALSE(instance.get("name").accepted);
  EXPECT_FALSE(instance.get("eventHandler").accepted);
  EXPECT_FALSE(instance.set("name", text("x")));
  EXPECT_FALSE(instance.set("eventHandler", object.value()));
  EXPECT_FALSE(instance.set("dropObserver", object.value()));
  for (const MethodEntry& method : methodTable()) {
    EXPECT_FALSE(instance.call(method.name, goodArguments(method, object.get())).accepted)
        << method.name;
  }
  EXPECT_TRUE(instance.hasMethod("queryVersion"));
  EXPECT_TRUE(instance.hasProperty("name"));
  EXPECT_EQ(held(object), 0);
}

}  // namespace
}  // namespace Vantrel::Web
