// What the check of a body with 100,000 approved paths costs / yajl's own tree of the same text,
// made and freed: paths in the order in which they were approved, and shuffled. Links the core: a
// page cannot approve paths by itself, so through the library there is nothing to accept.
// usage: check_bench

#include <yajl/yajl_tree.h>

#include <algorithm>
#include <random>
#include <string>
#include <vector>

#include "bench/bench.h"
#include "core/approved_files.h"
#include "core/request_check.h"

namespace Vantrel::Web::Bench {
namespace {

constexpr int kPaths = 100000;
constexpr int kTurns = 15;

std::vector<std::string> approvedFiles() {
  std::vector<std::string> files;
  for (int i = 0; i < kPaths; ++i) {
    std::string number = std::to_string(i);
    number.insert(0, 6 - number.size(), '0');
    files.push_back("C:/Users/somebody/Documents/Projects/archive/camera/take_" + number +
                    "/frame_" + number + ".dpx");
  }
  addToApprovedFileList(files);
  return files;
}

std::string bodyWith(const std::vector<std::string>& files) {
  std::string paths;
  for (const std::string& file : files) {
    if (!paths.empty()) paths += ',';
    paths.append("{\"source\":\"").append(file).append("\"}");
  }
  return R"({"transfer_specs":[{"transfer_spec":{"direction":"send","paths":[)" + paths + "]}}]}";
}

void checkRow(const char* name, const std::string& body, const Aim& aim) {
  const DestinationConsent consent;
  const auto check = [&] {
    std::string error;
    const bool passed = checkRequestBody(
        body, [](const std::string&) { return std::string(); }, consent, error);
    require(passed, "an accepted body");
  };
  const auto parse = [&] {
    char error[256];
    const yajl_val tree = yajl_tree_parse(body.c_str(), error, sizeof error);
    require(tree != nullptr, "a tree");
    yajl_tree_free(tree);
  };
  printRow(name, ratio(kTurns, check, parse), aim);
}

}  // namespace
}  // namespace Vantrel::Web::Bench

int main() {
  using namespace Vantrel::Web::Bench;
  return runRows([] {
    std::vector<std::string> files = approvedFiles();
    checkRow("check of 100,000 paths, sorted / yajl tree", bodyWith(files), Aim::atMost(1.5));
    // The same order in every run. NOLINTNEXTLINE(cert-msc32-c,cert-msc51-cpp)
    std::shuffle(files.begin(), files.end(), std::mt19937(1));
    checkRow("check of 100,000 paths, shuffled / yajl tree", bodyWith(files), Aim::atMost(2));
  });
}
