#include "service/locations.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "tests/support/fake_platform.h"
#include "tests/support/log_recorder.h"
#include "tests/support/service_files.h"
#include "threads/system_exception.h"

namespace Vantrel::Web {
namespace {

constexpr char kNoSystemInstallation[] = "LOG System installation directory not found in registry";
constexpr char kNoUserInstallation[] = "LOG User installation directory not found in registry";
constexpr char kNoExecutable[] = "ERR Failed to determine Orvane Vantrel executable path";

class LocationsTest : public testing::Test {
 protected:
  // Puts an executable below a new installation directory and gives the directory's name as the
  // registry would, with its trailing separator.
  std::string install(const std::string& name) {
    const std::string directory = files_.appDataDirectory() + "/" + name + "/";
    std::filesystem::create_directories(directory + "bin");
    std::ofstream(directory + "bin/orvanevantrel.exe") << "program";
    return directory;
  }

  const TestSupport::ServiceFiles files_;
  TestSupport::FakePlatform platform_;
  TestSupport::LogRecorder log_;
};

TEST_F(LocationsTest, BaseDirectoryLiesBelowTheApplicationData) {
  EXPECT_EQ(pluginAppDataDir(), files_.appDataDirectory());
  EXPECT_EQ(pluginBaseDir(), files_.appDataDirectory() + "\\Orvane\\Orvane Vantrel");
  EXPECT_EQ(pluginBaseDir(), files_.appDataDirectory() + "\\Orvane\\Orvane Vantrel");
  EXPECT_EQ(vantrelUrlFile(),
            files_.appDataDirectory() + "\\Orvane\\Orvane Vantrel/var/run/http.uri");
}

TEST_F(LocationsTest, SystemInstallationWinsOverTheUsers) {
  platform_.systemInstallation = install("system");
  platform_.userInstallation = install("user");
  EXPECT_EQ(vantrelExecutablePath(), *platform_.systemInstallation + "bin/orvanevantrel.exe");
  EXPECT_EQ(log_.text(), "LOG Orvane Vantrel executable path: " + *platform_.systemInstallation +
                             "bin/orvanevantrel.exe\n");
}

TEST_F(LocationsTest, UserInstallationServesWithoutASystemOne) {
  platform_.userInstallation = install("user");
  EXPECT_EQ(vantrelExecutablePath(), *platform_.userInstallation + "bin/orvanevantrel.exe");
  EXPECT_EQ(log_.lines()[0], kNoSystemInstallation);
  EXPECT_EQ(log_.count(kNoUserInstallation), 0U);
}

TEST_F(LocationsTest, UserInstallationServesWhenTheSystemOneHasNoExecutable) {
  platform_.systemInstallation = files_.appDataDirectory() + "/nothing/";
  platform_.userInstallation = install("user");
  EXPECT_EQ(vantrelExecutablePath(), *platform_.userInstallation + "bin/orvanevantrel.exe");
}

TEST_F(LocationsTest, InstallationWithoutTrailingSeparatorIsNotFound) {
  std::string directory = install("system");
  directory.pop_back();
  platform_.systemInstallation = directory;
  EXPECT_EQ(vantrelExecutablePath(), "");
  EXPECT_EQ(log_.count(kNoExecutable), 1U);
}

TEST_F(LocationsTest, NoInstallationIsSearchedForAgainAtTheNextCall) {
  EXPECT_EQ(vantrelExecutablePath(), "");
  EXPECT_EQ(log_.lines(),
            (std::vector<std::string>{kNoSystemInstallation, kNoUserInstallation, kNoExecutable}));
  platform_.userInstallation = install("user");
  EXPECT_NE(vantrelExecutablePath(), "");
}

TEST_F(LocationsTest, FoundExecutableIsNotSearchedForAgain) {
  platform_.userInstallation = install("user");
  const std::string path = vantrelExecutablePath();
  platform_.userInstallation.reset();
  log_.clear();
  EXPECT_EQ(vantrelExecutablePath(), path);
  EXPECT_EQ(log_.text(), "");
}

TEST_F(LocationsTest, InstallationTooLongForThePathIsNotFound) {
  platform_.systemInstallation = std::string(515, 'd') + "/";
  EXPECT_EQ(vantrelExecutablePath(), "");
  EXPECT_EQ(log_.count(kNoExecutable), 1U);
}

TEST_F(LocationsTest, InstallationTooLongForItsBufferCountsAsNone) {
  platform_.systemInstallation = std::string(519, 'd');
  platform_.userInstallation = install("user");
  EXPECT_EQ(vantrelExecutablePath(), *platform_.userInstallation + "bin/orvanevantrel.exe");
  EXPECT_EQ(log_.count(kNoSystemInstallation), 1U);
}

TEST_F(LocationsTest, ProcessIdIsTheNumberInItsFile) {
  EXPECT_EQ(vantrelProcessId(), 0);
  files_.writeProcessId("");
  EXPECT_EQ(vantrelProcessId(), 0);
  files_.writeProcessId("4711\r\n");
  EXPECT_EQ(vantrelProcessId(), 4711);
  files_.writeProcessId("12");
  EXPECT_EQ(vantrelProcessId(), 12);
}

TEST_F(LocationsTest, KeyIsAllBehindTheFirstLine) {
  files_.writeUrl("http://127.0.0.1:1\nkey\n");
  EXPECT_EQ(vantrelUuid(), "key\n");
  EXPECT_EQ(log_.lines(),
            (std::vector<std::string>{"DBG Reading Orvane Vantrel UUID from " + files_.urlFile(),
                                      "DBG Vantrel UUID: key\n"}));
  files_.writeUrl("http://127.0.0.1:1\nsecond\r\nthird\r\n");
  EXPECT_EQ(vantrelUuid(), "second\r\nthird\r\n");
  files_.writeUrl("http://127.0.0.1:1\n");
  EXPECT_EQ(vantrelUuid(), "");
}

TEST_F(LocationsTest, FileOfOneUnendedLineIsTheKeyToo) {
  files_.writeUrl("http://127.0.0.1:1");
  EXPECT_EQ(vantrelUuid(), "http://127.0.0.1:1");
}

TEST_F(LocationsTest, MissingOrEmptyKeyFileIsAnEmptyKey) {
  const std::string failure = "DBG Failed to read Orvane UUID from " + files_.urlFile();
  EXPECT_EQ(vantrelUuid(), "");
  EXPECT_EQ(log_.count(failure), 1U);
  files_.writeUrl("");
  EXPECT_EQ(vantrelUuid(), "");
  EXPECT_EQ(log_.count(failure), 2U);
}

// Where the application data cannot be found.
class NoLocationTest : public testing::Test {
 protected:
  NoLocationTest() {
    TestSupport::resetServiceCaches();
    platform_.appDataResult = -2147024893;
  }

  TestSupport::FakePlatform platform_;
  TestSupport::LogRecorder log_;
};

constexpr char kFailure[] = "Failed to determine application data directory (-2147024893)";

TEST_F(NoLocationTest, DirectoriesThrowWithTheReportedText) {
  try {
    pluginAppDataDir();
    FAIL();
  } catch (const SystemException& error) {
    EXPECT_STREQ(error.what(), kFailure);
  }
  EXPECT_THROW(pluginBaseDir(), SystemException);
  EXPECT_THROW(vantrelProcessId(), SystemException);
  EXPECT_EQ(log_.lines("ERR"), (std::vector<std::string>{kFailure, kFailure, kFailure}));
}

TEST_F(NoLocationTest, FirstSuccessIsLoggedAndKept) {
  EXPECT_THROW(pluginAppDataDir(), SystemException);
  log_.clear();
  platform_.appDataResult = 0;
  platform_.appDataDirectory = "C:\\Users\\%s";
  EXPECT_EQ(pluginAppDataDir(), "C:\\Users\\%s");
  EXPECT_EQ(log_.text(), "LOG Application data directory: C:\\Users\\%s\n");
  platform_.appDataResult = -1;
  EXPECT_EQ(pluginBaseDir(), "C:\\Users\\%s\\Orvane\\Orvane Vantrel");
  TestSupport::resetServiceCaches();
}

TEST_F(NoLocationTest, APathBelowTheRootOfADriveHasNoDoubledSeparator) {
  platform_.appDataResult = 0;
  for (const char* const root : {"D:\\", "D:/"}) {
    platform_.appDataDirectory = root;
    EXPECT_EQ(pluginAppDataDir(), root);
    EXPECT_EQ(vantrelUrlFile(), "D:\\Orvane\\Orvane Vantrel/var/run/http.uri");
    TestSupport::resetServiceCaches();
  }
}

TEST_F(NoLocationTest, KeyIsEmptyAndTheReasonReported) {
  EXPECT_EQ(vantrelUuid(), "");
  EXPECT_EQ(
      log_.lines("ERR"),
      (std::vector<std::string>{kFailure, std::string("Failed to get Vantrel UUID: ") + kFailure}));
}

TEST_F(NoLocationTest, AddressIsUnknownAndTheReasonReported) {
  EXPECT_EQ(vantrelUrl().url, "");
  EXPECT_EQ(
      log_.lines("ERR"),
      (std::vector<std::string>{kFailure, std::string("Failed to get Vantrel URL: ") + kFailure}));
}

}  // namespace
}  // namespace Vantrel::Web
