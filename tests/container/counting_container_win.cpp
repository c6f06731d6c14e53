#include "tests/container/counting_container_win.h"

#include <ole2.h>

#include <stdexcept>

#include "tests/host/process_state.h"

namespace Vantrel::Web::Container {

namespace {

constexpr int kWidth = 400;
constexpr int kHeight = 300;

}  // namespace

CountingContainer::CountingContainer(ControlLibrary& library) : CountingContainer() {
  library_ = &library;
}

CountingContainer::CountingContainer() : calls(faults), book(faults, calls) {
  if (FAILED(OleInitialize(nullptr))) throw std::runtime_error("OLE cannot be initialised");
  window_ = CreateWindowExW(0, L"Static", L"container", WS_OVERLAPPEDWINDOW | WS_CLIPCHILDREN, 0, 0,
                            kWidth, kHeight, nullptr, nullptr, GetModuleHandleW(nullptr), nullptr);
}

CountingContainer::~CountingContainer() {
  DestroyWindow(window_);
  OleUninitialize();
}

std::vector<std::string> CountingContainer::finish() {
  // What was posted for a control that has gone runs and finds nothing.
  pumpOnce();
  if (controls != 0) faults.add(std::to_string(controls) + " controls were never released");
  if (GetWindow(window_, GW_CHILD) != nullptr) faults.add("a control's window is left");
  book.close();
  return faults.take();
}

void CountingContainer::pumpOnce() {
  Host::pumpMessages();
  if (onTurn) onTurn();
}

bool CountingContainer::pumpUntil(const std::function<bool()>& done, uint64_t timeoutMs) {
  const uint64_t deadline = Host::milliseconds() + timeoutMs;
  while (!done()) {
    if (Host::milliseconds() > deadline) return false;
    pumpOnce();
    Host::pause();
  }
  return true;
}

void CountingContainer::pumpFor(uint64_t milliseconds) {
  pumpUntil([] { return false; }, milliseconds);
}

}  // namespace Vantrel::Web::Container
