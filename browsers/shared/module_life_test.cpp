// The module's start and end, over a log that only notes what is done to it.
#include "browsers/shared/module_life.h"

#include <gtest/gtest.h>

#include "browsers/shared/plugin_log.h"
#include "threads/system_exception.h"

namespace {

int opened = 0;
int closed = 0;
bool logFails = false;

}  // namespace

namespace Vantrel::Web {

// In place of the log of the library.
void openPluginLog() {
  ++opened;
  if (logFails) throw SystemException("no place for the log");
}
void closePluginLog() {
  ++closed;
}

namespace {

class ModuleLifeTest : public testing::Test {
 protected:
  ModuleLifeTest() {
    opened = 0;
    closed = 0;
    logFails = false;
  }
};

TEST_F(ModuleLifeTest, TheLogIsOpenFromTheFirstStartToTheLastEnd) {
  startModule();
  startModule();  // the other face
  EXPECT_EQ(opened, 1);
  endModule();
  EXPECT_EQ(closed, 0);
  endModule();
  EXPECT_EQ(closed, 1);
}

TEST_F(ModuleLifeTest, ItStartsAgainAfterItsEnd) {
  for (int round = 1; round <= 3; ++round) {
    startModule();
    endModule();
    EXPECT_EQ(opened, round);
    EXPECT_EQ(closed, round);
  }
}

TEST_F(ModuleLifeTest, AnEndWithoutAStartDoesNothing) {
  endModule();
  EXPECT_EQ(closed, 0);
  startModule();
  EXPECT_EQ(opened, 1);
  endModule();
}

TEST_F(ModuleLifeTest, WithoutALogItStartsAndEndsAllTheSame) {
  logFails = true;
  startModule();
  endModule();
  EXPECT_EQ(opened, 1);
  EXPECT_EQ(closed, 1);
}

}  // namespace
}  // namespace Vantrel::Web
