// Whole buffers through a socket, with a time limit.
#include <cstdint>
#include <limits>

#include "runtime/sockets/buffer.h"
#include "runtime/sockets/calls_win.h"

namespace {

int call_length(uint32_t length) {
  constexpr uint32_t kMost = std::numeric_limits<int>::max();
  return static_cast<int>(length < kMost ? length : kMost);
}

class Reader : public ov::Transport {
 public:
  Reader(ov_sock socket, char* into) : sock_(socket), buffer_(into) {}
  const char* name() const override { return "read"; }
  int32_t wait() override {
    return ov::wait_socket(sock_, ov::Readiness::kReading, ov::kSliceMilliseconds);
  }
  int32_t move(uint32_t offset, uint32_t length) override {
    return recv(sock_, buffer_ + offset, call_length(length), 0);
  }
  ov_rc code() override { return ov::last_code(); }

 private:
  const ov_sock sock_;
  char* const buffer_;
};

class Writer : public ov::Transport {
 public:
  Writer(ov_sock socket, const char* from) : sock_(socket), buffer_(from) {}
  const char* name() const override { return "write"; }
  int32_t wait() override {
    return ov::wait_socket(sock_, ov::Readiness::kWriting, ov::kSliceMilliseconds);
  }
  int32_t move(uint32_t offset, uint32_t length) override {
    return send(sock_, buffer_ + offset, call_length(length), 0);
  }
  ov_rc code() override { return ov::last_code(); }

 private:
  const ov_sock sock_;
  const char* const buffer_;
};

// A socket and a buffer are needed for bytes only.
bool lacks(const ov_sock* sock, const void* buffer, uint32_t length) {
  return length > 0 && (sock == nullptr || buffer == nullptr);
}

ov_sock socket_of(const ov_sock* sock) {
  return sock == nullptr ? INVALID_SOCKET : *sock;
}

}  // namespace

ov_rc ov_buf_read(ov_sock* sock, void* buffer, uint32_t length, uint32_t* count) {
  return ov_buf_read_tmout(sock, buffer, length, count, 0);
}

ov_rc ov_buf_write(ov_sock* sock, const void* buffer, uint32_t length, uint32_t* count) {
  return ov_buf_write_tmout(sock, buffer, length, count, 0);
}

ov_rc ov_buf_read_tmout(ov_sock* sock, void* buffer, uint32_t length, uint32_t* count,
                        int32_t seconds) {
  if (lacks(sock, buffer, length)) return OV_EINVAL;
  Reader reader(socket_of(sock), static_cast<char*>(buffer));
  return ov::transfer(reader, length, count, seconds);
}

ov_rc ov_buf_write_tmout(ov_sock* sock, const void* buffer, uint32_t length, uint32_t* count,
                         int32_t seconds) {
  if (lacks(sock, buffer, length)) return OV_EINVAL;
  Writer writer(socket_of(sock), static_cast<const char*>(buffer));
  return ov::transfer(writer, length, count, seconds);
}
