#include "tests/host/host_fixture.h"

#include "tests/host/process_state.h"

namespace Vantrel::Web::Host {

void HostTest::open(const std::wstring& library) {
  host_ = std::make_unique<CountingHost>(programDirectory() + library);
}

void HostTest::start(const std::wstring& library) {
  open(library);
  ASSERT_EQ(host().initialize(), NPERR_NO_ERROR);
  ASSERT_EQ(host().getEntryPoints(), NPERR_NO_ERROR);
}

std::vector<std::string> HostTest::finish() {
  std::vector<std::string> faults = host().finish();
  host_.reset();
  return faults;
}

void HostTest::TearDown() {
  if (host_ == nullptr) return;
  for (const std::string& fault : finish()) ADD_FAILURE() << fault;
}

}  // namespace Vantrel::Web::Host
