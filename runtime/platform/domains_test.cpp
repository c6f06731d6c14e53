#include "runtime/platform/internal.h"

#include <gtest/gtest.h>

#include <atomic>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "tests/support/runtime/captured_log.h"
#include "tests/support/runtime/fake_identity.h"

namespace {

using Messages = std::vector<std::string>;
using ov::fake_identity;

constexpr int kThreads = 8;
constexpr int kRounds = 2000;

std::string resolved(const std::string& domain) {
  char out[ov::kNameSize] = "";
  return ov::remembered_domain_name(domain.c_str(), out, sizeof out) == 0 ? out : "<none>";
}

// Whether the domain has to be asked for.
bool isNew(const std::string& domain) {
  const size_t before = fake_identity.asked.size();
  EXPECT_EQ(fake_identity.domains[ov::lower(domain)], resolved(domain));
  return fake_identity.asked.size() != before;
}

class DomainsTest : public ::testing::Test {
 protected:
  DomainsTest() {
    fake_identity = {};
    for (int i = 0; i < 30; ++i) fake_identity.domains[name(i)] = "Flat" + std::to_string(i);
  }
  static std::string name(int i) { return "domain" + std::to_string(i); }
};

TEST_F(DomainsTest, FiniNeedsInit) {
  EXPECT_EQ(22, ov_platform_fini());
  EXPECT_EQ(0, ov_platform_init());
  EXPECT_EQ(0, ov_platform_init());
  EXPECT_EQ(0, ov_platform_fini());
  EXPECT_EQ(0, ov_platform_fini());
  EXPECT_EQ(22, ov_platform_fini());
}

TEST_F(DomainsTest, DomainIsAskedForOnce) {
  ov_platform_init();
  EXPECT_TRUE(isNew("domain1"));
  EXPECT_FALSE(isNew("domain1"));
  EXPECT_FALSE(isNew("DOMAIN1"));
  EXPECT_TRUE(isNew("domain11"));
  ov_platform_init();
  ov_platform_fini();
  EXPECT_FALSE(isNew("domain1"));
  ov_platform_fini();
  ov_platform_init();
  EXPECT_TRUE(isNew("domain1"));
  ov_platform_fini();
}

TEST_F(DomainsTest, TwentyFirstDomainReplacesTheOneUsedLongestAgo) {
  ov_platform_init();
  for (int i = 0; i < 20; ++i) EXPECT_TRUE(isNew(name(i)));
  EXPECT_FALSE(isNew(name(0)));
  EXPECT_TRUE(isNew(name(20)));  // takes the place of 1
  EXPECT_FALSE(isNew(name(0)));
  for (int i = 2; i < 21; ++i) EXPECT_FALSE(isNew(name(i))) << i;
  EXPECT_TRUE(isNew(name(1)));  // takes the place of 0
  EXPECT_TRUE(isNew(name(0)));
  EXPECT_TRUE(isNew(name(2)));
  ov_platform_fini();
}

TEST_F(DomainsTest, UnknownDomainIsNotKeptAndReplacesNothing) {
  ov_platform_init();
  for (int i = 0; i < 20; ++i) EXPECT_TRUE(isNew(name(i)));
  EXPECT_EQ("<none>", resolved("unknown"));
  EXPECT_EQ("<none>", resolved("unknown"));
  EXPECT_EQ(22U, fake_identity.asked.size());
  char out[8];
  EXPECT_EQ(2, ov::remembered_domain_name("unknown", out, sizeof out));
  for (int i = 0; i < 20; ++i) EXPECT_FALSE(isNew(name(i))) << i;
  EXPECT_EQ(28677, ov::remembered_domain_name("domain1", out, 4));
  ov_platform_fini();
}

TEST_F(DomainsTest, UseWithoutInitIsNotedOnce) {
  ov::CapturedLog log;
  ov_dbg_set_all(1);
  EXPECT_TRUE(isNew("domain1"));
  EXPECT_FALSE(isNew("domain1"));
  EXPECT_EQ(Messages{"DBG Nobody called ov_platform_init(). Resources may be leaked at program "
                     "exit."},
            log.take());
  EXPECT_EQ(0, ov_platform_fini());
  EXPECT_EQ(22, ov_platform_fini());
  ov_dbg_set_all(0);
  EXPECT_TRUE(isNew("domain1"));
  EXPECT_EQ(Messages{}, log.take());
  EXPECT_EQ(0, ov_platform_fini());
}

TEST_F(DomainsTest, LookUpHoldsUpNoOther) {
  ov_platform_init();
  EXPECT_TRUE(isNew("domain1"));
  fake_identity.on_ask = [](const std::string& domain) {
    if (domain != "domain2") return;
    std::thread([] { EXPECT_EQ("Flat1", resolved("domain1")); }).join();
    std::thread([] { EXPECT_EQ("Flat3", resolved("domain3")); }).join();
  };
  EXPECT_EQ("Flat2", resolved("domain2"));
  fake_identity.on_ask = nullptr;
  for (int i = 1; i < 4; ++i) EXPECT_FALSE(isNew(name(i))) << i;
  ov_platform_fini();
}

TEST_F(DomainsTest, DomainThatTwoAskForAtOnceTakesOnePlace) {
  ov_platform_init();
  for (int i = 0; i < 19; ++i) EXPECT_TRUE(isNew(name(i)));
  bool first = true;
  fake_identity.on_ask = [&first](const std::string&) {
    if (!std::exchange(first, false)) return;
    std::thread([] { EXPECT_EQ("Flat19", resolved("domain19")); }).join();
  };
  EXPECT_EQ("Flat19", resolved("domain19"));
  fake_identity.on_ask = nullptr;
  for (int i = 0; i < 20; ++i) EXPECT_FALSE(isNew(name(i))) << i;
  ov_platform_fini();
}

TEST_F(DomainsTest, ManyThreadsShareTheDomains) {
  std::atomic<int> wrong = 0;
  std::vector<std::thread> threads;
  for (int thread = 0; thread < kThreads; ++thread) {
    threads.emplace_back([thread, &wrong] {
      for (int round = 0; round < kRounds; ++round) {
        const int number = (round * (thread + 1) + thread) % 33;
        char text[64];
        ov_snprintf(text, sizeof text, "Bob@Domain%d", number);
        const std::string domain = number < 30 ? "FLAT" : "DOMAIN";
        const bool right = ov_platform_normalize_user_name_ex(text, sizeof text, 3) == 0 &&
                           domain + std::to_string(number) + "\\bob" == text;
        wrong += right ? 0 : 1;
        if (thread % 2 == 0 && round % 50 == 0) {
          wrong += ov_platform_init() != 0 ? 1 : 0;
          wrong += ov_platform_fini() != 0 ? 1 : 0;
        }
        if (thread == 1 && round % 100 == 0) ov_platform_normalize_set_level(round % 4);
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(0, wrong);
  EXPECT_GE(fake_identity.asked.size(), 33U);
  ov_platform_normalize_set_level(3);
  while (ov_platform_fini() == 0) {
  }
}

}  // namespace
