// Base of the test cases that use a counting host: each ends with the host's books closed and no
// fault left. A case that expects faults takes them itself before that.
#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "tests/host/counting_host.h"
#include "tests/host/instance.h"

namespace Vantrel::Web::Host {

class HostTest : public testing::Test {
 protected:
  // Loads the library at a path below the directory of the build tree's root.
  void open(const std::wstring& library);
  // Loaded, initialised and with its table asked for.
  void start(const std::wstring& library);
  void TearDown() override;

  CountingHost& host() { return *host_; }
  // Closes the books and returns the faults; the test's end then finds none.
  std::vector<std::string> finish();

 private:
  std::unique_ptr<CountingHost> host_;
};

}  // namespace Vantrel::Web::Host
