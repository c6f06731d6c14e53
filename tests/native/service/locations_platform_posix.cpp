// Tests preset the directory; one that was not preset cannot be found.
#include "service/locations_platform.h"

namespace Vantrel::Web {

int32_t localAppDataDirectory(std::string*) {
  return -1;
}

}  // namespace Vantrel::Web
