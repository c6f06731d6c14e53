// What one exchange with the desktop client costs:
// - HttpRequest::invoke / bare sockets that send and receive the same bytes (links the service);
// - the script call vantrelHttpRequest, in the library / a bare reading of the key's file and bare
//   sockets for the question whether the client lives and for the request;
// - the same script call / the platform's own HTTP client for both.
// The client is a server in a process of its own, the same for all sides.
// usage: exchange_bench

#include <winsock2.h>
#include <windows.h>

#include <winhttp.h>

#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "bench/bench.h"
#include "bench/child_win.h"
#include "bench/plain_browser_win.h"
#include "service/http_request.h"
#include "tests/host/scratch_profile.h"
#include "tests/support/test_socket.h"

namespace Vantrel::Web::Bench {
namespace {

using TestSupport::TestSocket;

constexpr int kTurns = 401;
constexpr char kMethod[] = "POST";
constexpr char kPath[] = "/v5/vantrel/transfers/start";
constexpr char kBody[] = R"({"a": [1, 2], "orvane_vantrel_settings": {"app_id": "bench"}})";
constexpr char kReply[] = "HTTP/1.1 200 OK\r\nContent-Length: 2\r\nConnection: close\r\n\r\n{}";
constexpr size_t kBufferSize = 4096;
constexpr size_t kKeyFileSize = 1024;

// What a piece of work sends to the server whose port it is given, connection by connection.
template <class Work>
std::vector<std::string> requestsOf(size_t connections, Work work) {
  const TestSocket listener = TestSocket::listenLoopback(0);
  std::vector<std::string> requests;
  std::thread server([&] {
    while (requests.size() < connections) {
      const TestSocket connection = listener.accept();
      // The whole of such a small request comes at once.
      char buffer[kBufferSize];
      const long count = connection.receive(buffer, sizeof buffer);
      requests.emplace_back(buffer, static_cast<size_t>(count > 0 ? count : 0));
      connection.sendAll(kReply);
      connection.finishSending();
      static_cast<void>(connection.receive(buffer, sizeof buffer));
    }
  });
  work(listener.localPort());
  server.join();
  for (const std::string& request : requests) {
    require(request.find("\r\n\r\n") != std::string::npos, "a whole request");
  }
  return requests;
}

// Sends the bytes and reads the reply to its end, whose place the caller knows.
void bareExchange(uint16_t port, const std::string& request, size_t replySize) {
  const SOCKET socket = ::socket(AF_INET, SOCK_STREAM, 0);
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  address.sin_port = htons(port);
  require(connect(socket, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0,
          "connect");
  send(socket, request.data(), static_cast<int>(request.size()), 0);
  char buffer[kBufferSize];
  for (size_t received = 0; received < replySize;) {
    const int count = recv(socket, buffer, sizeof buffer, 0);
    require(count > 0, "a reply");
    received += static_cast<size_t>(count);
  }
  closesocket(socket);
}

// The bytes of the server's usual reply.
size_t replySizeOf(uint16_t port) {
  const TestSocket connection = TestSocket::connectLoopback(port);
  connection.sendAll("GET / HTTP/1.1\r\n\r\n");
  char buffer[kBufferSize];
  size_t size = 0;
  connection.finishSending();
  for (long count = 1; count > 0; size += static_cast<size_t>(count)) {
    count = connection.receive(buffer, sizeof buffer);
    require(count >= 0, "the server's reply");
  }
  return size;
}

void invokeRow(uint16_t serverPort, size_t replySize) {
  const auto invoke = [](uint16_t port) {
    HttpRequest request("127.0.0.1", port);
    request.addHeader("Authorization-key", kKey);
    request.addHeader("Content-Type", "application/vnd.orvane.xferreq+json");
    request.method = kMethod;
    request.path = kPath;
    request.setBody(kBody);
    require(request.invoke() != nullptr, "a response");
  };
  const std::string bytes = requestsOf(1, invoke).front();
  printRow(
      "HttpRequest::invoke / bare sockets, same bytes",
      ratio(
          kTurns, [&] { invoke(serverPort); }, [&] { bareExchange(serverPort, bytes, replySize); }),
      Aim::atMost(1.15));
}

void readKeyFile(const std::wstring& path) {
  HANDLE const file = CreateFileW(path.c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE,
                                  nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
  char buffer[kKeyFileSize];
  DWORD count = 0;
  require(ReadFile(file, buffer, sizeof buffer, &count, nullptr) != FALSE && count != 0,
          "the key's file");
  CloseHandle(file);
}

struct InternetHandleCloser {
  void operator()(void* handle) const { WinHttpCloseHandle(handle); }
};
using InternetHandle = std::unique_ptr<void, InternetHandleCloser>;

// The platform's own client: one session and one connection handle for all exchanges.
class WinHttpClient {
 public:
  explicit WinHttpClient(uint16_t port)
      : session_(WinHttpOpen(L"Orvane Vantrel", WINHTTP_ACCESS_TYPE_NO_PROXY, WINHTTP_NO_PROXY_NAME,
                             WINHTTP_NO_PROXY_BYPASS, 0)),
        connection_(WinHttpConnect(session_.get(), L"127.0.0.1", port, 0)) {
    require(connection_ != nullptr, "WinHttpConnect");
  }

  void exchange(const wchar_t* method, const std::wstring& path, const std::wstring& headers,
                const std::string& body) const {
    const InternetHandle request(WinHttpOpenRequest(connection_.get(), method, path.c_str(),
                                                    nullptr, WINHTTP_NO_REFERER,
                                                    WINHTTP_DEFAULT_ACCEPT_TYPES, 0));
    const auto size = static_cast<DWORD>(body.size());
    require(WinHttpSendRequest(request.get(), headers.c_str(), static_cast<DWORD>(headers.size()),
                               const_cast<char*>(body.data()), size, size, 0) != FALSE &&
                WinHttpReceiveResponse(request.get(), nullptr) != FALSE,
            "a WinHTTP exchange");
    char buffer[kBufferSize];
    DWORD count = 1;
    while (count != 0) {
      require(WinHttpReadData(request.get(), buffer, sizeof buffer, &count) != FALSE,
              "WinHttpReadData");
    }
  }

 private:
  const InternetHandle session_;
  const InternetHandle connection_;
};

std::wstring wide(const std::string& ascii) {
  return {ascii.begin(), ascii.end()};
}

// The lines of a recorded head that are not the platform client's own to send.
std::wstring headersIn(const std::string& request) {
  std::wstring kept = L"Connection: close";
  size_t at = request.find("\r\n") + 2;
  for (size_t end = request.find("\r\n", at); end > at; end = request.find("\r\n", at)) {
    const std::string line = request.substr(at, end - at);
    if (line.starts_with("Authorization-key") || line.starts_with("Content-Type")) {
      kept += L"\r\n" + wide(line);
    }
    at = end + 2;
  }
  return kept;
}

std::wstring pathIn(const std::string& request) {
  const size_t at = request.find(' ') + 1;
  return wide(request.substr(at, request.find(' ', at) - at));
}

void scriptRows(const Server& server, size_t replySize, const Host::ScratchProfile& profile) {
  const std::wstring keyFile =
      profile.localAppData() / "Orvane" / "Orvane Vantrel" / "var" / "run" / "http.uri";
  const PlainBrowser browser;
  std::unique_ptr<PlainInstance> instance;
  const auto call = [&instance] {
    require(instance->call("vantrelHttpRequest", {kMethod, kPath, kBody}) == 2, "the reply's body");
  };
  // The instance asks once whether the client lives, and each call does.
  const std::vector<std::string> sent = requestsOf(3, [&](uint16_t port) {
    profile.writeServiceUrl(uriText(port));
    instance = std::make_unique<PlainInstance>(browser);
    call();
  });
  const std::string& ping = sent[1];
  const std::string& request = sent[2];
  // The library finds a client that has moved to another port.
  profile.writeServiceUrl(uriText(server.port()));
  printRow("vantrelHttpRequest / bare key, ping and request",
           ratio(kTurns, call,
                 [&] {
                   readKeyFile(keyFile);
                   bareExchange(server.port(), ping, replySize);
                   bareExchange(server.port(), request, replySize);
                 }),
           Aim::atMost(1.3));
  const WinHttpClient client(server.port());
  const std::wstring pingPath = pathIn(ping);
  const std::wstring requestPath = pathIn(request);
  const std::wstring headers = headersIn(request);
  printRow("vantrelHttpRequest / WinHTTP ping and request",
           ratio(kTurns, call,
                 [&] {
                   client.exchange(L"GET", pingPath, L"Connection: close", "");
                   client.exchange(L"POST", requestPath, headers, kBody);
                 }),
           Aim::atMost(0.8));
}

}  // namespace
}  // namespace Vantrel::Web::Bench

int main() {
  using namespace Vantrel::Web::Bench;
  return runRows([] {
    // Before anything of the library, which looks for the client's files there.
    const Vantrel::Web::Host::ScratchProfile profile;
    const Server server;
    const size_t replySize = replySizeOf(server.port());
    invokeRow(server.port(), replySize);
    scriptRows(server, replySize, profile);
  });
}
