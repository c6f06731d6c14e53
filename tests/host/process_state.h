// What the test's own process holds at a moment: threads, handles, mapped modules, heap blocks. Any
// thread may ask; the answers are of that moment.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <set>
#include <string>

namespace Vantrel::Web::Host {

// Ids of the threads of this process.
std::set<uint32_t> threadIds();
// Of these, the ones whose start function lies in the module at `base`.
std::set<uint32_t> threadsStartedIn(const void* base);
// Of these, the ones that the platform keeps for COM once somebody in the process has used it.
std::set<uint32_t> threadsOfCom();
// Open handles of this process.
size_t handleCount();
// Objects of the graphics system that this process has.
size_t graphicsObjects();
// True while a module of that file name is mapped into this process.
bool moduleMapped(const std::wstring& path);

struct HeapUse {
  size_t blocks = 0;
  size_t bytes = 0;
};
// Busy blocks of all heaps of this process. Browsers' and test's own blocks count too.
HeapUse heapUse();

// Whether a block of malloc's begins here and was not freed.
bool isAllocated(const void* block);

// Runs the messages that wait for this thread, without waiting.
void pumpMessages();
// Sleeps a moment so that other threads get on.
void pause();
// Milliseconds of a clock that never goes back.
uint64_t milliseconds();

// The directory of this test program, with a closing separator.
std::wstring programDirectory();

}  // namespace Vantrel::Web::Host
