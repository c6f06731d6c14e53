#include "browsers/gecko/async_call.h"

#include <cstdint>
#include <map>
#include <mutex>
#include <utility>

#include "browsers/gecko/browser_functions.h"
#include "runtime/ov_log.h"
#include "threads/guarded.h"

namespace Vantrel::Web::Gecko {

namespace {

struct PostedCall {
  NPP npp;
  std::unique_ptr<AsyncCall> call;
};

std::mutex undeliveredMutex;  // guards what follows
// The keys are counted and never come again, unlike addresses: a browser that runs a call twice or
// long after its end meets nobody.
std::map<uintptr_t, PostedCall> undelivered;
uintptr_t lastKey = 0;

uintptr_t keep(NPP npp, std::unique_ptr<AsyncCall> call) {
  const std::lock_guard<std::mutex> lock(undeliveredMutex);
  undelivered.emplace(++lastKey, PostedCall{npp, std::move(call)});
  return lastKey;
}

std::unique_ptr<AsyncCall> take(uintptr_t key) {
  const std::lock_guard<std::mutex> lock(undeliveredMutex);
  const auto node = undelivered.extract(key);
  return node ? std::move(node.mapped().call) : nullptr;
}

void NP_ABI run(void* key) {
  guarded([key] {
    if (const auto call = take(reinterpret_cast<uintptr_t>(key))) call->deliver();
  });
}

}  // namespace

void postToBrowser(NPP npp, std::unique_ptr<AsyncCall> call) {
  const NPN_PluginThreadAsyncCallProcPtr post = browserFuncs.pluginthreadasynccall;
  if (post == nullptr) {
    ov_err("%s", "The browser takes no calls from other threads");
    return;
  }
  post(npp, run, reinterpret_cast<void*>(keep(npp, std::move(call))));
}

void freeUndeliveredCalls(NPP npp) {
  const std::lock_guard<std::mutex> lock(undeliveredMutex);
  std::erase_if(undelivered, [npp](const auto& entry) { return entry.second.npp == npp; });
}

}  // namespace Vantrel::Web::Gecko
