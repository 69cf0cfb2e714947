#include <gtest/gtest.h>

#include "FaultMatrix.h"
#include "ftp/MFtp.h"
#include "support/RecordingBrowserUi.h"
#include "support/WaitFor.h"
#include "workers/RightsChanger.h"

namespace corvane {
namespace {

using namespace std::chrono_literals;

struct End : WalkUi {
  bool Found(std::vector<FoundEntry> /*entries*/) override { return true; }
  void Ended(const WalkEnd& how) override {
    end = how;
    over = true;
  }
  WalkEnd end;
  std::atomic<bool> over{false};
};

std::size_t CountOf(const std::string& text, std::string_view part) {
  std::size_t count = 0;
  for (std::size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + 1))
    ++count;
  return count;
}

}  // namespace

std::vector<std::string> Try(const Rights& /*rights*/, const Cell& cell) {
  FaultServer server(cell);
  server.On("SITE", {.reply = "200 Changed.\r\n"});
  server.On("MFMT", {.reply = "213 Modify=20010909014640; d\r\n"});
  const auto ui = std::make_shared<RecordingBrowserUi>();
  ui->answer = UserQuestion::Answer::Once;
  const auto make = [](const Site& site, const std::shared_ptr<OwnerUi>& owner,
                       std::shared_ptr<Habits> habits) {
    auto session = std::make_shared<MFtp>(site, owner, nullptr, std::move(habits));
    session->SetWaits(kWaits);
    return session;
  };
  const std::shared_ptr<MFtp> session = make(server.site, ui, nullptr);
  EXPECT_TRUE(session->Connect().IsDone()) << server.Dialogue();
  (void)server.Verbs();
  const auto end = std::make_shared<End>();
  RightsOrder order{.directory = "/", .rights = RightsChange{0777, 0750}};
  if (cell.modern) order.time = 1'000'000'000;
  order.entries.push_back({.name = "d", .kind = RemoteEntry::Kind::Directory});
  order.below = RightsOrder::Below::Everything;
  const auto walk = std::make_shared<RightsChanger>(
      TreeWalk::Ways{server.site, std::make_shared<SessionPool>(make), session, ui, 1}, end, order);
  if (cell.fault != nullptr) {
    ScriptedAction action = ActionOf(*cell.fault, cell.verb);
    if (cell.fault->user != Fault::User::Waits) action.arrived = [&walk] { walk->Cancel(); };
    server.OnNext(cell.verb, action);
  }
  EXPECT_TRUE(walk->Run());
  EXPECT_TRUE(WaitFor([&] { return end->over.load(); }, 8s)) << server.Dialogue();
  const bool well = end->end.outcome.IsDone() && end->end.refused == 0;
  EXPECT_TRUE(!well || CountOf(server.Dialogue(), "< 200 Changed.") >= 3) << "claimed\n"
                                                                          << server.Dialogue();
  EXPECT_TRUE(well || cell.fault != nullptr)
      << end->end.outcome.text.English() << end->end.refusals.English() << server.Dialogue();
  std::vector<std::string> verbs = server.Verbs();
  const bool gone = !session->IsAlive();
  bool exists = false;
  EXPECT_TRUE(gone || (session->Exists("/keep", exists).IsDone() && exists)) << server.Dialogue();
  return verbs;
}

}  // namespace corvane
