// A small HTTP server that behaves as a test tells it: it can split, delay, truncate, reset or
// withhold its replies, and it records the raw bytes of every request.
//
// It listens on 127.0.0.1 from construction to destruction; each connection is served by a thread
// of its own. The test's thread sets it up and asks it; all members may be called at any time.
#pragma once

#include <atomic>
#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <map>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "tests/support/test_socket.h"

namespace Vantrel::Web::TestSupport {

// What the server does on one connection, step by step; behind the last step it ends the connection
// in good order.
class Script {
 public:
  // Sends bytes as they are.
  Script& send(const std::string& bytes);
  // Gives the peer time to take what was sent as a piece of its own.
  Script& pause(int milliseconds = 2);
  // Waits until ScriptedServer::release() or the end of the server.
  Script& hold();
  // Ends the connection with a reset.
  Script& reset();

  // A well-formed reply with this body.
  static Script reply(const std::string& body);
  // The bytes in two pieces.
  static Script split(const std::string& bytes, size_t position);
  // Nothing, ever.
  static Script silence();

 private:
  friend class ScriptedServer;
  enum class Kind { kSend, kPause, kHold, kReset };
  struct Step {
    Kind kind;
    std::string bytes;
    int milliseconds;
  };
  std::vector<Step> steps_;
};

// The text of a reply with a status line, a content length and a body.
std::string httpReply(const std::string& body, const std::string& status = "200 OK");

// A port of 127.0.0.1 on which nothing listens.
uint16_t unusedPort();

class ScriptedServer {
 public:
  // Port 0 takes a free one.
  explicit ScriptedServer(uint16_t port = 0);
  ~ScriptedServer();
  ScriptedServer(const ScriptedServer&) = delete;
  ScriptedServer& operator=(const ScriptedServer&) = delete;

  uint16_t port() const { return listenerPort_; }
  // "http://127.0.0.1:PORT".
  std::string url() const;

  // For all requests to a path that nothing else is said about; at first `reply("{}")`.
  void otherwise(const Script& script);
  // For every request to `path`.
  void always(const std::string& path, const Script& script);
  // For the next request to `path` that no earlier call of this took.
  void next(const std::string& path, const Script& script);
  // For the next connection, before any request is read from it.
  void nextConnection(const Script& script);
  // Lets all connections go on that hold, now and from now on.
  void release();

  // The raw bytes of the requests read so far, in the order in which they were complete.
  std::vector<std::string> requests() const;
  // Those to one path.
  std::vector<std::string> requests(const std::string& path) const;
  size_t connections() const;
  // Waits until `count` requests to `path` are there; false after `seconds`.
  bool waitForRequests(const std::string& path, size_t count, int seconds = 30) const;

 private:
  void acceptLoop();
  void serve(TestSocket connection);
  bool readRequest(const TestSocket& connection, std::string& request) const;
  Script chooseScript(const std::string& path);
  void play(TestSocket& connection, const Script& script);
  void record(const std::string& request);

  TestSocket listener_;
  uint16_t listenerPort_;
  std::atomic<bool> stopping_{false};
  mutable std::mutex mutex_;  // guards all that follows, except the accepting thread itself
  mutable std::condition_variable changed_;
  bool released_ = false;
  size_t accepted_ = 0;
  Script fallback_ = Script::reply("{}");
  std::map<std::string, Script> scripts_;
  std::map<std::string, std::deque<Script>> onceScripts_;
  std::deque<Script> connectionScripts_;
  std::vector<std::string> recorded_;
  std::vector<std::thread> servers_;
  std::thread acceptor_;
};

// The path in the request line of a raw request.
std::string requestPath(const std::string& request);
// What stands behind the head of a raw request or reply.
std::string messageBody(const std::string& message);

}  // namespace Vantrel::Web::TestSupport
