#include "bench/child_win.h"

#include <windows.h>

#include "bench/bench.h"

namespace Vantrel::Web::Bench {
namespace {

struct Pipe {
  HANDLE read = nullptr;
  HANDLE write = nullptr;
};

Pipe makePipe() {
  SECURITY_ATTRIBUTES inherited = {sizeof inherited, nullptr, TRUE};
  Pipe pipe;
  require(CreatePipe(&pipe.read, &pipe.write, &inherited, 0) != FALSE, "CreatePipe");
  return pipe;
}

// This end stays ours alone.
HANDLE keepHere(HANDLE end) {
  SetHandleInformation(end, HANDLE_FLAG_INHERIT, 0);
  return end;
}

std::string directoryOfProgram() {
  char path[MAX_PATH];
  const DWORD length = GetModuleFileNameA(nullptr, path, MAX_PATH);
  const std::string text(path, length);
  return text.substr(0, text.rfind('\\') + 1);
}

}  // namespace

Child::Child(const std::string& command) {
  const Pipe input = makePipe();
  const Pipe output = makePipe();
  input_ = keepHere(input.write);
  output_ = keepHere(output.read);
  STARTUPINFOA startup{};
  startup.cb = sizeof startup;
  startup.dwFlags = STARTF_USESTDHANDLES;
  startup.hStdInput = input.read;
  startup.hStdOutput = output.write;
  startup.hStdError = GetStdHandle(STD_ERROR_HANDLE);
  PROCESS_INFORMATION process{};
  std::string line = directoryOfProgram() + command;
  require(CreateProcessA(nullptr, line.data(), nullptr, nullptr, TRUE, CREATE_NO_WINDOW, nullptr,
                         nullptr, &startup, &process) != FALSE,
          command.c_str());
  CloseHandle(process.hThread);
  CloseHandle(input.read);
  CloseHandle(output.write);
  process_ = process.hProcess;
}

Child::~Child() {
  CloseHandle(input_);
  WaitForSingleObject(process_, INFINITE);
  CloseHandle(output_);
  CloseHandle(process_);
}

std::string Child::readLine() {
  std::string line;
  for (;;) {
    char byte = 0;
    DWORD count = 0;
    require(ReadFile(output_, &byte, 1, &count, nullptr) != FALSE && count == 1,
            "a line of the other program");
    if (byte == '\n') return line;
    if (byte != '\r') line += byte;
  }
}

Server::Server()
    : child_("bench_server.exe"), port_(static_cast<uint16_t>(std::stoul(child_.readLine()))) {}

std::string uriText(uint16_t port) {
  return "http://127.0.0.1:" + std::to_string(port) + "\n" + kKey;
}

}  // namespace Vantrel::Web::Bench
