#include "browsers/gecko/async_call.h"

#include <exception>
#include <map>
#include <mutex>

#include "browsers/gecko/browser_functions.h"
#include "runtime/ov_log.h"
#include "threads/mutex.h"

namespace Vantrel::Web::Gecko {

namespace {

std::mutex undeliveredMutex;  // guards undelivered
std::map<void*, std::unique_ptr<AsyncCall>> undelivered;

std::unique_ptr<AsyncCall> take(void* key) {
  const std::lock_guard<std::mutex> lock(undeliveredMutex);
  const auto node = undelivered.extract(key);
  return node ? std::move(node.mapped()) : nullptr;
}

void NP_ABI run(void* key) {
  try {
    // A call that is not in the map was freed with the module's last end.
    if (const std::unique_ptr<AsyncCall> call = take(key)) call->deliver();
  } catch (const std::exception& exception) {
    ov_err("%s", exception.what());
  }
}

}  // namespace

void postToBrowser(NPP npp, std::unique_ptr<AsyncCall> call) {
  AsyncCall* const key = call.get();
  {
    const std::lock_guard<std::mutex> lock(undeliveredMutex);
    undelivered.emplace(key, std::move(call));
  }
  browserFuncs.pluginthreadasynccall(npp, run, key);
}

void freeUndeliveredCalls() {
  const std::lock_guard<std::mutex> lock(undeliveredMutex);
  undelivered.clear();
}

}  // namespace Vantrel::Web::Gecko
