#include <gtest/gtest.h>

#include <functional>
#include <thread>

#include "queue/Governor.h"
#include "queue/SpeedLimit.h"

namespace corvane {
namespace {

using namespace std::chrono_literals;

// A transfer of which `pace` tells how many bytes a second so many connections move together.
struct Simulation {
  const char* what;
  int most;
  int jobs;  // that can be worked on at once
  std::function<double(int)> pace;
  int first;    // wanted at once
  int settled;  // wanted after a while
  bool plenty = false;
};

TEST(GovernorTest, FindsHowManyConnectionsAreWorthIt) {
  constexpr double kMany = 1e6;
  const auto upTo = [](int best) { return [best](int n) { return kMany * std::min(n, best); }; };
  const std::vector<Simulation> cases{
      {"linear to 8", 8, 2000, upTo(8), 4, 8},
      {"linear to 8, of 16", 16, 2000, upTo(8), 8, 8},
      {"plateau at 3", 4, 2000, upTo(3), 2, 3},
      {"plateau at 6", 8, 2000, upTo(6), 4, 6},
      {"worse beyond 2", 4, 2000, [](int n) { return kMany * (n <= 2 ? n : 1.5); }, 2, 2},
      {"all the same", 4, 2000, [](int) { return kMany; }, 2, 2},
      {"one big file", 8, 1, upTo(8), 1, 1},
      {"three files", 8, 3, upTo(8), 3, 3},
      {"one allowed", 1, 2000, upTo(8), 1, 1},
      {"nothing moves", 8, 2000, [](int) { return 0.0; }, 4, 4},
      {"only small files", 8, 2000, {}, 4, 8},
      {"linear, plenty", 8, 2000, upTo(8), 8, 8, true},
      {"plateau at 3, plenty", 4, 2000, upTo(3), 4, 3, true},
      {"plateau at 6, plenty", 8, 2000, upTo(6), 8, 6, true},
      {"worse beyond 2, plenty", 4, 2000, [](int n) { return kMany * (n <= 2 ? n : 1.5); }, 4, 2,
       true},
      {"all the same, plenty", 16, 2000, [](int) { return kMany; }, 16, 8, true},
      {"plenty that is not found yet", 8, 3, upTo(8), 3, 3, true},
      {"one allowed, plenty", 1, 2000, upTo(8), 1, 1, true},
      {"nothing moves, plenty", 8, 2000, [](int) { return 0.0; }, 8, 8, true},
  };
  for (const Simulation& c : cases) {
    SCOPED_TRACE(c.what);
    Governor governor(c.most);
    Governor::Sample sample{.now = Governor::Time(1s), .plenty = c.plenty};
    double bytes = 0;
    int highest = 0;
    const int looks = c.plenty ? 400 : 80;  // 20 s, 4 s
    for (int i = 0; i < looks; ++i) {
      sample.ready = c.jobs - sample.connected;
      const int wanted = governor.Wanted(sample);
      if (i == 0) EXPECT_EQ(wanted, c.first);
      EXPECT_LE(wanted, std::min(c.most, c.jobs));
      highest = std::max(highest, wanted);
      // They come one by one, and go at once.
      sample.connected = std::min(sample.connected + 1, wanted);
      sample.now += 50ms;
      if (c.pace) bytes += c.pace(sample.connected) / 20;
      if (!c.pace) sample.files += sample.connected;
      sample.bytes = static_cast<std::int64_t>(bytes);
    }
    EXPECT_EQ(governor.Wanted(sample), c.settled);
    if (!c.plenty)
      EXPECT_LE(highest, c.settled * 3 / 2) << "it tries a little more than is worth it";
    if (c.plenty && c.settled == c.most && c.pace)
      EXPECT_GE(bytes, c.pace(c.most) * 0.95 * looks / 20) << "trying costs little";
    governor.Lower(2);
    EXPECT_EQ(governor.Wanted(sample), std::min(2, c.settled));
  }
}

TEST(GovernorTest, AsksAgainAfterAWhileAndFollowsTheWorkThereIs) {
  Governor governor(4);
  Governor::Sample sample{.now = Governor::Time(1s), .ready = 1};
  EXPECT_EQ(governor.Wanted(sample), 1) << "a folder that is to be looked through";
  sample.connected = 1;
  sample.ready = 500;
  EXPECT_EQ(governor.Wanted(sample), 2);
  int tries = 0;
  int before = 2;
  const auto run = [&](std::chrono::seconds length, int best) {
    for (const auto end = sample.now + length; sample.now < end; sample.now += 50ms) {
      const int wanted = governor.Wanted(sample);
      tries += wanted > before ? 1 : 0;
      sample.connected = before = wanted;
      sample.bytes += 1000 * std::min(best, sample.connected);
    }
  };
  run(5s, 2);
  EXPECT_EQ(tries, 1);
  EXPECT_EQ(before, 2);
  run(11s, 2);
  EXPECT_EQ(tries, 3);
  run(7s, 4);
  EXPECT_EQ(before, 4) << "the way has become wider";
  sample.ready = 0;
  sample.connected = 3;
  EXPECT_EQ(governor.Wanted(sample), 3) << "the last ones end their files";
}

TEST(SpeedLimitTest, SharesOnePaceAndFollowsItsChanges) {
  SpeedLimit limit;
  std::atomic<bool> cancelled{false};
  const auto begin = std::chrono::steady_clock::now();
  const auto passed = [&] { return std::chrono::steady_clock::now() - begin; };
  limit.Count(1 << 30, cancelled);
  EXPECT_EQ(limit.Piece(1 << 20), 1U << 20);
  EXPECT_LT(passed(), 100ms) << "there is no limit";
  limit.Set(1'000'000);
  EXPECT_LE(limit.Piece(1 << 20), 100'000U);
  const auto move = [&] {
    for (int i = 0; i < 10; ++i) limit.Count(20'000, cancelled);
  };
  std::thread other(move);
  move();
  other.join();
  EXPECT_GT(passed(), 380ms) << "400,000 bytes";
  EXPECT_LT(passed(), 700ms);
  limit.Set(1000);
  std::thread waits([&] { limit.Count(1'000'000, cancelled); });
  std::this_thread::sleep_for(50ms);
  limit.Set(50'000'000);
  waits.join();
  EXPECT_LT(passed(), 1000ms) << "who waits hears of it";
  limit.Set(1);
  std::thread cancels([&] { limit.Count(1'000'000, cancelled); });
  std::this_thread::sleep_for(50ms);
  cancelled = true;
  cancels.join();
  EXPECT_LT(passed(), 1300ms);
}

}  // namespace
}  // namespace corvane
