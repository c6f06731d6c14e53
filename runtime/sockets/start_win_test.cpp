// The start and the end of the use of sockets, by the system's own calls.
#include <winsock2.h>

#include <gtest/gtest.h>

#include "runtime/ov_sockets.h"

namespace {

TEST(SocketsTest, StartCloseAndEnd) {
  int starts = 0;  // of system libraries in this process
  while (ov_sock_fini() == 0) ++starts;
  ov_sock sock = ~ov_sock{0};
  EXPECT_EQ(10093, ov_sock_close(&sock));
  ASSERT_EQ(0, ov_sock_init());
  EXPECT_EQ(10038, ov_sock_close(&sock));
  sock = socket(AF_INET, SOCK_STREAM, IPPROTO_TCP);
  ASSERT_NE(~ov_sock{0}, sock);
  EXPECT_EQ(0, ov_sock_close(&sock));
  EXPECT_EQ(~ov_sock{0}, sock);
  EXPECT_EQ(22, ov_sock_close(nullptr));
  EXPECT_EQ(0, ov_sock_fini());
  EXPECT_EQ(10093, ov_sock_fini());
  for (int i = 0; i < starts; ++i) EXPECT_EQ(0, ov_sock_init());
}

}  // namespace
