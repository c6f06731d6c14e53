// The listening side: accepts connections, gives each a thread, and ends when it is time.
//
// Owned by main, whose thread runs it; the connections' threads are its own and are joined before
// run returns.
#pragma once

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <functional>
#include <list>
#include <mutex>
#include <span>
#include <string>
#include <thread>

#include "tools/client/knobs.h"
#include "tools/client/misbehaviour.h"
#include "tools/client/recorder.h"
#include "tools/client/service.h"
#include "tools/client/socket_win.h"

namespace Vantrel::StandIn {

class HttpServer {
 public:
  // Called whenever the server listens on a port, before anything is accepted there.
  using Announce = std::function<void(std::uint16_t port)>;

  // All must outlive the server.
  HttpServer(const Knobs& knobs, Service& service, Announce announce);
  ~HttpServer();
  HttpServer(const HttpServer&) = delete;
  HttpServer& operator=(const HttpServer&) = delete;

  // Serves until a knob, a request or the idle time ends it. Throws std::runtime_error when it
  // cannot listen.
  void run();

 private:
  struct Connection {
    Socket socket;
    ConnectionRecord record;
    std::atomic<bool> done = false;
    std::thread thread;
  };

  void accept(Socket socket);
  void reap(bool all);
  bool timeToEnd();
  void moveIfAsked();
  void askToMove();
  void serve(Connection& connection);
  bool readRequest(Connection& connection, RequestReader& reader);
  void carryOut(Connection& connection, const ReplyPlan& plan);
  void waitForPeer(Connection& connection);
  int receive(const Connection& connection, std::span<char> buffer);
  bool sleepUnlessStopped(std::int64_t milliseconds);

  const Knobs& knobs_;
  Service& service_;
  Announce announce_;
  MisbehaviourGate gate_;
  Recorder recorder_;
  const std::chrono::steady_clock::time_point start_ = std::chrono::steady_clock::now();
  // Only run's thread touches these two.
  Socket listener_;
  std::list<Connection> connections_;

  std::mutex mutex_;  // guards all below
  std::condition_variable changed_;
  bool moveAsked_ = false;
  bool stopped_ = false;
  bool exitAsked_ = false;
};

}  // namespace Vantrel::StandIn
