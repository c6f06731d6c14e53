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
  steps_.push_back({Kind::kSend, bytes, 0});
  return *this;
}

Script& Script::pause(int milliseconds) {
  steps_.push_back({Kind::kPause, {}, milliseconds});
  return *this;
}

Script& Script::hold() {
  steps_.push_back({Kind::kHold, {}, 0});
  return *this;
}

Script& Script::reset() {
  steps_.push_back({Kind::kReset, {}, 0});
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
    : listener_(TestSocket::listenLoopback(port)), listenerPort_(listener_.localPort()) {
  acceptor_ = std::thread([this] { acceptLoop(); });
}

ScriptedServer::~ScriptedServer() {
  {
    const std::lock_guard lock(mutex_);
    stopping_ = true;
    changed_.notify_all();
  }
  acceptor_.join();
  for (std::thread& server : servers_) server.join();
}

std::string ScriptedServer::url() const {
  return "http://127.0.0.1:" + std::to_string(listenerPort_);
}

void ScriptedServer::otherwise(const Script& script) {
  const std::lock_guard lock(mutex_);
  fallback_ = script;
}

void ScriptedServer::always(const std::string& path, const Script& script) {
  const std::lock_guard lock(mutex_);
  scripts_[path] = script;
}

void ScriptedServer::next(const std::string& path, const Script& script) {
  const std::lock_guard lock(mutex_);
  onceScripts_[path].push_back(script);
}

void ScriptedServer::nextConnection(const Script& script) {
  const std::lock_guard lock(mutex_);
  connectionScripts_.push_back(script);
}

void ScriptedServer::release() {
  const std::lock_guard lock(mutex_);
  released_ = true;
  changed_.notify_all();
}

std::vector<std::string> ScriptedServer::requests() const {
  const std::lock_guard lock(mutex_);
  return recorded_;
}

std::vector<std::string> ScriptedServer::requests(const std::string& path) const {
  std::vector<std::string> found;
  for (const std::string& request : requests()) {
    if (requestPath(request) == path) found.push_back(request);
  }
  return found;
}

size_t ScriptedServer::connections() const {
  const std::lock_guard lock(mutex_);
  return accepted_;
}

bool ScriptedServer::waitForRequests(const std::string& path, size_t count, int seconds) const {
  std::unique_lock lock(mutex_);
  return changed_.wait_for(lock, std::chrono::seconds(seconds), [&] {
    return static_cast<size_t>(std::count_if(
               recorded_.begin(), recorded_.end(),
               [&](const std::string& request) { return requestPath(request) == path; })) >= count;
  });
}

void ScriptedServer::acceptLoop() {
  while (!stopping_) {
    if (!listener_.waitReadable(kSliceMs)) continue;
    TestSocket connection = listener_.accept();
    if (!connection.isOpen()) continue;
    const std::lock_guard lock(mutex_);
    ++accepted_;
    servers_.emplace_back(
        [this, moved = std::move(connection)]() mutable { serve(std::move(moved)); });
  }
}

void ScriptedServer::serve(TestSocket connection) {
  {
    std::unique_lock lock(mutex_);
    if (!connectionScripts_.empty()) {
      const Script script = std::move(connectionScripts_.front());
      connectionScripts_.pop_front();
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
    if (stopping_) return false;
    if (!connection.waitReadable(kSliceMs)) continue;
    const long received = connection.receive(buffer, sizeof buffer);
    if (received <= 0) return false;
    request.append(buffer, static_cast<size_t>(received));
  }
  return true;
}

Script ScriptedServer::chooseScript(const std::string& path) {
  const std::lock_guard lock(mutex_);
  std::deque<Script>& once = onceScripts_[path];
  if (!once.empty()) {
    Script script = std::move(once.front());
    once.pop_front();
    return script;
  }
  const auto found = scripts_.find(path);
  return found == scripts_.end() ? fallback_ : found->second;
}

void ScriptedServer::play(TestSocket& connection, const Script& script) {
  for (const Script::Step& step : script.steps_) {
    switch (step.kind) {
      case Script::Kind::kSend:
        if (!connection.sendAll(step.bytes)) return;
        break;
      case Script::Kind::kPause:
        std::this_thread::sleep_for(std::chrono::milliseconds(step.milliseconds));
        break;
      case Script::Kind::kHold: {
        std::unique_lock lock(mutex_);
        changed_.wait(lock, [this] { return released_ || stopping_; });
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
  const std::lock_guard lock(mutex_);
  recorded_.push_back(request);
  changed_.notify_all();
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
