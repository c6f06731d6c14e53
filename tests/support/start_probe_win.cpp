// A program for tests to start: writes its command text into a file beside itself, waits while
// there is a file that tells it to, and exits with 7.
#include <windows.h>

#include <string>

int main() {
  wchar_t path[4096] = L"";
  GetModuleFileNameW(nullptr, path, 4096);
  const std::wstring own(path);
  const std::wstring command(GetCommandLineW());
  char text[4096] = "";
  const int length =
      WideCharToMultiByte(CP_UTF8, 0, command.data(), static_cast<int>(command.size()), text,
                          sizeof text, nullptr, nullptr);
  const HANDLE file =
      CreateFileW((own + L".txt").c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, 0, nullptr);
  DWORD written = 0;
  WriteFile(file, text, static_cast<DWORD>(length), &written, nullptr);
  CloseHandle(file);
  while (GetFileAttributesW((own + L".wait").c_str()) != INVALID_FILE_ATTRIBUTES) Sleep(5);
  return 7;
}
