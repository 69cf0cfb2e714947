// Replies that cannot be to the command that they follow.

#include <functional>

#include "ftp/Session.h"
#include "support/AtOnce.h"
#include "support/NextHost.h"

namespace corvane {
namespace {

const std::string kOutOfStep =
    "The server is out of step; its reply does not belong to what it was asked: ";

/// Something that a session does, by the verb that it is about.
struct Deed {
  const char* verb;
  std::function<Outcome(Session&)> work;
  std::string own;  ///< codes of those below that may be to the verb
};

const std::vector<Deed> kDeeds = {
    {"CWD", [](Session& s) { return s.engine.RemoveFile("/d/f"); }, ""},
    {"PWD", [](Session& s) { return s.engine.Enter("/d", s.raw); }, "257"},
    {"DELE", [](Session& s) { return s.engine.RemoveFile("/d/f"); }, ""},
    {"RMD", [](Session& s) { return s.engine.RemoveDirectory("/e"); }, ""},
    {"MKD", [](Session& s) { return s.engine.MakeDirectory("/n"); }, "257"},
    {"RNFR", [](Session& s) { return s.engine.Rename("/d/f", "/d/g"); }, "350"},
    {"RNTO", [](Session& s) { return s.engine.Rename("/d/f", "/d/g"); }, ""},
    {"SIZE",
     [](Session& s) {
       std::optional<std::int64_t> size;
       Outcome outcome = s.engine.Size("/d/f", size);
       EXPECT_TRUE(!outcome.IsDone() || size == 5) << s.server.Dialogue();
       return outcome;
     },
     "213"},
    {"PASV", [](Session& s) { return s.List("/d"); }, "227"},
    {"LIST", [](Session& s) { return s.List("/d"); }, "150 226 426"},
    {"RETR", [](Session& s) { return s.Get("/d/f"); }, "150 226 426"},
    {"REST", [](Session& s) { return s.Get("/d/f", 2); }, "350"},
};

// An old one is passed over. Where it is all that is said, nothing is believed for it and the
// session goes on; where even NOOP brings nothing, the connection is gone.
TEST(Step, IsFoundAgainAtEveryCommand) {
  constexpr const char* kOdd[] = {"226 Done", "220 Hello", "257 \"/x\" is it", "213 7",
                                  "331 More", "150 Here",  "230 Come in",      "350 Go on",
                                  "426 Cut",  "215 VMS",   "227 (1,2,3,4,5,6)"};
  enum class Says { Both, OddOnly, Nothing };
  std::vector<std::function<void()>> tasks;
  const auto add = [&tasks](const Deed& deed, const std::string& odd, Says says) {
    tasks.emplace_back([&deed, odd, says] {
      Session s(true, NextHost());
      s.server.Tree().AddFile("/d/f", "bytes");
      s.server.Tree().AddDirectory("/e");
      if (says == Says::Nothing) s.engine.SetWaits(Waits::All(500));
      s.LogIn();
      ScriptedAction action{.before = odd + "\r\n"};
      if (says != Says::Both) action = {.reply = odd + "\r\n"};
      if (says == Says::Nothing) s.server.OnNext("NOOP", {.reply = ""});
      s.server.OnNext(deed.verb, action);
      const Outcome outcome = deed.work(s);
      const std::string where = deed.verb + (": " + odd) + "\n" + s.server.Dialogue();
      const bool believed = outcome.IsDone();
      // Some can be done without, or in another way.
      const bool optional = std::string_view("PWD PASV REST").find(deed.verb) != std::string::npos;
      EXPECT_TRUE(says == Says::Nothing || believed == (says == Says::Both || optional))
          << Told(outcome) << where;
      if (says == Says::Both && deed.verb == std::string("RETR")) EXPECT_EQ(s.raw, "bytes");
      if (says == Says::Both && deed.verb == std::string("PWD")) EXPECT_EQ(s.raw, "/d") << where;
      if (says == Says::OddOnly && !believed)
        EXPECT_EQ(Told(outcome), "Refused: " + kOutOfStep + odd) << where;
      EXPECT_EQ(says == Says::Nothing, s.engine.IsLost()) << where;
      EXPECT_TRUE(s.engine.IsLost() || s.IsInStep()) << s.server.Dialogue();
    });
  };
  for (const Deed& deed : kDeeds) {
    for (const std::string odd : kOdd) {
      if (deed.own.find(odd.substr(0, 3)) != std::string::npos) continue;
      add(deed, odd, Says::Both);
      if (odd.starts_with("331") || odd.starts_with("220")) add(deed, odd, Says::OddOnly);
    }
    add(deed, "331 More", Says::Nothing);
  }
  RunAtOnce(tasks, 24);
}

// What replies to a login mean, and what is sent; and what the path is that is told behind it.
TEST(Step, IsKeptAtTheLogin) {
  const std::string failed = "Refused: Login to: 127.0.0.1 failed.\n";
  const std::string account =
      "Refused: The server asks for an account in addition to the password.";
  const std::string gone = "Lost: Connection to:  127.0.0.1 FAILED!\n\n";
  const std::string in = "|SYST|PWD|TYPE I";
  const std::tuple<std::string, std::string, std::string, std::string> cases[] = {
      {"USER", "230 Come in", "Done", "FEAT|USER u" + in},
      {"USER", "232 I know you", "Done", "FEAT|USER u" + in},
      {"USER", "332 Account?", account + "\n\nAccount?", "FEAT|USER u"},
      {"PASS", "332 Account?", account + "\n\nAccount?", "FEAT|USER u|PASS p"},
      {"PASS", "202 Needless", "Done", "FEAT|USER u|PASS p" + in},
      {"USER", "200 Fine", "Done", "FEAT|USER u|PASS p" + in},
      {"USER", "226 Done", "Refused: " + kOutOfStep + "226 Done", "FEAT|USER u|NOOP"},
      {"PASS", "220 Hello", "Refused: " + kOutOfStep + "220 Hello", "FEAT|USER u|PASS p|NOOP"},
      {"greeting", "120 Wait\r\n220 Ready", "Done", "FEAT|USER u|PASS p" + in},
      {"greeting", "120 Wait\r\n120 A bit",
       gone + "The server says again and again that it will be ready later: A bit", ""},
      {"greeting", "331 Who?", gone + "The server is out of step\n\n331 Who?", ""},
  };
  for (const auto& [verb, reply, told, sent] : cases) {
    Session s;
    s.server.OnNext(verb, {.reply = reply + "\r\n"});
    EXPECT_EQ(Told(s.engine.Connect()), told) << s.server.Dialogue();
    EXPECT_EQ(s.Sent(), sent);
  }
  for (const std::string verb : {"USER", "PASS"}) {
    Session s;
    s.ui->answer = UserQuestion::Answer::Once;
    s.ui->passphrase = "for books";
    s.server.OnNext(verb, {.reply = "332 Account?\r\n"});
    s.server.OnNext("ACCT", {.reply = "230 Come in\r\n"});
    EXPECT_EQ(Told(s.engine.Connect()), "Done") << s.server.Dialogue();
    EXPECT_EQ(s.Sent("ACCT"), "ACCT for books");
    s.ui->answer = UserQuestion::Answer::No;
    s.server.OnNext(verb, {.reply = "332 Account?\r\n"});
    s.server.OnNext("ACCT", {.reply = "230 Come in\r\n"});
    EXPECT_EQ(Told(s.engine.Connect()), "Done") << "it is asked for once";
    EXPECT_EQ(s.ui->Seen().log.find("books"), std::string::npos);
  }
}

}  // namespace
}  // namespace corvane
