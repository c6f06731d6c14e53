#include "service/window.h"

#include <memory>
#include <utility>

#include "runtime/ov_log.h"
#include "service/launch.h"
#include "service/vantrel_request.h"
#include "text/error_texts.h"

namespace Vantrel::Web {

Window::Window(std::string windowName) : name_(std::move(windowName)) {}

bool Window::display(const std::string& argument) {
  if (!launchVantrel()) {
    ov_err("%s", kErrorContacting);
    return false;
  }
  const std::unique_ptr<HttpRequest> request =
      newVantrelRequest("GET", "/windows/" + name_ + "/" + argument, "", kFormatXml);
  if (!request) {
    ov_err("%s", kErrorCreatingRequest);
    return false;
  }
  if (request->invoke()) return true;
  ov_err("Error displaying window: %s", kErrorContacting);
  return false;
}

}  // namespace Vantrel::Web
