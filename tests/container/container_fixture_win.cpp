#include "tests/container/container_fixture.h"
#include "tests/host/process_state.h"

namespace Vantrel::Web::Container {

void ContainerTest::open(const std::wstring& path) {
  library_ = std::make_unique<ControlLibrary>(Host::programDirectory() + path);
  container_ = std::make_unique<CountingContainer>(*library_);
}

std::vector<std::string> ContainerTest::finish() {
  std::vector<std::string> faults = container_->finish();
  container_.reset();
  Host::Faults left;
  library_->finish(left);
  library_.reset();
  for (std::string& fault : left.take()) faults.push_back(std::move(fault));
  return faults;
}

void ContainerTest::TearDown() {
  if (container_ == nullptr) return;
  for (const std::string& fault : finish()) ADD_FAILURE() << fault;
}

}  // namespace Vantrel::Web::Container
