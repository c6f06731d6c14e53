#include "service/socket_platform.h"

#include <arpa/inet.h>
#include <netdb.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <sys/time.h>
#include <unistd.h>

#include <cerrno>

namespace Vantrel::Web::SocketPlatform {

namespace {

int descriptor(uint64_t handle) {
  return static_cast<int>(handle);
}

}  // namespace

uint64_t createTcp() {
  const int created = socket(AF_INET, SOCK_STREAM, 0);
  return created < 0 ? kClosedSocket : static_cast<uint64_t>(created);
}

// The platform refuses at once in any case, and a shutdown from outside ends an attempt, so that
// only one that is given up from its start is another.
bool connectTcp(uint64_t handle, uint32_t address, uint16_t port, const Connecting& how,
                int32_t* code) {
  if (how.giveUp != nullptr && *how.giveUp) {
    constexpr timeval kMoment = {0, 20000};
    setsockopt(descriptor(handle), SOL_SOCKET, SO_SNDTIMEO, &kMoment, sizeof kMoment);
  }
  sockaddr_in target = {};
  target.sin_family = AF_INET;
  target.sin_addr.s_addr = address;
  target.sin_port = htons(port);
  if (connect(descriptor(handle), reinterpret_cast<const sockaddr*>(&target), sizeof target) == 0) {
    return true;
  }
  *code = errno;
  return false;
}

int32_t receive(uint64_t handle, char* buffer, int32_t size, int32_t* code) {
  const ssize_t count = recv(descriptor(handle), buffer, static_cast<size_t>(size), 0);
  if (count < 0) *code = errno;
  return static_cast<int32_t>(count);
}

int32_t transmit(uint64_t handle, const char* buffer, int32_t size, int32_t* code) {
  const ssize_t count = send(descriptor(handle), buffer, static_cast<size_t>(size), MSG_NOSIGNAL);
  if (count < 0) *code = errno;
  return static_cast<int32_t>(count);
}

void shutDown(uint64_t handle) {
  shutdown(descriptor(handle), SHUT_RDWR);
}

int32_t closeSocket(uint64_t* handle) {
  if (::close(descriptor(*handle)) != 0) return errno;
  *handle = kClosedSocket;
  return 0;
}

Resolution resolveIpv4(const std::string& host, std::string* dotted) {
  addrinfo* list = nullptr;
  if (getaddrinfo(host.c_str(), nullptr, nullptr, &list) != 0) return Resolution::kFailed;
  const addrinfo* entry = list;
  while (entry != nullptr && entry->ai_family != AF_INET) entry = entry->ai_next;
  if (entry != nullptr) {
    char text[INET_ADDRSTRLEN] = "";
    inet_ntop(AF_INET, &reinterpret_cast<const sockaddr_in*>(entry->ai_addr)->sin_addr, text,
              sizeof text);
    *dotted = text;
  }
  freeaddrinfo(list);
  return entry != nullptr ? Resolution::kFound : Resolution::kNoIpv4;
}

uint32_t parseIpv4(const std::string& dotted) {
  return dotted.empty() ? kInvalidAddress : inet_addr(dotted.c_str());
}

}  // namespace Vantrel::Web::SocketPlatform
