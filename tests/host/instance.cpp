#include "tests/host/instance.h"

#include <algorithm>

namespace Vantrel::Web::Host {

namespace {

GuardedBytes terminated(const std::string& text) {
  return GuardedBytes(std::string_view(text.c_str(), text.size() + 1));
}

}  // namespace

Instance::Instance(CountingHost& host, const std::vector<Parameter>& parameters)
    : Instance(host, parameters, static_cast<int16_t>(parameters.size())) {}

Instance::Instance(CountingHost& host, const std::vector<Parameter>& parameters, int16_t count)
    : host_(host), address_(host.page.address) {
  ++host_.instances;
  create(parameters, count);
}

Instance::~Instance() {
  end();
}

void Instance::create(const std::vector<Parameter>& parameters, int16_t count) {
  std::vector<GuardedBytes> texts;
  const auto keep = [&texts](const std::optional<std::string>& text) -> char* {
    if (!text) return nullptr;
    texts.push_back(terminated(*text));
    return texts.back().data();
  };
  // Both lists end where readable memory ends, as the argument lists of calls do.
  const GuardedBytes names(parameters.size() * sizeof(char*));
  const GuardedBytes values(parameters.size() * sizeof(char*));
  char** name = static_cast<char**>(static_cast<void*>(names.data()));
  char** value = static_cast<char**>(static_cast<void*>(values.data()));
  for (size_t i = 0; i < parameters.size(); ++i) {
    name[i] = keep(parameters[i].first);
    value[i] = keep(parameters[i].second);
  }
  char type[] = "application/x-orvane-web";
  error_ = host_.plugin().newp(type, &npp_, 1, count, name, value, nullptr);
}

NPObject* Instance::script() {
  if (script_ != nullptr) return script_;
  NPObject* object = nullptr;
  host_.plugin().getvalue(&npp_, NPPVpluginScriptableNPObject, static_cast<void*>(&object));
  if (object == nullptr) return nullptr;
  host_.objects.takeOver(object);
  script_ = object;
  return script_;
}

bool Instance::hasMethod(std::string_view name) {
  return script()->_class->hasMethod(script(), host_.identifiers.ofText(name));
}

bool Instance::hasProperty(std::string_view name) {
  return script()->_class->hasProperty(script(), host_.identifiers.ofText(name));
}

CallResult Instance::call(std::string_view name, const std::vector<Value>& arguments) {
  return invoke(host_.identifiers.ofText(name), arguments);
}

CallResult Instance::invoke(NPIdentifier name, const std::vector<Value>& arguments) {
  NPObject* object = script();
  const Arguments list(arguments);
  NPVariant result{};
  const bool accepted = object->_class->invoke(object, name, list.data(), list.count(), &result);
  return receive(accepted, result);
}

CallResult Instance::get(std::string_view name) {
  NPObject* object = script();
  NPVariant result{};
  const bool accepted =
      object->_class->getProperty(object, host_.identifiers.ofText(name), &result);
  return receive(accepted, result);
}

bool Instance::set(std::string_view name, const Value& value) {
  NPObject* object = script();
  const Arguments list({value});
  return object->_class->setProperty(object, host_.identifiers.ofText(name), list.data());
}

CallResult Instance::receive(bool accepted, NPVariant& result) {
  const NPString text = result.value.stringValue;
  if (result.type == NPVariantType_String && text.UTF8Characters != nullptr &&
      !host_.memory.covers(text.UTF8Characters, text.UTF8Length)) {
    host_.faults.add("a text result does not lie in the browser's memory");
    return {accepted, {}};
  }
  CallResult received{accepted, copyOf(result)};
  if (result.type == NPVariantType_String) {
    host_.memory.free(const_cast<char*>(text.UTF8Characters));
  } else if (result.type == NPVariantType_Object) {
    host_.objects.takeOver(result.value.objectValue);
    host_.objects.release(result.value.objectValue);
  }
  if (!accepted && result.type != NPVariantType_Void) {
    host_.faults.add("a refused call left a result");
  }
  return received;
}

NPError Instance::destroy() {
  destroyed_ = true;
  --host_.instances;
  const NPError error = host_.plugin().destroy(&npp_, nullptr);
  if (npp_.pdata != nullptr) host_.faults.add("NPP_Destroy left pdata");
  if (!deliverLateCalls) host_.async.dropCallsOf(&npp_);
  return error;
}

void Instance::settle(const Kept& kept) {
  settled_ = true;
  const std::vector<NPObject*> created = host_.objects.createdFor(&npp_);
  for (NPObject* object : created) settleReferences(object, kept.scriptObject, "script object");
  if (created.empty() && kept.scriptObject != 0) host_.faults.add("there is no script object");
  for (const auto& [object, count] : kept.objects) {
    settleReferences(object, object == kept.running ? count + 1 : count, "page object");
    host_.objects.writeOff(object, std::min(count, host_.objects.pluginReferences(object)));
  }
  const int results = host_.memory.freeAll(kPageResultBlock);
  if (results != kept.pageResults) {
    host_.faults.add(std::to_string(results) + " results of page functions were left, " +
                     std::to_string(kept.pageResults) + " are known");
  }
  settleHostname();
  host_.objects.endInstance(&npp_);
  host_.page.forget(&npp_);
  script_ = nullptr;
}

void Instance::settleReferences(NPObject* object, int known, const std::string& what) {
  const int held = host_.objects.pluginReferences(object);
  if (held == known) return;
  host_.faults.add(what + ": the plug-in holds " + std::to_string(held) + " references, " +
                   std::to_string(known) + " are known");
}

void Instance::settleHostname() {
  const bool window = address_.window == Step::kWorks;
  const bool location = window && address_.location == Step::kWorks;
  const bool text = (location && address_.hostname == Step::kWorks) ||
                    (window && address_.location == Step::kText);
  if (host_.page.windowOf(&npp_) != nullptr) {
    settleReferences(host_.page.windowOf(&npp_), window ? 1 : 0, "window");
    settleReferences(host_.page.locationOf(&npp_), location ? 1 : 0, "location");
  }
  const int texts = host_.memory.freeAll(hostnameBlock(&npp_));
  if (texts != (text ? 1 : 0)) host_.faults.add(std::to_string(texts) + " hostnames were left");
}

void Instance::end(const Kept& kept) {
  if (!destroyed_) destroy();
  if (!settled_) settle(kept);
}

}  // namespace Vantrel::Web::Host
