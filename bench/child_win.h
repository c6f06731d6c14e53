// A program that this one starts and talks to by lines: the server that plays the desktop client,
// or this program again for what has to be seen in a process of its own. Owned by one thread; the
// program ends when its input does, at the latest with this process.
#pragma once

#include <cstdint>
#include <string>

namespace Vantrel::Web::Bench {

class Child {
 public:
  // `command` begins with the name of a program that stands beside this one.
  explicit Child(const std::string& command);
  // Ends its input and waits until it has gone.
  ~Child();
  Child(const Child&) = delete;
  Child& operator=(const Child&) = delete;

  // The next line of its output, without the line end. Fails this program when there is none.
  std::string readLine();

 private:
  void* process_ = nullptr;
  void* input_ = nullptr;
  void* output_ = nullptr;
};

// The server of bench_server, running; its port is for a process of its own to know.
class Server {
 public:
  Server();
  uint16_t port() const { return port_; }

 private:
  Child child_;
  uint16_t port_;
};

// What the desktop client writes into its file: its address and its key.
std::string uriText(uint16_t port);
inline constexpr char kKey[] = "8e0e52b1-7d8a-4a2b-9d1c-5c1f5d0c7a11";
// Paths of the server: a reply of that many bytes, with a length and without; all else is answered
// by an empty object.
inline constexpr char kSizedPath[] = "/sized/";
inline constexpr char kUnsizedPath[] = "/unsized/";

}  // namespace Vantrel::Web::Bench
