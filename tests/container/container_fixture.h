// Base of the test cases that use a counting container: each ends with the book closed, the library
// unloaded and no fault left. A case that expects faults takes them itself before that.
#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "tests/container/control_library_win.h"
#include "tests/container/control_win.h"
#include "tests/container/counting_container_win.h"

namespace Vantrel::Web::Container {

class ContainerTest : public testing::Test {
 protected:
  // Loads the library at a path below the test program's directory.
  void open(const std::wstring& library);
  void TearDown() override;

  CountingContainer& container() { return *container_; }
  ControlLibrary& library() { return *library_; }
  // Closes everything and returns the faults; the test's end then finds none.
  std::vector<std::string> finish();

 private:
  std::unique_ptr<ControlLibrary> library_;
  std::unique_ptr<CountingContainer> container_;
};

}  // namespace Vantrel::Web::Container
