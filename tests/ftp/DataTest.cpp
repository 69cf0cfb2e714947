#include <sys/resource.h>
#include <unistd.h>

#include <future>
#include <set>

#include "ftp/Session.h"
#include "support/FullPort.h"
#include "support/WaitFor.h"

namespace corvane {
namespace {

using namespace std::chrono_literals;

constexpr char kLine[] = "-rw-r--r-- 1 u g 1 Jan 1 10:00 f\r\n";
// A port below the ones that anybody listens on here.
constexpr char kDeadPort[] = "227 Entering Passive Mode (127,0,0,1,0,1)\r\n";

// A PASV reply that names a port where a connect hangs.
std::string Hanging(const FullPort& full) {
  std::uint16_t port = 0;
  full.Address().get(static_cast<char*>(nullptr), &port);
  return "227 (127,0,0,1," + std::to_string(port / 256) + "," + std::to_string(port % 256) +
         ")\r\n";
}

TEST(Passive, FindsThePortWhereverItStands) {
  // The address is not this machine's; the listing comes all the same.
  const std::set<std::string> good = {
      "227 Entering Passive Mode (10,0,0,1,{port})", "227 Port 3 of 4: ( 10 , 0, 0 ,1, {port} ).",
      "227 10,0,0,1,{port}", "227-Passive\r\n227 10,0,0,1,{port}",
      // As replies to EPSV.
      "229 ok (|||{epsv}|)", "229 ok (!!!{epsv}!)", "229 ok ((((({epsv}()", "229 ~~~{epsv}~",
      "229 ok (|||x) |||0| (|||{epsv}|)"};
  std::set<std::string> all = {"227 ok (10,0,0,1,4)",
                               "227 ok (10,0,0,1,256,1)",
                               "227 ok (10,0,0,999,{port})",
                               "227",
                               "227 ok (10,0,0,1,4,-1)",
                               "227 ok (10,0,0,1,0,0)",
                               "229 ok (|||0|)",
                               "229",
                               "229 ok (|||65536|)",
                               "229 ok (|||{epsv})",
                               "229 ok (|||{epsv}",
                               "229 |||",
                               "229 ok (||{epsv}|)",
                               "229 ok (|||-1|)",
                               "229 ok (   {epsv} )"};
  all.insert(good.begin(), good.end());
  for (const std::string& reply : all) {
    const bool wide = reply.starts_with("229");
    const std::string verb = wide ? "EPSV" : "PASV";
    Session s(true, NLAddress(wide ? "::1" : "127.0.0.1", 0));
    s.server.On(verb, {.reply = reply + "\r\n"});
    s.server.On("PORT", {.reply = "425 No\r\n"});
    s.server.On("EPRT", {.reply = "425 No\r\n"});
    s.LogIn();
    const Outcome outcome = s.List();
    const bool taken = good.contains(reply);
    EXPECT_EQ(outcome.kind, taken ? Outcome::Kind::Done : Outcome::Kind::Refused) << reply;
    EXPECT_EQ(s.Sent(), verb + (taken ? "|LIST -la" : wide ? "|EPRT" : "|PORT")) << reply;
    if (!taken)
      EXPECT_TRUE(Told(outcome).starts_with("Refused: The server gave no port for the data"));
    EXPECT_TRUE(s.IsInStep());
  }
}

// What a server does not know is tried in its other form, which is then kept to.
TEST(DataChannel, SpeaksAsItsServerUnderstands) {
  const char* no = "500 No\r\n";
  const char* busy = "425 No\r\n";
  // The address, passive, what is refused, how, and what is sent for two listings.
  const std::tuple<const char*, bool, std::vector<const char*>, const char*, std::string> rows[] = {
      {"::1", true, {}, no, "EPSV|LIST -la|EPSV|LIST -la"},
      {"::1", false, {}, no, "EPRT|LIST -la|EPRT|LIST -la"},
      {"::1", true, {"EPSV"}, no, "EPSV|PASV|LIST -la|PASV|LIST -la"},
      {"::1", true, {"EPSV", "PASV"}, no, "EPSV|PASV|EPRT|LIST -la|EPRT|LIST -la"},
      {"::1", false, {"EPRT"}, "522 Only (1)\r\n", "EPRT|EPSV|LIST -la|EPSV|LIST -la"},
      {"127.0.0.1", true, {"PASV"}, no, "PASV|EPSV|LIST -la|EPSV|LIST -la"},
      {"127.0.0.1", false, {"PORT"}, no, "PORT|EPRT|LIST -la|EPRT|LIST -la"},
      {"127.0.0.1", true, {"PASV"}, busy, "PASV|PORT|LIST -la|PORT|LIST -la"},
      {"127.0.0.1", false, {"PORT", "EPRT"}, no, "PORT|EPRT|PASV|LIST -la|PASV|LIST -la"},
  };
  for (const auto& [host, passive, verbs, reply, sent] : rows) {
    Session s(passive, NLAddress(host, 0));
    for (const char* verb : verbs) s.server.On(verb, {.reply = reply});
    s.server.On("LIST", {.data = kLine});
    s.LogIn();
    for (int i = 0; i < 2; ++i) EXPECT_EQ(Told(s.List()), "Done") << s.server.Dialogue();
    EXPECT_EQ(s.Sent(), sent);
    EXPECT_TRUE(s.IsInStep());
  }
}

// Where one way brings no data connection the other one is tried once, and kept. A file is fetched
// twice; "told" is of the second time.
TEST(DataChannel, FindsTheWayThatWorks) {
  const FullPort full;
  const ScriptedAction no = {.reply = "500 No\r\n"};
  const ScriptedAction dead = {.reply = kDeadPort};
  const ScriptedAction hangs = {.reply = Hanging(full)};
  const ScriptedAction none = {.reply = "425 No\r\n"};
  const ScriptedAction late = {.reply = "150 Wait\r\n425 No\r\n"};
  const ScriptedAction cut = {.reply = "150 Wait\r\n426 No\r\n"};
  const ScriptedAction done = {.reply = "226 Done\r\n"};
  const ScriptedAction never = {.reply = "553 No\r\n"};
  const ScriptedAction stranger = {.strangerFirst = true};
  const std::string refused = ": The server refused the request.\n\nNo";
  const std::string noPassive = "Refused: The server refuses passive connections.\n\nNo";
  const std::string failed = "Busy: Passive connection failed.\n\nNo";
  using Actions = std::vector<ScriptedAction>;
  // Passive, to PASV, to PORT, to each RETR, told and sent.
  const std::tuple<bool, ScriptedAction, ScriptedAction, Actions, std::string, const char*> rows[] =
      {
          {false, {}, no, {{}, {}}, "Done", "PORT|EPRT|PASV|RETR f|PASV|RETR f"},
          {true, no, {}, {{}, {}}, "Done", "PASV|EPSV|PORT|RETR f|PORT|RETR f"},
          {true, dead, {}, {none, {}, {}}, "Done", "PASV|RETR f|PORT|RETR f|PORT|RETR f"},
          {true, hangs, {}, {late, {}, {}}, "Done", "PASV|RETR f|PORT|RETR f|PORT|RETR f"},
          {true, hangs, {}, {done, {}, {}}, "Done", "PASV|RETR f|PORT|RETR f|PORT|RETR f"},
          {false, {}, {}, {none, {}, {}}, "Done", "PORT|RETR f|PASV|RETR f|PASV|RETR f"},
          {false, {}, {}, {late, {}, {}}, "Done", "PORT|RETR f|PASV|RETR f|PASV|RETR f"},
          {false, {}, {}, {done, {}, {}}, "Done", "PORT|RETR f|PASV|RETR f|PASV|RETR f"},
          {false, {}, {}, {stranger, {}}, "Done", "PORT|RETR f|PORT|RETR f"},
          // A refusal that is not about data connections, and one that had come about.
          {true, hangs, {}, {never, never}, "Refused" + refused, "PASV|RETR f|PASV|RETR f"},
          {true, dead, {}, {cut, cut}, failed, "PASV|RETR f|PASV|RETR f"},
          // Neither works: the way that was asked for stays.
          {true, no, no, {}, noPassive, "PASV|EPSV|PORT|EPRT|PASV|EPSV"},
          {false,
           dead,
           {},
           {none, none, none},
           "Busy" + refused,
           "PORT|RETR f|PASV|RETR f|PORT|RETR f"},
          {true, dead, {}, {late, late, late}, failed, "PASV|RETR f|PORT|RETR f|PASV|RETR f"},
      };
  for (const auto& [passive, pasv, port, retr, told, sent] : rows) {
    Session s(passive);
    s.server.Tree().AddFile("/f", "bytes");
    s.server.On("PASV", pasv);
    s.server.On("PORT", port);
    for (const char* wide : {"EPSV", "EPRT"}) s.server.On(wide, no);
    for (std::size_t i = 0; i < retr.size(); ++i)
      s.server.On("RETR", retr[i], static_cast<int>(i) + 1);
    s.LogIn();
    const auto begin = std::chrono::steady_clock::now();
    (void)s.Get("/f");
    EXPECT_EQ(Told(s.Get("/f")), told) << s.server.Dialogue();
    EXPECT_LT(std::chrono::steady_clock::now() - begin, 3s) << s.server.Dialogue();
    EXPECT_EQ(s.raw, told == "Done" ? "bytes" : "");
    EXPECT_EQ(s.Sent(), sent);
    EXPECT_TRUE(s.IsInStep());
  }
}

TEST(DataChannel, FailsByItselfWhereThisMachineHasNoSocketsLeft) {
  Session s;
  s.LogIn();
  EXPECT_TRUE(
      s.List().IsDone());  // a sanitizer opens a pipe where it sees a type for the first time
  rlimit before{};
  ASSERT_EQ(::getrlimit(RLIMIT_NOFILE, &before), 0);
  rlimit none = before;
  none.rlim_cur = 3;
  ASSERT_EQ(::setrlimit(RLIMIT_NOFILE, &none), 0);
  const Outcome outcome = s.List();
  ::setrlimit(RLIMIT_NOFILE, &before);
  EXPECT_EQ(Told(outcome), "LocalError: Too many open files");
  EXPECT_TRUE(s.List().IsDone());
  EXPECT_EQ(s.Sent(), "PORT|LIST -la|PORT|LIST -la");
}

TEST(Transfer, GoesOnlyAsAgreed) {
  // What is replied to which verb, the offset, what is told, what comes and what is sent.
  using Row = std::tuple<const char*, const char*, int, std::string, std::string, const char*>;
  const Row rows[] = {
      {"TYPE", "504 Not binary\r\n", 0, "Refused: Not binary", "", "PORT|TYPE I|PORT|TYPE I"},
      {"TYPE", "331 What?\r\n", 0,
       "Refused: The server is out of step; its reply does not belong to what it was asked: 331 "
       "What?",
       "", "PORT|TYPE I|PORT|TYPE I"},
      {"NOOP", "", 2, "Done", "tes", "PORT|REST 2|RETR f|PORT|RETR f"},
      {"REST", "502 No\r\n", 2, "Done", "bytes", "PORT|REST 2|RETR f|PORT|RETR f"},
      // A marker that no transfer has used is taken back.
      {"RETR", "550 No\r\n", 2, "Refused: No", "", "PORT|REST 2|RETR f|PORT|REST 0|RETR f"},
  };
  for (const auto& [verb, reply, offset, told, bytes, sent] : rows) {
    Session s;
    s.server.Tree().AddFile("/f", "bytes");
    s.server.On(verb, {.reply = reply});
    s.LogIn();
    EXPECT_EQ(Told(s.Get("/f", offset)), told);
    EXPECT_EQ(s.raw, bytes);
    (void)s.Get("/f");
    EXPECT_TRUE(s.raw == "bytes" || bytes.empty()) << s.raw;
    EXPECT_EQ(s.Sent(), sent);
    EXPECT_TRUE(s.IsInStep());
  }
}

// An upload that is broken off halfway, with a verdict and without.
TEST(Transfer, TakesTheVerdictOnWhatItWrites) {
  const std::string bytes(std::size_t{8} << 20, 'b');
  for (const bool passive : {false, true}) {
    for (const bool lost : {false, true}) {
      ScriptedAction action = {.dataLimit = 4, .dataEnd = DataEnd::Reset};
      action.completion = lost ? "" : "452 Full\r\n";
      if (lost) action.control = ControlEnd::Reset;
      Session s(passive);
      s.server.On("STOR", action);
      s.LogIn();
      std::unique_ptr<RemoteFile> file;
      Outcome outcome = s.engine.OpenForWriting("/f", 0, file);
      if (outcome.IsDone()) outcome = file->Write(bytes);
      if (outcome.IsDone()) outcome = file->Finish();
      EXPECT_TRUE(Told(outcome).starts_with(lost ? "Lost: " : "Refused: Error in parameters"));
      EXPECT_EQ(s.IsInStep(), !lost);
    }
  }
}

// Wherever an operation is cancelled it ends soon, and the next one finds the session in step.
TEST(Interrupt, LeavesTheSessionInStep) {
  const FullPort full;
  const std::tuple<bool, const char*, ScriptedAction> cases[] = {
      {false, "PORT", {.late = true}},
      {true, "RETR", {.dataEnd = DataEnd::Stall}},
      {false, "REST", {.late = true}},
      {true, "PASV", {.reply = Hanging(full)}},
  };
  for (const bool close : {false, true}) {
    for (auto [passive, verb, action] : cases) {
      Session s(passive);
      std::atomic<bool> arrived = false;
      action.arrived = [&] { arrived = true; };
      s.server.Tree().AddFile("/f", "bytes");
      s.server.On(verb, action, 1);
      if (std::string_view(verb) == "PASV")
        s.server.On("RETR", {.reply = "150 Wait\r\n425 No\r\n", .late = true}, 1);
      s.LogIn();
      auto got = std::async(std::launch::async, [&] { return s.Get("/f", 2); });
      EXPECT_TRUE(WaitFor([&] { return arrived.load(); }));
      std::this_thread::sleep_for(100ms);
      close ? s.engine.Close() : s.engine.Interrupt();
      ASSERT_EQ(got.wait_for(2s), std::future_status::ready) << s.server.Dialogue();
      EXPECT_EQ(got.get().kind, Outcome::Kind::Cancelled) << s.server.Dialogue();
      if (close) continue;
      s.engine.Resume();
      EXPECT_EQ(Told(s.Get("/f")), "Done") << s.server.Dialogue();
      EXPECT_EQ(s.raw, "bytes") << s.server.Dialogue();
      EXPECT_TRUE(s.IsInStep()) << s.server.Dialogue();
    }
  }
}

}  // namespace
}  // namespace corvane
