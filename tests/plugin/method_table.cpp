#include "tests/plugin/method_table.h"

namespace Vantrel::Web {

using Host::Value;

const std::vector<MethodEntry>& methodTable() {
  using enum Demand;
  static const std::vector<MethodEntry> table = {
      {"addToDownloadList", {kFullText}},
      {"addToUploadList", {kFullText}},
      {"clearDownloadList", {}},
      {"clearUploadList", {}},
      {"vantrelHttpRequest", {kText, kText, kText}, true},
      {"vantrelHttpRequestAsync", {kText, kText, kText, kObject}, true},
      {"displayAboutWindow", {}},
      {"displayPreferencesWindow", {}},
      {"displayTransferManager", {}},
      {"handleDrop", {}, false, {kObject}},
      {"initSession", {kText, kText}, true},
      {"queryBrowserEngine", {}},
      {"queryBuildVersion", {}},
      {"queryPluginVersion", {}},
      {"queryVersion", {}},
      {"queryVantrelVersion", {}},
      {"runOpenFileDialog", {kBoolean, kBoolean}},
      {"runOpenFileDialogAsync", {kText, kBoolean, kText, kObject}, false, {kBoolean}},
      {"runOpenFolderDialogAsync", {kText, kBoolean, kObject}, false, {kBoolean}},
      {"runOpenFolderDialog", {kBoolean}},
      {"runSaveFileDialog", {kText}},
      {"runSaveFileDialogAsync", {kText, kText, kText, kObject}},
      {"startDownload", {kFullText}},
      {"startDownloadToPath", {kFullText, kText}},
      {"startListDownloadToPath", {kText}},
      {"startListUploadToURL", {kFullText}},
      {"readAsArrayBuffer", {kFullText}},
      {"readChunkAsArrayBuffer", {kFullText, kNumber, kNumber}},
      {"startUploadToURL", {kFullText, kFullText}},
      {"httpRequestImplementation", {kText, kText, kText, kObject}, true},
  };
  return table;
}

Value goodValue(Demand demand, NPObject* object) {
  switch (demand) {
    case Demand::kBoolean:
      return Value::boolean(true);
    case Demand::kNumber:
      return Value::number(1);
    case Demand::kObject:
      return Value::of(object);
    default:
      return Value::string("text");
  }
}

std::vector<Value> goodArguments(const MethodEntry& method, NPObject* object) {
  std::vector<Value> values;
  for (const Demand demand : method.demands) values.push_back(goodValue(demand, object));
  return values;
}

std::vector<Value> badValues(Demand demand, NPObject* object) {
  std::vector<Value> values = {Value::undefined(), Value::null()};
  const auto add = [&values](std::initializer_list<Value> more) {
    values.insert(values.end(), more);
  };
  if (demand != Demand::kBoolean) add({Value::boolean(true), Value::boolean(false)});
  if (demand != Demand::kNumber) add({Value::number(1), Value::number(0), Value::number(1.5)});
  if (demand != Demand::kObject) add({Value::of(object)});
  switch (demand) {
    case Demand::kFullText:
      add({Value::string(""), Value::nullString()});
      break;
    case Demand::kBoolean:
      add({Value::string(""), Value::string("True"), Value::string("true "), Value::string("tru"),
           Value::string("1"), Value::nullString(), Value::stringInside("true", 3),
           Value::stringInside("falsehood", 6)});
      break;
    case Demand::kNumber:
    case Demand::kObject:
      add({Value::string("1")});
      break;
    case Demand::kText:
      break;
  }
  return values;
}

}  // namespace Vantrel::Web
