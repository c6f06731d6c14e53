#include "tests/support/scripted_server.h"

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <utility>

namespace Vantrel::Web::TestSupport {

namespace {

// How long a wait for the network lasts before the server looks whether it is to end.
constexpr int kSliceMs = 20;
constexpr char kHeadEnd[] = "\r\n\r\n";

// Whether the head and as much of the body as it promises have arrived.
bool isComplete(const std::string& request) {
  const size_t headEnd = request.find(kHeadEnd);
  if (headEnd == std::string::npos) return false;
  const std::string label = "\r\nContent-Length: ";
  const size_t length = request.find(label);
  if (length == std::string::npos || length > headEnd) return true;
  const unsigned long long promised =
      std::strtoull(request.c_str() + length + label.size(), nullptr, 10);
  return request.size() - headEnd - 4 >= promised;
}

}  // namespace

Script& Script::send(const std::string& bytes) {
  steps.push_back({Kind::kSend, bytes, 0});
  return *this;
}

Script& Script::pause(int milliseconds) {
  steps.push_back({Kind::kPause, {}, milliseconds});
  return *this;
}

Script& Script::hold() {
  steps.push_back({Kind::kHold, {}, 0});
  return *this;
}

Script& Script::reset() {
  steps.push_back({Kind::kReset, {}, 0});
  return *this;
}

Script Script::reply(const std::string& body) {
  return Script().send(httpReply(body));
}

Script Script::split(const std::string& bytes, size_t position) {
  return Script().send(bytes.substr(0, position)).pause().send(bytes.substr(position));
}

Script Script::silence() {
  return Script().hold();
}

std::string httpReply(const std::string& body, const std::string& status) {
  return "HTTP/1.1 " + status +
         "\r\nContent-Type: application/json\r\nContent-Length: " + std::to_string(body.size()) +
         kHeadEnd + body;
}

uint16_t unusedPort() {
  return TestSocket::listenLoopback(0).localPort();
}

ScriptedServer::ScriptedServer(uint16_t port)
    : listener(TestSocket::listenLoopback(port)), listenerPort(listener.localPort()) {
  acceptor = std::thread([this] { acceptLoop(); });
}

ScriptedServer::~ScriptedServer() {
  {
    const std::lock_guard lock(mutex);
    stopping = true;
    changed.notify_all();
  }
  acceptor.join();
  for (std::thread& server : servers) server.join();
}

std::string ScriptedServer::url() const {
  return "http://127.0.0.1:" + std::to_string(listenerPort);
}

void ScriptedServer::otherwise(const Script& script) {
  const std::lock_guard lock(mutex);
  fallback = script;
}

void ScriptedServer::always(const std::string& path, const Script& script) {
  const std::lock_guard lock(mutex);
  scripts[path] = script;
}

void ScriptedServer::next(const std::string& path, const Script& script) {
  const std::lock_guard lock(mutex);
  onceScripts[path].push_back(script);
}

void ScriptedServer::nextConnection(const Script& script) {
  const std::lock_guard lock(mutex);
  connectionScripts.push_back(script);
}

void ScriptedServer::release() {
  const std::lock_guard lock(mutex);
  released = true;
  changed.notify_all();
}

std::vector<std::string> ScriptedServer::requests() const {
  const std::lock_guard lock(mutex);
  return recorded;
}

std::vector<std::string> ScriptedServer::requests(const std::string& path) const {
  std::vector<std::string> found;
  for (const std::string& request : requests()) {
    if (requestPath(request) == path) found.push_back(request);
  }
  return found;
}

size_t ScriptedServer::connections() const {
  const std::lock_guard lock(mutex);
  return accepted;
}

bool ScriptedServer::waitForRequests(const std::string& path, size_t count, int seconds) const {
  std::unique_lock lock(mutex);
  return changed.wait_for(lock, std::chrono::seconds(seconds), [&] {
    return static_cast<size_t>(std::count_if(
               recorded.begin(), recorded.end(),
               [&](const std::string& request) { return requestPath(request) == path; })) >= count;
  });
}

void ScriptedServer::acceptLoop() {
  while (!stopping) {
    if (!listener.waitReadable(kSliceMs)) continue;
    TestSocket connection = listener.accept();
    if (!connection.isOpen()) continue;
    const std::lock_guard lock(mutex);
    ++accepted;
    servers.emplace_back(
        [this, moved = std::move(connection)]() mutable { serve(std::move(moved)); });
  }
}

void ScriptedServer::serve(TestSocket connection) {
  {
    std::unique_lock lock(mutex);
    if (!connectionScripts.empty()) {
      const Script script = std::move(connectionScripts.front());
      connectionScripts.pop_front();
      lock.unlock();
      play(connection, script);
      return;
    }
  }
  std::string request;
  if (!readRequest(connection, request)) return;
  record(request);
  play(connection, chooseScript(requestPath(request)));
}

bool ScriptedServer::readRequest(const TestSocket& connection, std::string& request) const {
  char buffer[16384];
  while (!isComplete(request)) {
    if (stopping) return false;
    if (!connection.waitReadable(kSliceMs)) continue;
    const long received = connection.receive(buffer, sizeof buffer);
    if (received <= 0) return false;
    request.append(buffer, static_cast<size_t>(received));
  }
  return true;
}

Script ScriptedServer::chooseScript(const std::string& path) {
  const std::lock_guard lock(mutex);
  std::deque<Script>& once = onceScripts[path];
  if (!once.empty()) {
    Script script = std::move(once.front());
    once.pop_front();
    return script;
  }
  const auto found = scripts.find(path);
  return found == scripts.end() ? fallback : found->second;
}

void ScriptedServer::play(TestSocket& connection, const Script& script) {
  for (const Script::Step& step : script.steps) {
    switch (step.kind) {
      case Script::Kind::kSend:
        if (!connection.sendAll(step.bytes)) return;
        break;
      case Script::Kind::kPause:
        std::this_thread::sleep_for(std::chrono::milliseconds(step.milliseconds));
        break;
      case Script::Kind::kHold: {
        std::unique_lock lock(mutex);
        changed.wait(lock, [this] { return released || stopping; });
        break;
      }
      case Script::Kind::kReset:
        connection.reset();
        return;
    }
  }
  connection.finishSending();
}

void ScriptedServer::record(const std::string& request) {
  const std::lock_guard lock(mutex);
  recorded.push_back(request);
  changed.notify_all();
}

std::string requestPath(const std::string& request) {
  const size_t begin = request.find(' ');
  if (begin == std::string::npos) return {};
  const size_t end = request.find(' ', begin + 1);
  return request.substr(begin + 1, end == std::string::npos ? end : end - begin - 1);
}

std::string messageBody(const std::string& message) {
  const size_t headEnd = message.find(kHeadEnd);
  return headEnd == std::string::npos ? std::string() : message.substr(headEnd + 4);
}

}  // namespace Vantrel::Web::TestSupport
