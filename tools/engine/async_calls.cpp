#include "async_calls.h"

#include <map>
#include <memory>
#include <mutex>

#include "bridge.h"
#include "engine_functions.h"

namespace engine {
namespace {

struct AsyncCall {
  NPAsyncCallFunction function;
  void* argument;
};

std::mutex mutex;  // guards waiting
std::map<void*, std::unique_ptr<AsyncCall>> waiting;

// Runs on the engine's thread.
void deliver(void* record) {
  std::unique_ptr<AsyncCall> call;
  {
    const std::lock_guard lock(mutex);
    call = std::move(waiting[record]);
    waiting.erase(record);
  }
  bridge().onPluginThread([&] { call->function(call->argument); });
}

}  // namespace

void NP_ABI pluginThreadAsyncCall(NPP npp, NPAsyncCallFunction function, void* argument) {
  auto call = std::make_unique<AsyncCall>(AsyncCall{function, argument});
  AsyncCall* record = call.get();
  {
    const std::lock_guard lock(mutex);
    waiting[record] = std::move(call);
  }
  native(engineFunctions().pluginthreadasynccall)(npp, asTableMember(deliver), record);
}

size_t undeliveredAsyncCalls() {
  const std::lock_guard lock(mutex);
  return waiting.size();
}

}  // namespace engine
