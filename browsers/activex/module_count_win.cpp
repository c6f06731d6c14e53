#include "browsers/activex/module_count_win.h"

#include <windows.h>
#include <ole2.h>
// Behind ole2.h, whose PROPID it needs.
#include <gdiplus.h>

#include <mutex>

#include "browsers/shared/module_life.h"

namespace Vantrel::Web::ActiveX {

namespace {

std::mutex countMutex;  // guards all here, and is held while the face starts or ends
int reasons = 0;
int locks = 0;
ULONG_PTR gdiplusToken = 0;

// Pictures are not painted when the decoder does not start; all else works.
void startFace() {
  startModule();
  const Gdiplus::GdiplusStartupInput input(nullptr, FALSE, FALSE);
  Gdiplus::GdiplusStartup(&gdiplusToken, &input, nullptr);
}

void endFace() {
  if (gdiplusToken != 0) Gdiplus::GdiplusShutdown(gdiplusToken);
  gdiplusToken = 0;
  endModule();
}

// The counts' own lock is held.
void addReason() {
  if (reasons++ == 0) startFace();
}

void dropReason() {
  if (--reasons == 0) endFace();
}

}  // namespace

ModuleReference::ModuleReference() noexcept {
  const std::lock_guard<std::mutex> lock(countMutex);
  addReason();
}

ModuleReference::~ModuleReference() {
  const std::lock_guard<std::mutex> lock(countMutex);
  dropReason();
}

void lockModule() noexcept {
  const std::lock_guard<std::mutex> lock(countMutex);
  ++locks;
  addReason();
}

// A container that unlocks once too often takes no other reason away.
void unlockModule() noexcept {
  const std::lock_guard<std::mutex> lock(countMutex);
  if (locks == 0) return;
  --locks;
  dropReason();
}

bool isModuleIdle() noexcept {
  const std::lock_guard<std::mutex> lock(countMutex);
  return reasons == 0;
}

}  // namespace Vantrel::Web::ActiveX
