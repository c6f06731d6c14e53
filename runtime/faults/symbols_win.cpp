#include "runtime/faults/symbols_win.h"

#include <windows.h>
#include <dbghelp.h>

#include <atomic>
#include <cstring>
#include <utility>

#include "runtime/faults/backtrace.h"
#include "runtime/ov_errors.h"
#include "runtime/ov_files.h"
#include "runtime/ov_log.h"
#include "runtime/ov_paths.h"
#include "runtime/ov_process.h"
#include "runtime/ov_strings.h"
#include "runtime/sync/bounded_lock.h"

namespace ov {
namespace {

constexpr char kLibraryName[] = "dbghelp.dll";
// Places of a newer one than the system's, below the folder of programs.
constexpr const char* kToolsLibraries[] = {
    "Debugging Tools for Windows/dbghelp.dll",
    "Debugging Tools for Windows 64-bit/dbghelp.dll",
};
// A file of this name beside the program keeps the program to its own libraries.
constexpr char kLocalSuffix[] = ".local";
constexpr ov_rc kNoLibrary = 183;
// How long opening and closing wait for a look-up that is under way.
constexpr uint32_t kPatience = 5000;

// A symbol with room for a name of the length that we ask for.
struct SymbolRecord {
  IMAGEHLP_SYMBOL64 symbol;
  char more[sizeof Symbol::name];
};
static_assert(sizeof(IMAGEHLP_SYMBOL64) == 32);

// All of it guarded by `lock`: the library works for one thread at a time.
struct Symbols {
  SymbolFailure failure;
  ov_library library = nullptr;
  HANDLE process = nullptr;
  bool asked = false;        // whether a name has been asked for
  bool initialized = false;  // by us, and so to be cleaned up by us
  decltype(&SymInitialize) initialize = nullptr;
  decltype(&SymFunctionTableAccess64) functionTable = nullptr;
  decltype(&SymGetModuleBase64) moduleBase = nullptr;
  decltype(&UnDecorateSymbolName) undecorate = nullptr;
  decltype(&SymGetSymFromAddr64) fromAddress = nullptr;
};
constinit Symbols symbols;
constinit BoundedLock lock;

// What the C runtime asks too. Looked up at the set-up, since a look-up may wait for the loader.
using ShutdownInProgress = BOOLEAN(NTAPI*)();
constinit std::atomic<ShutdownInProgress> shutdown_in_progress = nullptr;

void look_up_shutdown() {
  const FARPROC address =
      GetProcAddress(GetModuleHandleW(L"ntdll.dll"), "RtlDllShutdownInProgress");
  ShutdownInProgress function;
  std::memcpy(&function, &address, sizeof function);
  shutdown_in_progress = function;
}

void fail(ov_rc error, const char* text) {
  symbols.failure.error = error;
  ov_str_ncpy(symbols.failure.text, text, sizeof symbols.failure.text);
}

template <typename Function>
bool look_up(const char* name, Function* out) {
  void* address = nullptr;
  if (ov_library_symbol(&symbols.library, name, &address) != 0) return false;
  std::memcpy(out, &address, sizeof address);
  return true;
}

void open_tools_library() {
  char programs[OV_PATH_SIZE];
  if (ov_process_getenv("ProgramFiles", programs, sizeof programs) != 0) return;
  for (const char* name : kToolsLibraries) {
    char path[OV_PATH_SIZE];
    if (ov_file_append_path(programs, name, path, sizeof path) != 0) continue;
    if (ov_library_open(&symbols.library, path) == 0) return;
  }
}

bool open_library() {
  char program[OV_PATH_SIZE];
  if (ov_path_executable_path(program, sizeof program) <= 0) {
    symbols.failure.error = OV_EINTERNAL1;
    ov_err("ovbtrace: Error finding executable path.");
    return false;
  }
  if (ov_str_ncat(program, kLocalSuffix, sizeof program) != 0) {
    fail(OV_EINTERNAL1, "Error appending paths.");
    return false;
  }
  if (!ov_path_exists(program)) open_tools_library();
  if (!ov_library_is_open(&symbols.library)) ov_library_open(&symbols.library, kLibraryName);
  if (ov_library_is_open(&symbols.library)) return true;
  fail(kNoLibrary, "Could not load dbghelp.dll");
  return false;
}

// The library's own state first, then the pointers into it. A state that somebody else in the
// process has made stays.
void close_library() {
  if (ov_library_is_open(&symbols.library)) {
    decltype(&SymCleanup) clean_up = nullptr;
    if (look_up("SymCleanup", &clean_up) && symbols.initialized) clean_up(symbols.process);
    ov_library_close(&symbols.library);
  }
  symbols.initialized = false;
  symbols.initialize = nullptr;
  symbols.functionTable = nullptr;
  symbols.moduleBase = nullptr;
  symbols.undecorate = nullptr;
  symbols.fromAddress = nullptr;
}

// A call of the library that it may lack.
template <typename Function>
Function optional_call(const char* name) {
  const FARPROC address = GetProcAddress(static_cast<HMODULE>(symbols.library), name);
  Function function;
  std::memcpy(&function, &address, sizeof function);
  return function;
}

// Has the library take up the modules of the process, those loaded since the set-up of the log
// included. That takes memory and time, and hardly any process ever asks for a name; so it waits
// until one does. The library reads the names of a module when they are first asked for: those of
// all modules would take seconds. This setting is the process's, so it goes back to what it was.
void take_up_modules() {
  const auto get = optional_call<decltype(&SymGetOptions)>("SymGetOptions");
  const auto set = optional_call<decltype(&SymSetOptions)>("SymSetOptions");
  const DWORD before = get != nullptr && set != nullptr ? get() : 0;
  if (get != nullptr && set != nullptr) set(before | SYMOPT_DEFERRED_LOADS);
  symbols.initialized = symbols.initialize(symbols.process, nullptr, TRUE) != FALSE;
  if (get != nullptr && set != nullptr) set(before);
}

void open_locked() {
  symbols = {};
  symbols.process = GetCurrentProcess();
  if (!open_library()) return;
  const bool found = look_up("SymInitialize", &symbols.initialize) &&
                     look_up("SymFunctionTableAccess64", &symbols.functionTable) &&
                     look_up("SymGetModuleBase64", &symbols.moduleBase) &&
                     look_up("UnDecorateSymbolName", &symbols.undecorate) &&
                     look_up("SymGetSymFromAddr64", &symbols.fromAddress);
  if (found) return;
  close_library();
  fail(OV_EINTERNAL1, "Could not load symbols from dbghelp.dll");
}

// What the library knows; without it, nothing.
void find_locked(void* address, Symbol* symbol) {
  if (symbols.fromAddress == nullptr || symbols.undecorate == nullptr) return;
  if (!std::exchange(symbols.asked, true)) take_up_modules();
  SymbolRecord record = {};
  record.symbol.SizeOfStruct = sizeof record.symbol;
  record.symbol.MaxNameLength = sizeof symbol->name;
  DWORD64 displacement = 0;
  symbols.fromAddress(symbols.process, reinterpret_cast<DWORD64>(address), &displacement,
                      &record.symbol);
  symbols.undecorate(record.symbol.Name, symbol->name, sizeof symbol->name, 0);
  symbol->name[sizeof symbol->name - 1] = 0;
  symbol->displacement = static_cast<int64_t>(displacement);
}

}  // namespace

bool process_ends() {
  const ShutdownInProgress ask = shutdown_in_progress;
  return ask != nullptr && ask() != FALSE;
}

void open_symbols() {
  look_up_shutdown();
  if (!lock.acquire(kPatience)) return;
  open_locked();
  lock.release();
}

// At the end of the process the library stays: on Windows, those that were loaded later have had
// their end before us.
void close_symbols() {
  if (process_ends() || !lock.acquire(kPatience)) return;
  close_library();
  lock.release();
}

const SymbolFailure& symbol_failure() {
  return symbols.failure;
}

bool find_symbol(void* address, uint32_t milliseconds, Symbol* symbol) {
  if (process_ends()) return true;
  if (!lock.acquire(milliseconds)) return false;
  find_locked(address, symbol);
  lock.release();
  return true;
}

}  // namespace ov
