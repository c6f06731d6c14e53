#include "tools/client/http_server_win.h"

#include <array>

#include "tools/client/paths.h"

namespace Vantrel::StandIn {
namespace {

constexpr int kAcceptWaitMs = 20;
constexpr int kReceiveStepMs = 50;
constexpr int kReceiveBytes = 16384;

}  // namespace

HttpServer::HttpServer(const Knobs& knobs, Service& service, Announce announce)
    : knobs_(knobs),
      service_(service),
      announce_(std::move(announce)),
      gate_(knobs),
      recorder_(pathOf(knobs.record)) {}

HttpServer::~HttpServer() {
  {
    std::lock_guard lock(mutex_);
    stopped_ = true;
  }
  changed_.notify_all();
  reap(true);
}

void HttpServer::run() {
  listener_ = listenOn(static_cast<std::uint16_t>(knobs_.port));
  announce_(portOf(listener_));
  while (!timeToEnd()) {
    moveIfAsked();
    Socket socket = acceptWithin(listener_, kAcceptWaitMs);
    if (socket.open()) accept(std::move(socket));
    reap(false);
  }
  listener_ = Socket();
}

void HttpServer::accept(Socket socket) {
  Connection& connection = connections_.emplace_back();
  connection.socket = std::move(socket);
  connection.record = recorder_.next();
  connection.thread = std::thread([this, &connection] {
    serve(connection);
    connection.done = true;
  });
}

void HttpServer::reap(bool all) {
  for (auto it = connections_.begin(); it != connections_.end();) {
    if (!all && !it->done) {
      ++it;
      continue;
    }
    it->thread.join();
    it = connections_.erase(it);
  }
}

bool HttpServer::timeToEnd() {
  using std::chrono::milliseconds;
  auto age = std::chrono::steady_clock::now() - start_;
  if (knobs_.exitAfterMs > 0 && age >= milliseconds(knobs_.exitAfterMs)) return true;
  auto idle = milliseconds(knobs_.idleSeconds * 1000);
  if (knobs_.idleSeconds > 0 && service_.idleTime() >= idle) return true;
  std::lock_guard lock(mutex_);
  return exitAsked_;
}

// The file names the new port before the old one is gone, and the request that asked for the
// move is answered after both: who has its reply finds the new state.
void HttpServer::moveIfAsked() {
  std::lock_guard lock(mutex_);
  if (!moveAsked_) return;
  Socket fresh = listenOn(0);
  announce_(portOf(fresh));
  listener_ = std::move(fresh);
  moveAsked_ = false;
  changed_.notify_all();
}

void HttpServer::askToMove() {
  std::unique_lock lock(mutex_);
  moveAsked_ = true;
  changed_.wait(lock, [this] { return !moveAsked_ || stopped_; });
}

void HttpServer::serve(Connection& connection) {
  RequestReader reader;
  if (!readRequest(connection, reader)) return;
  if (!reader.problem().empty()) {
    carryOut(connection, honestPlan(errorReply(400, "Bad request", reader.problem())));
    return;
  }
  MisbehaviourGate::Verdict verdict = gate_.judge(reader.request().path);
  ServiceReply reply = service_.answer(reader.request());
  if (verdict.restart) askToMove();
  carryOut(connection, verdict.misbehave ? misbehavedPlan(reply, knobs_) : honestPlan(reply));
  if (!verdict.exit && !service_.shutdownAsked()) return;
  std::lock_guard lock(mutex_);
  exitAsked_ = true;
}

// False when the peer went away before its request was whole.
bool HttpServer::readRequest(Connection& connection, RequestReader& reader) {
  std::array<char, kReceiveBytes> buffer{};
  auto state = RequestReader::State::kReading;
  while (state == RequestReader::State::kReading) {
    int received = receive(connection, buffer);
    if (received <= 0) return false;
    std::string_view bytes(buffer.data(), static_cast<size_t>(received));
    connection.record.add(bytes);
    state = reader.add(bytes);
  }
  return true;
}

void HttpServer::carryOut(Connection& connection, const ReplyPlan& plan) {
  if (!sleepUnlessStopped(plan.delayMs)) return;
  if (plan.silent) return waitForPeer(connection);
  bool first = true;
  for (const std::string& piece : plan.pieces) {
    if (!first && !sleepUnlessStopped(plan.pauseMs)) return;
    if (!connection.socket.sendAll(piece)) return;
    first = false;
  }
  connection.socket.finish();
}

void HttpServer::waitForPeer(Connection& connection) {
  std::array<char, kReceiveBytes> buffer{};
  int received = 1;
  while (received > 0) {
    received = receive(connection, buffer);
    if (received > 0) connection.record.add({buffer.data(), static_cast<size_t>(received)});
  }
}

// As a socket's receive; the end of the server counts as the peer's end.
int HttpServer::receive(const Connection& connection, std::span<char> buffer) {
  while (sleepUnlessStopped(0)) {
    if (!connection.socket.readableWithin(kReceiveStepMs)) continue;
    return connection.socket.receive(buffer.data(), static_cast<int>(buffer.size()));
  }
  return 0;
}

// False when the server stopped meanwhile.
bool HttpServer::sleepUnlessStopped(std::int64_t milliseconds) {
  std::unique_lock lock(mutex_);
  return !changed_.wait_for(lock, std::chrono::milliseconds(milliseconds),
                            [this] { return stopped_; });
}

}  // namespace Vantrel::StandIn
