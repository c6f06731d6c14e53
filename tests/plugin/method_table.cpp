#include "tests/plugin/method_table.h"

namespace Vantrel::Web {

using Host::Value;

const std::vector<MethodEntry>& methodTable() {
  using enum Demand;
  static const std::vector<MethodEntry> table = {
      {"addToDownloadList", {fullText}},
      {"addToUploadList", {fullText}},
      {"clearDownloadList", {}},
      {"clearUploadList", {}},
      {"vantrelHttpRequest", {text, text, text}, true},
      {"vantrelHttpRequestAsync", {text, text, text, object}, true},
      {"displayAboutWindow", {}},
      {"displayPreferencesWindow", {}},
      {"displayTransferManager", {}},
      {"handleDrop", {}, false, {object}},
      {"initSession", {text, text}, true},
      {"queryBrowserEngine", {}},
      {"queryBuildVersion", {}},
      {"queryPluginVersion", {}},
      {"queryVersion", {}},
      {"queryVantrelVersion", {}},
      {"runOpenFileDialog", {boolean, boolean}},
      {"runOpenFileDialogAsync", {text, boolean, text, object}, false, {boolean}},
      {"runOpenFolderDialogAsync", {text, boolean, object}, false, {boolean}},
      {"runOpenFolderDialog", {boolean}},
      {"runSaveFileDialog", {text}},
      {"runSaveFileDialogAsync", {text, text, text, object}},
      {"startDownload", {fullText}},
      {"startDownloadToPath", {fullText, text}},
      {"startListDownloadToPath", {text}},
      {"startListUploadToURL", {fullText}},
      {"readAsArrayBuffer", {fullText}},
      {"readChunkAsArrayBuffer", {fullText, number, number}},
      {"startUploadToURL", {fullText, fullText}},
      {"httpRequestImplementation", {text, text, text, object}, true},
  };
  return table;
}

Value goodValue(Demand demand, NPObject* object) {
  switch (demand) {
    case Demand::boolean:
      return Value::boolean(true);
    case Demand::number:
      return Value::number(1);
    case Demand::object:
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
  if (demand != Demand::boolean) add({Value::boolean(true), Value::boolean(false)});
  if (demand != Demand::number) add({Value::number(1), Value::number(0), Value::number(1.5)});
  if (demand != Demand::object) add({Value::of(object)});
  switch (demand) {
    case Demand::fullText:
      add({Value::string(""), Value::nullString()});
      break;
    case Demand::boolean:
      add({Value::string(""), Value::string("True"), Value::string("true "), Value::string("tru"),
           Value::string("1"), Value::nullString(), Value::stringInside("true", 3),
           Value::stringInside("falsehood", 6)});
      break;
    case Demand::number:
    case Demand::object:
      add({Value::string("1")});
      break;
    case Demand::text:
      break;
  }
  return values;
}

}  // namespace Vantrel::Web
