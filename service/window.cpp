#include "service/window.h"

#include <memory>
#include <utility>

#include "runtime/ov_log.h"
#include "service/vantrel_request.h"

namespace Vantrel::Web {

Window::Window(std::string windowName) : name_(std::move(windowName)) {}

bool Window::display(const std::string& argument) {
  std::unique_ptr<HttpResponse> response;
  const Contact contact =
      askVantrel("GET", "/windows/" + name_ + "/" + argument, "", kFormatXml, response);
  if (contact == Contact::kAnswered) return true;
  const char* const prefix = contact == Contact::kNoAnswer ? "Error displaying window: " : "";
  ov_err("%s%s", prefix, contactError(contact));
  return false;
}

}  // namespace Vantrel::Web
