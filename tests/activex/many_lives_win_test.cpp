// Controls in several apartments at once, and a thousand lives of a control: each is made, loaded,
// opens a session, sends a request, hears of transfers and is released. Afterwards the process
// holds what it held before.
#include <windows.h>

#include <gtest/gtest.h>

#include <array>
#include <memory>
#include <string>
#include <vector>

#include "browsers/activex/identifiers.h"
#include "tests/activex/control_fixture.h"
#include "tests/host/process_growth.h"
#include "tests/host/process_state.h"
#include "tests/support/test_socket.h"

namespace Vantrel::Web::ActiveX {
namespace {

using TestSupport::Script;
using TestSupport::ScriptedServer;

// More than a batch of lives makes.
constexpr int kMostConnections = 2000;
constexpr char kActivityPath[] = "/v5/vantrel/transfers/activity";

// One apartment with a container of its own, which lets controls live one after the other. The
// threads are the platform's own: small ones of the language's library may spin at their end.
class Apartment {
 public:
  Apartment(Container::ControlLibrary& library, int lives)
      : library_(library),
        lives_(lives),
        thread_(CreateThread(nullptr, 0, &run, this, 0, nullptr)) {}
  ~Apartment() {
    WaitForSingleObject(thread_, INFINITE);
    CloseHandle(thread_);
    for (const std::string& fault : faults_) ADD_FAILURE() << fault;
  }
  Apartment(const Apartment&) = delete;
  Apartment& operator=(const Apartment&) = delete;

 private:
  static DWORD WINAPI run(void* self) {
    static_cast<Apartment*>(self)->liveAll();
    return 0;
  }

  void liveAll() {
    for (int i = 0; i < lives_ && faults_.empty(); ++i) {
      Container::CountingContainer container(library_);
      live(container);
      for (std::string& fault : container.finish()) faults_.push_back(std::move(fault));
    }
  }

  void live(Container::CountingContainer& container) {
    auto& handler = container.book.make<PageFunction>("handler");
    auto& function = container.book.make<PageFunction>("function");
    Control control(container, kControlClassId, {.parameters = {{"drop-mode", "callback"}}});
    control.set("eventHandler", Variant::of(&handler));
    if (control.call("initSession", {Variant::text("^some.host"), Variant::text("")})
            .value.asText() != "{\"app_id\":\"^some.host\"}")
      faults_.emplace_back("the session was refused");
    control.call("vantrelHttpRequestAsync", {Variant::text("POST"), Variant::text("/path"),
                                             Variant::text("{}"), Variant::of(&function)});
    if (!container.pumpUntil([&] { return !function.calls.empty() && !handler.calls.empty(); }))
      faults_.emplace_back("an answer or an event did not come");
  }

  Container::ControlLibrary& library_;
  const int lives_;
  std::vector<std::string> faults_;
  HANDLE thread_;
};

// Wine tells 0.
DWORD windowCount() {
  return GetGuiResources(GetCurrentProcess(), GR_USEROBJECTS);
}

class ManyLivesTest : public testing::Test {
 protected:
  // So many lives in each of so many apartments at once, with a library of their own.
  void liveTogether(int apartments, int lives) {
    ScriptedServer server;
    server.always(kActivityPath, Script::reply("{\"iteration_token\":\"t\",\"transfers\":[{}]}"));
    profile_.writeServiceUrl(server.url() + "\nthe-key");
    Container::ControlLibrary library(Host::programDirectory() + kControlLibrary);
    {
      std::vector<std::unique_ptr<Apartment>> all;
      for (int i = 0; i < apartments; ++i)
        all.push_back(std::make_unique<Apartment>(library, lives));
    }
    Host::Faults faults;
    library.finish(faults);
    for (const std::string& fault : faults.take()) ADD_FAILURE() << fault;
  }

  // Every connection of the test's server is a thread until the server's end, and the language's
  // library keeps a block for each that ever was at one time: here as many as there may be later.
  void askServer(int connections) {
    const ScriptedServer server;
    for (int i = 0; i < connections; ++i) {
      const auto socket = TestSupport::TestSocket::connectLoopback(server.port());
      socket.sendAll("GET / HTTP/1.1\r\nContent-Length: 0\r\n\r\n");
      std::array<char, 256> reply{};
      while (socket.receive(reply.data(), reply.size()) > 0) {
      }
    }
  }

  const Host::ScratchProfile profile_;
};

TEST_F(ManyLivesTest, TwoContainersAtOnceAreEachOnTheirOwn) {
  liveTogether(2, 3);
}

TEST_F(ManyLivesTest, AThousandLivesLeaveNothing) {
  constexpr int kBatches = 5;
  constexpr int kApartments = 10;
  constexpr int kLives = 10;
  askServer(kMostConnections);
  const auto lives = [this] {
    for (int i = 0; i < kBatches; ++i) liveTogether(kApartments, kLives);
  };
  lives();
  const size_t windows = windowCount();
  EXPECT_EQ(Host::growthOver(lives, {}), "");
  EXPECT_EQ(windowCount(), windows);
}

}  // namespace
}  // namespace Vantrel::Web::ActiveX
