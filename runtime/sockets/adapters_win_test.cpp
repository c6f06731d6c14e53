#include <winsock2.h>
#include <ws2tcpip.h>
#include <iphlpapi.h>

#include <gtest/gtest.h>

#include <cstring>
#include <deque>
#include <string>
#include <vector>

#include "runtime/ov_sockets.h"
#include "tests/support/runtime/socket_fixture_win.h"

namespace {

// One adapter with its addresses and its hardware address.
struct Adapter {
  explicit Adapter(std::vector<const char*> texts, std::vector<uint8_t> mac = {})
      : addresses(texts.size()), entries(texts.size()) {
    for (size_t i = 0; i < texts.size(); ++i) {
      EXPECT_EQ(0, ov_sock_store_ipaddr(texts[i], &addresses[i], nullptr));
      addresses[i].port = 5;
      entries[i].Address.lpSockaddr = ov::system_address(&addresses[i]);
      entries[i].Address.iSockaddrLength = sizeof addresses[i];
      entries[i].Next = i + 1 < texts.size() ? &entries[i + 1] : nullptr;
    }
    record.FirstUnicastAddress = texts.empty() ? nullptr : entries.data();
    record.PhysicalAddressLength = static_cast<ULONG>(mac.size());
    if (!mac.empty()) memcpy(record.PhysicalAddress, mac.data(), mac.size());
  }
  Adapter(const Adapter&) = delete;
  Adapter& operator=(const Adapter&) = delete;

  std::vector<ov_sock_addr> addresses;
  std::vector<IP_ADAPTER_UNICAST_ADDRESS> entries;
  IP_ADAPTER_ADDRESSES record = {};
};

// The adapters that the system tells, and the results of its first calls.
struct Machine {
  bool faked = true;
  std::deque<Adapter> adapters;
  std::deque<ULONG> results;
  ULONG wanted = 0;  // size to tell with a failure
  std::vector<ULONG> sizes;
} machine;

}  // namespace

// Not declared as imported, so the linker takes ours instead of the library's.
extern "C" ULONG WINAPI GetAdaptersAddresses(ULONG family, ULONG flags, PVOID reserved,
                                             PIP_ADAPTER_ADDRESSES list, PULONG size) {
  EXPECT_EQ(0x2EU, flags);
  EXPECT_EQ(nullptr, reserved);
  if (!machine.faked) {
    static const auto real = ov::system_function<decltype(&GetAdaptersAddresses)>(
        "iphlpapi.dll", "GetAdaptersAddresses");
    return real(family, flags, reserved, list, size);
  }
  machine.sizes.push_back(*size);
  if (!machine.results.empty()) {
    const ULONG result = machine.results.front();
    machine.results.pop_front();
    if (machine.wanted != 0) *size = machine.wanted;
    return result;
  }
  for (size_t i = 0; i + 1 < machine.adapters.size(); ++i) {
    machine.adapters[i].record.Next = &machine.adapters[i + 1].record;
  }
  if (machine.adapters.empty()) return ERROR_NO_DATA;
  *list = machine.adapters.front().record;
  return 0;
}

namespace {

class SocketAdaptersTest : public ov::SocketFixture {
 protected:
  SocketAdaptersTest() { reset(); }
  void reset() {
    machine.faked = true;
    machine.adapters.clear();
    machine.results.clear();
    machine.wanted = 0;
    machine.sizes.clear();
  }
  static ov_sock_addr of(const char* text) {
    ov_sock_addr addr = {};
    EXPECT_EQ(0, ov_sock_store_ipaddr(text, &addr, nullptr));
    return addr;
  }
  // The answer, or less than 0 for a failure.
  static int32_t isInterface(const char* text) {
    const ov_sock_addr addr = of(text);
    int32_t answer = 9;
    const ov_rc error = ov_sock_is_local_interface_address(&addr, &answer);
    return error == 0 ? answer : -error;
  }
  static int32_t isLocal(const char* text) {
    const ov_sock_addr addr = of(text);
    int32_t answer = 9;
    const ov_rc error = ov_sock_is_local_address(&addr, &answer);
    return error == 0 ? answer : -error;
  }
  static int32_t isLocalhost(const char* text) {
    int32_t answer = 9;
    const ov_rc error = ov_sock_is_localhost(text, &answer);
    EXPECT_TRUE(error == 0 || answer == 0);
    return error == 0 ? answer : -error;
  }
  static std::string macOf(const char* text) {
    const ov_sock_addr addr = of(text);
    char out[18];
    const ov_rc error = ov_sock_get_mac_addr(nullptr, &addr, out, sizeof out);
    return error == 0 ? out : std::to_string(error);
  }
  static void useUsualMachine() {
    machine.adapters.emplace_back(std::vector<const char*>{"::1", "127.0.0.1"});
    machine.adapters.emplace_back(std::vector<const char*>{});
    machine.adapters.emplace_back(std::vector<const char*>{"2001:db8::5", "0.0.0.0", "192.168.1.5"},
                                  std::vector<uint8_t>{0x00, 0x1b, 0x44, 0x11, 0x3a, 0xb7});
    machine.adapters.emplace_back(std::vector<const char*>{"10.0.0.5"},
                                  std::vector<uint8_t>{0xff, 1, 2, 3, 4, 5, 6, 7});
  }
};

TEST_F(SocketAdaptersTest, AddressOfAnInterface) {
  useUsualMachine();
  for (const char* own : {"192.168.1.5", "10.0.0.5", "2001:db8::5", "127.0.0.1", "::1"}) {
    EXPECT_EQ(1, isInterface(own)) << own;
  }
  for (const char* other : {"192.168.1.6", "2001:db8::6", "127.0.0.2", "::"}) {
    EXPECT_EQ(0, isInterface(other)) << other;
  }
}

TEST_F(SocketAdaptersTest, LocalAddress) {
  useUsualMachine();
  EXPECT_EQ(1, isLocal("10.0.0.5"));
  EXPECT_EQ(0, isLocal("10.0.0.6"));
  reset();
  for (const char* always : {"0.0.0.0", "::", "127.9.9.9", "::1"}) EXPECT_EQ(1, isLocal(always));
  const ov_sock_addr none = {};
  int32_t answer = 9;
  EXPECT_EQ(0, ov_sock_is_local_address(&none, &answer));
  EXPECT_EQ(1, answer);
  EXPECT_TRUE(machine.sizes.empty());  // nobody was asked
}

TEST_F(SocketAdaptersTest, Localhost) {
  useUsualMachine();
  for (const char* name : {"localhost", "127.0.0.1", "::1"}) EXPECT_EQ(1, isLocalhost(name));
  EXPECT_TRUE(machine.sizes.empty());
  EXPECT_EQ(1, isLocalhost("192.168.1.5"));
  EXPECT_EQ(1, isLocalhost("[2001:db8::5]:80"));
  EXPECT_EQ(0, isLocalhost("192.168.1.6"));
  EXPECT_EQ(0, isLocalhost("127.0.0.2"));  // no interface has it
  EXPECT_EQ(-11001, isLocalhost("no-such-host.invalid"));
  machine.results = {ERROR_ACCESS_DENIED};
  EXPECT_EQ(-5, isLocalhost("192.168.1.5"));
}

TEST_F(SocketAdaptersTest, FirstAddressOfTheHost) {
  ov_sock_addr addr = {};
  addr.port = 7;
  EXPECT_EQ(1, ov_sock_get_1host_ipaddr(&addr));  // no adapter
  machine.adapters.emplace_back(std::vector<const char*>{});
  EXPECT_EQ(1, ov_sock_get_1host_ipaddr(&addr));  // none with an address
  machine.adapters.emplace_back(std::vector<const char*>{"2001:db8::5"});
  EXPECT_EQ(1, ov_sock_get_1host_ipaddr(&addr));  // none with an IPv4 address
  machine.adapters.emplace_back(std::vector<const char*>{"127.0.0.1", "0.0.0.0"});
  EXPECT_EQ(2, ov_sock_get_1host_ipaddr(&addr));
  EXPECT_EQ(7, addr.port);
  EXPECT_EQ(0, addr.family);
  reset();
  useUsualMachine();
  EXPECT_EQ(0, ov_sock_get_1host_ipaddr(&addr));
  EXPECT_EQ(of("192.168.1.5").ipv4, addr.ipv4);
  EXPECT_EQ(2, addr.family);
}

TEST_F(SocketAdaptersTest, HardwareAddress) {
  useUsualMachine();
  EXPECT_EQ("00:1b:44:11:3a:b7", macOf("192.168.1.5"));
  EXPECT_EQ("00:1b:44:11:3a:b7", macOf("2001:db8::5"));
  EXPECT_EQ("ff:01:02:03:04:05", macOf("10.0.0.5"));
  for (const char* none : {"0.0.0.0", "::", "127.0.0.1", "::1", "192.168.1.6"}) {
    EXPECT_EQ("22", macOf(none)) << none;
  }
  const ov_sock_addr addr = of("10.0.0.5");
  char text[18] = "x";
  EXPECT_EQ(28677, ov_sock_get_mac_addr(nullptr, &addr, text, 17));
  EXPECT_EQ(22, ov_sock_get_mac_addr(nullptr, nullptr, text, 18));
  EXPECT_EQ(22, ov_sock_get_mac_addr(nullptr, &addr, nullptr, 18));
}

TEST_F(SocketAdaptersTest, RoomGrowsAsTheSystemTells) {
  useUsualMachine();
  machine.results = {ERROR_BUFFER_OVERFLOW, ERROR_BUFFER_OVERFLOW};
  machine.wanted = 50000;
  EXPECT_EQ(1, isInterface("10.0.0.5"));
  EXPECT_EQ((std::vector<ULONG>{16384, 50000, 50000}), machine.sizes);
  machine.results.assign(20, ERROR_BUFFER_OVERFLOW);
  EXPECT_EQ(-111, isInterface("10.0.0.5"));
}

TEST_F(SocketAdaptersTest, FailureOfTheSystem) {
  ov_sock_addr addr = {};
  machine.results.assign(4, ERROR_NOT_ENOUGH_MEMORY);
  EXPECT_EQ(-8, isInterface("10.0.0.5"));
  EXPECT_EQ(-8, isLocal("10.0.0.5"));
  EXPECT_EQ(8, ov_sock_get_1host_ipaddr(&addr));
  EXPECT_EQ("8", macOf("10.0.0.5"));
  machine.results.assign(3, ERROR_NO_DATA);  // no address at all
  EXPECT_EQ(0, isInterface("10.0.0.5"));
  EXPECT_EQ(1, ov_sock_get_1host_ipaddr(&addr));
  EXPECT_EQ("22", macOf("10.0.0.5"));
}

TEST_F(SocketAdaptersTest, BadArguments) {
  const ov_sock_addr addr = ov::loopback(AF_INET);
  int32_t answer = 9;
  for (const auto call : {ov_sock_is_local_address, ov_sock_is_local_interface_address}) {
    EXPECT_EQ(22, call(nullptr, &answer));
    EXPECT_EQ(22, call(&addr, nullptr));
  }
  EXPECT_EQ(22, ov_sock_is_localhost(nullptr, &answer));
  EXPECT_EQ(22, ov_sock_is_localhost("localhost", nullptr));
  EXPECT_EQ(22, ov_sock_get_1host_ipaddr(nullptr));
  EXPECT_EQ(9, answer);
}

TEST_F(SocketAdaptersTest, OnThisMachine) {
  machine.faked = false;
  EXPECT_EQ(1, isInterface("127.0.0.1"));
  EXPECT_EQ(0, isInterface("192.0.2.1"));  // a network for examples
  EXPECT_EQ(0, isLocal("192.0.2.1"));
  ov_sock_addr addr = {};
  const ov_rc result = ov_sock_get_1host_ipaddr(&addr);
  if (result != 0) {
    EXPECT_EQ(2, result);  // the loopback address is there at least
    return;
  }
  int32_t answer = 0;
  EXPECT_EQ(0, ov_sock_is_local_interface_address(&addr, &answer));
  EXPECT_EQ(1, answer);
  char text[18];
  EXPECT_EQ(0, ov_sock_get_mac_addr(nullptr, &addr, text, sizeof text));
  EXPECT_EQ(17U, strlen(text));
}

}  // namespace
