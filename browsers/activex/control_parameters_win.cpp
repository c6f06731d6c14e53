// How a control reads the parameters of its element.

#include <exception>

#include "browsers/activex/orvane_web_ctrl_win.h"
#include "runtime/ov_log.h"
#include "text/wide_text.h"

namespace Vantrel::Web::ActiveX {

namespace {

constexpr char kImage[] = "image";
constexpr char kDropMode[] = "drop-mode";
constexpr char kDropAllowDirectories[] = "drop-allow-directories";
constexpr char kDropAllowMultiple[] = "drop-allow-multiple";

}  // namespace

std::string COrvaneWebCtrl::readParameter(PropertyExchange& exchange, const char* name) {
  std::wstring wide;
  exchange.text(toWide(name).c_str(), wide);
  std::string text;
  try {
    text = toUtf8(wide);
  } catch (const std::exception& exception) {
    ov_err("%s", exception.what());
  }
  OV_DEBUG("%s = %s", name, text.c_str());
  return text;
}

void COrvaneWebCtrl::readParameters(PropertyExchange& exchange) {
  for (const char* const name :
       {"transfer-icon", "link-capacity", "drop-upload-url", "vantrel-launch-wait-timeout-ms"}) {
    parameters_[name] = readParameter(exchange, name);
  }
  imageUrl_ = toWide(readParameter(exchange, kImage));
  dropMode_ = dropModeOf({{kDropMode, readParameter(exchange, kDropMode)}});
  dropAllowDirectories_ = readParameter(exchange, kDropAllowDirectories) == "true";
  dropAllowMultiple_ = readParameter(exchange, kDropAllowMultiple) == "true";
}

}  // namespace Vantrel::Web::ActiveX
