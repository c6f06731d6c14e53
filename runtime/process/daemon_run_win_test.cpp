// This program as a service that the system's service manager starts, controls and sees stop.
#include <windows.h>

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <string_view>

#include "runtime/ov_log.h"
#include "runtime/ov_process.h"
#include "tests/support/runtime/temp_folder.h"

namespace {

using ov::TempFolder;

constexpr DWORD kPollMilliseconds = 10;

struct CloseService {
  void operator()(SC_HANDLE handle) const { CloseServiceHandle(handle); }
};
using Service = std::unique_ptr<std::remove_pointer_t<SC_HANDLE>, CloseService>;

std::string content(const std::string& path) {
  return std::filesystem::exists(TempFolder::native(path)) ? TempFolder::read(path) : "";
}

// The service: tells that it serves, until its log tells of the stop.
int32_t serve(int32_t, char** argv) {
  const std::string folder = argv[2];
  TempFolder::write(folder + "/serving", argv[3]);
  while (content(folder + "/log").find("SERVICE_STOP_PENDING") == std::string::npos) {
    Sleep(kPollMilliseconds);
    ov_log_flush();
  }
  TempFolder::write(folder + "/served", "to the end");
  return 0;
}

std::string program() {
  wchar_t path[MAX_PATH];
  GetModuleFileNameW(nullptr, path, MAX_PATH);
  const std::u8string text = std::filesystem::path(path).u8string();
  return std::string(text.begin(), text.end());
}

DWORD stateOf(const Service& service) {
  SERVICE_STATUS status = {};
  EXPECT_TRUE(QueryServiceStatus(service.get(), &status));
  return status.dwCurrentState;
}

TEST(ServiceRunTest, StartsAndStops) {
  const TempFolder folder;
  const std::string name = "ov-test-" + std::to_string(GetCurrentProcessId());
  const std::string command = "\"" + program() + "\" --serve \"" + folder.path() + "\" " + name;
  const Service manager(OpenSCManagerA(nullptr, nullptr, SC_MANAGER_ALL_ACCESS));
  ASSERT_NE(nullptr, manager);
  const Service service(CreateServiceA(manager.get(), name.c_str(), name.c_str(),
                                       SERVICE_ALL_ACCESS, SERVICE_WIN32_OWN_PROCESS,
                                       SERVICE_DEMAND_START, SERVICE_ERROR_NORMAL, command.c_str(),
                                       nullptr, nullptr, nullptr, nullptr, nullptr));
  ASSERT_NE(nullptr, service);
  EXPECT_TRUE(StartServiceA(service.get(), 0, nullptr));
  while (content(folder.path("serving")).empty()) Sleep(kPollMilliseconds);
  EXPECT_EQ(name, content(folder.path("serving")));
  EXPECT_EQ(DWORD{SERVICE_RUNNING}, stateOf(service));
  SERVICE_STATUS status = {};
  EXPECT_TRUE(ControlService(service.get(), SERVICE_CONTROL_STOP, &status));
  while (stateOf(service) != SERVICE_STOPPED) Sleep(kPollMilliseconds);
  EXPECT_TRUE(DeleteService(service.get()));
  EXPECT_EQ("to the end", content(folder.path("served")));
  const std::string log = content(folder.path("log"));
  for (const char* text : {"Service main called", "Process handler called (1)",
                           "received SERVICE_CONTROL_STOP setting SERVICE_STOP_PENDING"}) {
    EXPECT_NE(std::string::npos, log.find(text)) << log;
  }
}

}  // namespace

int main(int argc, char** argv) {
  if (argc == 4 && std::string_view(argv[1]) == "--serve") {
    const std::string log = std::string(argv[2]) + "/log";
    ov_log_init(2, log.c_str());
    return ov_process_daemonize(serve, argc, argv, argv[3]);
  }
  ::testing::InitGoogleTest(&argc, argv);
  return RUN_ALL_TESTS();
}
