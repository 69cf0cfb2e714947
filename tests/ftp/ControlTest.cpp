#include <gtest/gtest.h>

#include <future>

#include "ftp/Session.h"
#include "net/NLException.h"
#include "settings/ProcessSettings.h"
#include "support/WaitFor.h"

namespace corvane {
namespace {

using namespace std::chrono_literals;

std::string ErrorOf(const std::function<void()>& work) {
  try {
    work();
  } catch (const NLException& error) {
    return Reason(error);
  }
  return "no error";
}

TEST(Control, ReadsRepliesWhole) {
  const struct {
    std::string bytes;
    int code;
    std::string lastText;
  } cases[] = {
      {"200 Fine\r\n", 200, "Fine\n"},
      {"220-Welcome\r\n220-to the server\r\n220 Ready\r\n", 220, "Ready\n"},
      {"230-Hello\r\n   and more text\r\n230 Logged in\n", 230, "Logged in\n"},
      // Free text with a blank in fourth place, or with another code, does not end the reply.
      {"230-Hello\r\nThe end\r\n226 no end either\r\n230 Yes\r\n", 230, "Yes\n"},
      {"200 Odd end\xEC", 200, "Odd end\xEC"},
      {"200 \xEC\x97\xAC\xEC\xEC\x97\xAC\r\n", 200, "\xEC\x97\xAC\xEC"},
      {"250 \xEC\x97\xAC\xEA\xB0\x80\r\n", 250, "\xEC\x97\xAC\xEA\xB0\x80\n"},
      {"Hey there\r\n", 0, "there\n"},
      {"200\r\n", 200, ""},
  };
  for (const bool byByte : {false, true}) {
    for (const auto& c : cases) {
      Session s;
      s.server.On("NOOP", {.reply = c.bytes, .byteByByte = byByte}, 1);
      s.LogIn();
      EXPECT_EQ(s.engine.SendCommand("NOOP\n"), c.code) << c.bytes;
      EXPECT_EQ(s.engine.LastReplyText(), c.lastText) << c.bytes;
      if (c.bytes.find("Odd") == std::string::npos &&
          c.lastText.find("\xEC\xEC") == c.lastText.npos && !c.lastText.ends_with("\xEC"))
        EXPECT_EQ(s.engine.SendCommand("SYST\n"), 215) << "out of step after " << c.bytes;
    }
  }
}

TEST(Control, EndsOnWhatIsNoReply) {
  const struct {
    ScriptedAction action;
    std::string error;
  } cases[] = {
      {{.reply = "", .control = ControlEnd::Close}, "The server closed the connection"},
      {{.reply = "200 half a li", .control = ControlEnd::Close},
       "The server closed the connection"},
      {{.reply = "", .control = ControlEnd::Reset}, "Connection reset by peer"},
      {{.reply = ""}, "The server does not answer"},
      {{.reply = "SSH-2.0-Server\r\n"}, "The server does not speak FTP"},
      {{.reply = std::string(70'000, 'x')}, "A line of the server's reply is too long"},
      {{.reply = "200-" + std::string(60'000, 'x') + "\r\n"}, "The server does not answer"},
  };
  for (const auto& c : cases) {
    Session s;
    s.engine.silenceLimit = 300;
    s.server.On("NOOP", c.action);
    s.LogIn();
    EXPECT_EQ(ErrorOf([&] { s.engine.SendCommand("NOOP\n"); }), c.error);
    EXPECT_TRUE(s.engine.Lost());
    EXPECT_EQ(ErrorOf([&] { s.engine.SendCommand("NOOP\n"); }), "The connection is closed");
  }
  Session s;
  std::string endless;
  for (int i = 0; i < 40; ++i) endless += "200-" + std::string(30'000, 'x') + "\r\n";
  s.server.On("NOOP", {.reply = endless});
  s.LogIn();
  EXPECT_EQ(ErrorOf([&] { s.engine.SendCommand("NOOP\n"); }), "The server's reply is too long");
}

TEST(Control, PutsCommandsOnTheWireAsTheyAre) {
  Session s;
  s.LogIn();
  s.engine.SendCommand("CWD a b\n");
  EXPECT_EQ(s.engine.Send("NOOP\n"), 1);
  s.engine.ReadResponse();
  for (const std::string bad : {"CWD a\nDELE b\n", "CWD a\rb\n", "NOOP", ""}) {
    EXPECT_EQ(s.engine.SendCommand(bad), 0) << bad;
    EXPECT_EQ(s.engine.Send(bad), 0) << bad;
    EXPECT_EQ(s.engine.ReturnResponse(bad), "") << bad;
  }
  EXPECT_EQ(s.engine.SendCommand(std::string("CWD a\0b\n", 8)), 0);
  EXPECT_EQ(s.Sent(), "CWD a b\r\nNOOP\n");
  EXPECT_EQ(s.Warnings().size(), 13U);
  const std::string log = s.browser->Seen().log;
  EXPECT_NE(log.find("PASS\n"), std::string::npos);
  EXPECT_EQ(log.find("PASS p"), std::string::npos);
}

TEST(Control, JudgesReplies) {
  const struct {
    int code;
    int result;
    std::string warning;
  } cases[] = {
      {120, 1, ""},
      {350, 1, ""},
      {331, 331, ""},
      {453, 453, ""},
      {0, 0, ""},
      {425, 0, ""},
      {421, 0, "Service not available, closing control connection!\n"},
      {426, 0, "Error in parameters\n"},
      {501, 0, "Error in parameters\n"},
      {502, 0, "Command not implemented!\n"},
      {503, 0, "Bad sequence of commands!\n"},
      {504, 0, "pub: already exists.\n"},
      {550, 0, "pub: already exists.\n"},
      {552, 0, ""},
  };
  Session s;
  s.server.On("NOOP", {.reply = "504 pub: already exists.\r\n"});
  s.LogIn();
  s.engine.SendCommand("NOOP\n");
  for (const auto& c : cases) {
    const std::size_t before = s.Warnings().size();
    EXPECT_EQ(s.engine.CheckResult(c.code), c.result) << c.code;
    const auto warnings = s.Warnings();
    EXPECT_EQ(warnings.size() > before ? warnings.back() : "", c.warning) << c.code;
  }
  s.browser->listingEnabled = false;
  EXPECT_EQ(s.engine.CheckResult(550), 1);
}

struct LoginCase {
  const char* verb;
  ScriptedAction action;
  std::string error;
  const char* rowLabel;
  int rowResult;
};

TEST(Login, ReportsEveryFailure) {
  const std::string gone = "Connection to:  127.0.0.1 FAILED!\n";
  const std::string refused = "Login to: 127.0.0.1 failed.\n\n";
  const std::string wrong = "Login to: 127.0.0.1 failed.\nInvalid Username or Password.";
  const LoginCase cases[] = {
      {"greeting", {.reply = "", .control = ControlEnd::Close}, gone, "Connection failed.", -1},
      {"greeting",
       {.reply = "220 he", .control = ControlEnd::Reset},
       gone,
       "Connection failed.",
       -1},
      {"greeting", {.reply = "421 Full\r\n"}, gone, "Connection failed.", -1},
      {"greeting", {.reply = "530 Full\r\n"}, gone, "Connection failed.", -1},
      {"greeting", {.reply = "\x01\x02garbage\n"}, gone, "Connection failed.", -1},
      {"greeting", {.reply = ""}, gone, "Connection failed.", -1},
      {"USER", {.reply = "", .control = ControlEnd::Close}, gone, "Connection failed.", -1},
      {"USER", {.reply = "530 No\r\n"}, refused + "Username is invalid", "Sending Username.", 0},
      {"USER", {.reply = "500 What?\r\n"}, refused + "What?\n", "Login failed.", -1},
      {"PASS", {.reply = "530 No\r\n"}, wrong, "Sending Password.", 0},
      {"PASS",
       {.reply = "550 No\r\n"},
       "Login to: 127.0.0.1 as anonymous failed.",
       "Login failed.",
       -1},
      {"PASS", {.reply = "503 USER first\r\n"}, refused + "USER first\n", "Login failed.", -1},
      {"PASS", {.reply = "", .control = ControlEnd::Reset}, gone, "Connection failed.", -1},
  };
  SettingsValues sounds;
  sounds.loginFsnd = "bad.wav";
  ProcessSettings::Set(sounds);
  for (const auto& c : cases) {
    Session s;
    s.engine.silenceLimit = 300;
    s.server.On(c.verb, c.action);
    EXPECT_EQ(s.engine.Login(), 0) << c.verb << *c.action.reply;
    EXPECT_EQ(s.Errors(), std::vector<std::string>{c.error}) << c.verb;
    EXPECT_EQ(s.browser->Seen().sounds, std::vector<std::string>{"bad.wav"});
    if (std::string(c.verb) == "USER") {
      for (const std::string& line : s.server.Transcript()) EXPECT_FALSE(line.starts_with("PASS"));
    }

    TransferSession t;
    t.engine.silenceLimit = 300;
    t.server.On(c.verb, c.action);
    EXPECT_EQ(t.engine.Login(), c.rowResult) << c.verb;
    EXPECT_EQ(t.row->Seen().labels.back(), c.rowLabel) << c.verb;
    EXPECT_FALSE(t.engine.LastFailure().empty());
    EXPECT_TRUE(t.row->Seen().Texts("GERR"_what, "warning").empty());
  }
  ProcessSettings::Set({});
}

TEST(Login, FailsWithoutAServer) {
  auto browser = std::make_shared<RecordingBrowserUi>();
  std::uint16_t port = 0;
  { port = ScriptedServer().Port(); }
  EXPECT_EQ(MFtp("127.0.0.1", port, "u", "p", true, browser).Login(), 0);
  EXPECT_EQ(MFtp("no-such-host.invalid", 21, "u", "p", true, browser).Login(), 0);
  const auto errors = browser->Seen().Texts("FERR"_what, "error");
  ASSERT_EQ(errors.size(), 2U);
  EXPECT_EQ(errors[0], "Connection to:  127.0.0.1 FAILED!\n");
  EXPECT_EQ(errors[1], "Could not resolve the address for:\n\n no-such-host.invalid");
  EXPECT_EQ(browser->Seen().Texts("FERR"_what, "detail"),
            std::vector<std::string>{"Connection refused"});
}

TEST(Login, GoesThroughAProxy) {
  const struct {
    bool withAddress;
    const char* host;
  } cases[] = {{true, "ftp.example"}, {false, "127.0.0.1"}};
  for (const auto& c : cases) {
    ScriptedServer server;
    SettingsValues settings;
    settings.useProxy = true;
    settings.proxyAddress = c.withAddress ? "127.0.0.1" : "";
    settings.proxyPort = std::to_string(server.Port());
    ProcessSettings::Set(settings);
    auto browser = std::make_shared<RecordingBrowserUi>();
    MFtp engine(c.host, server.Port(), "u", "p", true, browser);
    EXPECT_EQ(engine.Login(), 1);
    EXPECT_EQ(server.Transcript().at(0), std::string("USER u@") + c.host + "\r\n");
    EXPECT_EQ(browser->Seen().statuses,
              (std::vector<std::string>{"Resolving address.", "Connecting to host.", "Connected.",
                                        "Sending Username.", "Sending Password."}));
  }
  ProcessSettings::Set({});
}

TEST(Login, LearnsTheServerAndItsDirectory) {
  const struct {
    const char* syst;
    const char* pwd;
    bool passive;
    int type;
    const char* path;
    const char* list;
  } cases[] = {
      {"215 Windows_NT version 4.0\r\n", "257 \"/\" is current\r\n", false, 1, "/", "LIST\r\n"},
      {"215 UNIX Type: L8\r\n", "257 \"/a \"\"b\"\" c\" x\r\n", true, 0, "/a \"b\" c",
       "LIST -la\r\n"},
      {"215 UNIX AppleShare IP FTP Server\r\n", "257 /plain\r\n", true, 2, "/plain", "LIST\r\n"},
      {"500 What?\r\n", "502 No\r\n", false, 0, "", "LIST -la\r\n"},
      {"215\r\n", "257 \"\r\n", false, 0, "", "LIST -la\r\n"},
  };
  for (const auto& c : cases) {
    Session s(c.passive);
    s.server.On("SYST", {.reply = c.syst});
    s.server.On("PWD", {.reply = c.pwd});
    s.LogIn();
    s.engine.GetServerType();
    s.engine.SetPWD();
    EXPECT_EQ(s.engine.ReturnServerType(), c.type) << c.syst;
    EXPECT_EQ(s.browser->Seen().path, c.path) << c.pwd;
    EXPECT_TRUE(s.engine.SetUpData());
    EXPECT_TRUE(s.engine.GetListing().whole);
    EXPECT_TRUE(s.Sent().ends_with(c.list)) << s.Sent();
  }
}

TEST(Login, StopsAtOnceWhenClosed) {
  for (const char* verb : {"greeting", "USER", "PASS", "SYST"}) {
    Session s;
    s.engine.silenceLimit = 60'000;
    std::atomic<bool> arrived = false;
    s.server.On(verb, {.arrived = [&] { arrived = true; }, .reply = ""});
    auto done = std::async(std::launch::async, [&] {
      return ErrorOf([&] {
        if (s.engine.Login() == 1) s.engine.GetServerType();
      });
    });
    ASSERT_TRUE(WaitFor([&] { return arrived.load(); }));
    s.engine.Close();
    EXPECT_EQ(done.wait_for(1s), std::future_status::ready) << verb;
    EXPECT_TRUE(s.Errors().empty());
  }
}

}  // namespace
}  // namespace corvane
