// The stand-in for the desktop client: reads its settings, listens, and tells where.
#include <chrono>
#include <cstdio>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <thread>

#include "tools/client/http_server_win.h"
#include "tools/client/paths.h"
#include "tools/client/platform_win.h"
#include "tools/client/random_text.h"
#include "tools/client/run_files.h"

namespace Vantrel::StandIn {
namespace {

namespace fs = std::filesystem;

constexpr const wchar_t* kConfVariable = L"ORVANE_CLIENT_CONF";
constexpr const char* kConfName = "orvanevantrel.conf";
constexpr size_t kKeyDigits = 32;
constexpr int kBadKnobs = 2;
constexpr int kFailed = 3;

struct BadKnobs : std::runtime_error {
  using std::runtime_error::runtime_error;
};

void check(const std::string& fault) {
  if (!fault.empty()) throw BadKnobs(fault);
}

// The variable's file must be there; the one beside the program need not.
void readConfiguration(Knobs& knobs) {
  std::string named = environmentText(kConfVariable);
  fs::path file = named.empty() ? ownProgram().parent_path() / kConfName : pathOf(named);
  std::ifstream in(file, std::ios::binary);
  if (!in && named.empty()) return;
  if (!in) throw BadKnobs("cannot read " + named);
  std::string text{std::istreambuf_iterator<char>(in), {}};
  check(readKnobs(knobs, text, textOf(fs::absolute(file).parent_path())));
}

Knobs readSettings() {
  Knobs knobs;
  readConfiguration(knobs);
  for (const std::string& argument : commandLineArguments()) check(readArgument(knobs, argument));
  return knobs;
}

fs::path orDefault(const std::string& told, const fs::path& usual) {
  return told.empty() ? usual : fs::absolute(pathOf(told));
}

void serve(const Knobs& knobs) {
  WinsockSession winsock;
  RunFiles files(orDefault(knobs.dataDir, defaultDataDir()), knobs, ownProcessId());
  Service service(knobs, {orDefault(knobs.remoteRoot, ownProgram().parent_path() / "remote"),
                          orDefault(knobs.downloadRoot, defaultDownloadRoot())});
  auto announce = [&](std::uint16_t port) {
    std::string key = randomHex(kKeyDigits);
    service.setKey(RunFiles::keyOfReader(RunFiles::uriText(port, key, knobs.uriFile)));
    files.write(port, key);
  };
  {
    HttpServer server(knobs, service, announce);
    server.run();
  }
  if (!knobs.keepFiles) files.remove();
}

int runClient() {
  Knobs knobs = readSettings();
  std::this_thread::sleep_for(std::chrono::milliseconds(knobs.slowStartMs));
  if (knobs.exitAtStart >= 0) return static_cast<int>(knobs.exitAtStart);
  serve(knobs);
  return static_cast<int>(knobs.exitCode);
}

}  // namespace
}  // namespace Vantrel::StandIn

int main() {
  try {
    return Vantrel::StandIn::runClient();
  } catch (const Vantrel::StandIn::BadKnobs& fault) {
    static_cast<void>(std::fprintf(stderr, "orvanevantrel: %s\n", fault.what()));
    return Vantrel::StandIn::kBadKnobs;
  } catch (const std::exception& fault) {
    static_cast<void>(std::fprintf(stderr, "orvanevantrel: %s\n", fault.what()));
    return Vantrel::StandIn::kFailed;
  }
}
