#include "tests/host/process_state.h"

#include <windows.h>
#include <tlhelp32.h>
#include <winternl.h>
#include <malloc.h>

#include <memory>

namespace Vantrel::Web::Host {

namespace {

struct CloseHandleOnExit {
  using pointer = HANDLE;
  void operator()(HANDLE handle) const { CloseHandle(handle); }
};
using Handle = std::unique_ptr<void, CloseHandleOnExit>;

// The platform gives the lowest free number to a new handle, so the numbers in use lie close:
// behind that many free ones there is none.
constexpr int kFreeInARow = 1024;
constexpr uintptr_t kHandleStep = 4;
constexpr int kThreadStartAddress = 9;

template <typename Function>
Function systemFunction(const char* name) {
  const FARPROC address = GetProcAddress(GetModuleHandleW(L"ntdll.dll"), name);
  Function function;
  static_assert(sizeof function == sizeof address);
  __builtin_memcpy(&function, &address, sizeof function);
  return function;
}

const void* startOf(uint32_t threadId) {
  const Handle thread(OpenThread(THREAD_QUERY_INFORMATION, FALSE, threadId));
  if (thread.get() == nullptr) return nullptr;
  using Query = NTSTATUS(NTAPI*)(HANDLE, int, PVOID, ULONG, PULONG);
  static const auto query = systemFunction<Query>("NtQueryInformationThread");
  const void* start = nullptr;
  query(thread.get(), kThreadStartAddress, &start, sizeof start, nullptr);
  return start;
}

}  // namespace

std::set<uint32_t> threadIds() {
  std::set<uint32_t> ids;
  const Handle snapshot(CreateToolhelp32Snapshot(TH32CS_SNAPTHREAD, 0));
  THREADENTRY32 entry{};
  entry.dwSize = sizeof entry;
  for (BOOL more = Thread32First(snapshot.get(), &entry); more != FALSE;
       more = Thread32Next(snapshot.get(), &entry)) {
    if (entry.th32OwnerProcessID == GetCurrentProcessId()) ids.insert(entry.th32ThreadID);
  }
  return ids;
}

std::set<uint32_t> threadsStartedIn(const void* base) {
  std::set<uint32_t> ids;
  for (const uint32_t id : threadIds()) {
    MEMORY_BASIC_INFORMATION region{};
    if (VirtualQuery(startOf(id), &region, sizeof region) == 0) continue;
    if (region.AllocationBase == base) ids.insert(id);
  }
  return ids;
}

std::set<uint32_t> threadsOfCom() {
  std::set<uint32_t> ids;
  for (const wchar_t* const name : {L"ole32.dll", L"combase.dll", L"rpcrt4.dll"}) {
    const HMODULE module = GetModuleHandleW(name);
    if (module != nullptr) ids.merge(threadsStartedIn(module));
  }
  return ids;
}

size_t handleCount() {
  // GetProcessHandleCount answers 0 under Wine, and the list of all processes' handles makes its
  // server crash when one of them is just ending.
  size_t count = 0;
  int freeInARow = 0;
  for (uintptr_t number = kHandleStep; freeInARow < kFreeInARow; number += kHandleStep) {
    DWORD flags = 0;
    const bool used = GetHandleInformation(reinterpret_cast<HANDLE>(number), &flags) != FALSE;
    if (used) ++count;
    freeInARow = used ? 0 : freeInARow + 1;
  }
  return count;
}

// Wine tells 0; but it knows an object by the low half of its handle.
size_t graphicsObjects() {
  const DWORD told = GetGuiResources(GetCurrentProcess(), GR_GDIOBJECTS);
  if (told != 0) return told;
  constexpr uintptr_t kEnd = 0x10000;
  size_t count = 0;
  for (uintptr_t low = 1; low < kEnd; ++low) {
    if (GetObjectType(reinterpret_cast<HGDIOBJ>(low)) != 0) ++count;
  }
  return count;
}

bool moduleMapped(const std::wstring& path) {
  return GetModuleHandleW(path.c_str()) != nullptr;
}

HeapUse heapUse() {
  HANDLE heaps[64];
  const DWORD count = GetProcessHeaps(64, heaps);
  HeapUse use;
  for (DWORD i = 0; i < count && i < 64; ++i) {
    HeapLock(heaps[i]);
    PROCESS_HEAP_ENTRY entry{};
    while (HeapWalk(heaps[i], &entry) != FALSE) {
      if ((entry.wFlags & PROCESS_HEAP_ENTRY_BUSY) == 0) continue;
      ++use.blocks;
      use.bytes += entry.cbData;
    }
    HeapUnlock(heaps[i]);
  }
  return use;
}

bool isAllocated(const void* block) {
  return HeapValidate(reinterpret_cast<HANDLE>(_get_heap_handle()), 0, block) != FALSE;
}

void pumpMessages() {
  MSG message;
  while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE) != FALSE) {
    TranslateMessage(&message);
    DispatchMessageW(&message);
  }
}

void pause() {
  Sleep(1);
}

uint64_t milliseconds() {
  return GetTickCount64();
}

std::wstring programDirectory() {
  wchar_t path[MAX_PATH];
  const DWORD length = GetModuleFileNameW(nullptr, path, MAX_PATH);
  const std::wstring file(path, length);
  return file.substr(0, file.find_last_of(L'\\') + 1);
}

}  // namespace Vantrel::Web::Host
