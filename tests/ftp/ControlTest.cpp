#include "ftp/Session.h"
#include "net/NLException.h"
#include "settings/ProcessSettings.h"
#include "support/RecordingTransferUi.h"

namespace corvane {
namespace {

using namespace std::literals;

TEST(Control, ReadsRepliesWhole) {
  const std::string odd = "200 \xEC\x97\xAC\xEC";
  const std::tuple<std::string, int, std::string> cases[] = {
      {"200 Fine\r\n", 200, "Fine\n"},
      {"220-Welcome\r\n220-to the server\r\n220 Ready\r\n", 220, "Ready\n"},
      {"230-Hello\r\n   and more text\r\n230 Logged in\n", 230, "Logged in\n"},
      // Free text with a blank in fourth place, or with another code, does not end the reply.
      {"230-Hello\r\nThe end\r\n226 no end either\r\n230 Yes\r\n", 230, "Yes\n"},
      {"200 Odd end\xEC", 200, "Odd end\xEC"},
      {odd + "215 Behind an odd end\r\n", 200, odd.substr(4)},
      {"250 \xEC\x97\xAC\xEA\xB0\x80\r\n", 250, "\xEC\x97\xAC\xEA\xB0\x80\n"},
      {"Hey there\r\n", 0, "there\n"},
      {"200\r\n", 200, ""},
  };
  for (const bool byByte : {false, true}) {
    for (const auto& [bytes, code, lastText] : cases) {
      Session s;
      s.server.On("NOOP", {.reply = bytes, .byteByByte = byByte});
      s.LogIn();
      EXPECT_EQ(s.engine.SendCommand("NOOP\n"), code) << bytes;
      EXPECT_EQ(s.engine.LastReplyText(), lastText) << bytes;
      EXPECT_EQ(s.engine.SendCommand("SYST\n"), 215) << "out of step after " << bytes;
    }
  }
}

TEST(Control, EndsOnWhatIsNoReply) {
  const std::string line(60'000, 'x');
  std::string endless;
  for (int i = 0; i < 20; ++i) endless += "200-" + line + "\r\n";
  const std::pair<ScriptedAction, std::string> cases[] = {
      {{.reply = "200 a", .control = ControlEnd::Close}, "The server closed the connection"},
      {{.reply = "", .control = ControlEnd::Reset}, "Connection reset by peer"},
      {{.reply = "200-" + line + "\r\n"}, "The server does not answer"},
      {{.reply = "SSH-2.0-Server\r\n"}, "The server does not speak FTP"},
      {{.reply = line + line}, "A line of the server's reply is too long"},
      {{.reply = endless}, "The server's reply is too long"},
  };
  for (const auto& [action, error] : cases) {
    Session s;
    if (error.ends_with("does not answer")) s.engine.silenceLimit = 700;
    s.server.On("NOOP", action);
    s.LogIn();
    try {
      ADD_FAILURE() << s.engine.SendCommand("NOOP\n") << " is not: " << error;
    } catch (const NLException& thrown) {
      EXPECT_EQ(Reason(thrown), error);
    }
    EXPECT_TRUE(s.engine.Lost());
    EXPECT_THROW(s.engine.SendCommand("NOOP\n"), NLException);
  }
}

TEST(Control, PutsCommandsOnTheWireAsTheyAre) {
  Session s;
  s.LogIn();
  s.engine.SendCommand("CWD a b\n");
  EXPECT_EQ(s.engine.Send("NOOP\n"), 1);
  s.engine.ReadResponse();
  for (const auto& bad : {"CWD a\nDELE b\n"s, "CWD a\rb\n"s, "CWD a\0b\n"s, "NOOP"s, ""s}) {
    EXPECT_EQ(s.engine.SendCommand(bad), 0) << bad;
    EXPECT_EQ(s.engine.Send(bad), 0) << bad;
    EXPECT_EQ(s.engine.ReturnResponse(bad), "") << bad;
  }
  EXPECT_EQ(s.Sent(), "CWD a b\r\nNOOP\n");
  EXPECT_EQ(s.Warnings().size(), 15U);
  const std::string log = s.ui->Seen().log;
  EXPECT_NE(log.find("PASS\n"), std::string::npos);
  EXPECT_EQ(log.find("PASS p"), std::string::npos);
}

TEST(Control, JudgesReplies) {
  Session s;
  s.server.On("NOOP", {.reply = "504 pub: already exists.\r\n"});
  s.LogIn();
  s.engine.SendCommand("NOOP\n");
  const std::pair<int, int> cases[] = {{350, 1}, {331, 331}, {425, 0}, {421, 0},
                                       {501, 0}, {502, 0},   {550, 0}};
  for (const auto& [code, result] : cases) EXPECT_EQ(s.engine.CheckResult(code), result) << code;
  EXPECT_EQ(s.Warnings(),
            (std::vector<std::string>{"Error in parameters\n", "Command not implemented!\n",
                                      "pub: already exists.\n"}));
  EXPECT_EQ(s.ui->Seen().Texts("LOST"_what, "warning"),
            std::vector<std::string>{"Service not available, closing control connection!\n"});
  s.ui->listingEnabled = false;
  EXPECT_EQ(s.engine.CheckResult(550), 1);
}

TEST(Login, ReportsEveryFailure) {
  const std::string gone = "Connection to:  127.0.0.1 FAILED!\n";
  const std::string refused = "Login to: 127.0.0.1 failed.\n\n";
  const std::string wrong = "Login to: 127.0.0.1 failed.\nInvalid Username or Password.";
  const std::string lost = "Connection failed.";
  const std::string failed = "Login failed.";
  // The last column is the label of a transfer's row.
  const std::tuple<std::string, ScriptedAction, std::string, std::string> cases[] = {
      {"greeting", {.reply = "220 he", .control = ControlEnd::Reset}, gone, lost},
      {"greeting", {.reply = "421 Full\r\n"}, gone, lost},
      {"greeting", {.reply = "530 Full\r\n"}, gone, lost},
      {"greeting", {.reply = "\x01\x02garbage\n"}, gone, lost},
      {"greeting", {.reply = ""}, gone, lost},
      {"USER", {.reply = "530 No\r\n"}, refused + "Username is invalid", "Sending Username."},
      {"USER", {.reply = "500 What?\r\n"}, refused + "What?\n", failed},
      {"PASS", {.reply = "530 No\r\n"}, wrong, "Sending Password."},
      {"PASS", {.reply = "550 No\r\n"}, "Login to: 127.0.0.1 as anonymous failed.", failed},
      {"PASS", {.reply = "503 USER first\r\n"}, refused + "USER first\n", failed},
      {"PASS", {.reply = "", .control = ControlEnd::Reset}, gone, lost},
  };
  ProcessSettings::Set({.loginFsnd = "bad.wav", .proxyAddress = ""});
  for (const auto& [verb, action, error, label] : cases) {
    Session s;
    s.server.On(verb, action);
    const auto row = std::make_shared<RecordingTransferUi>();
    MFtp transfer("127.0.0.1", s.server.Port(), "u", "p", false, row);
    if (action.reply == "") s.engine.silenceLimit = transfer.silenceLimit = 300;

    EXPECT_EQ(s.engine.Login(), 0) << verb << *action.reply;
    EXPECT_EQ(s.ui->Seen().Texts("FERR"_what, "error"), std::vector<std::string>{error}) << verb;
    const std::string told = error + (error.ends_with("\n") ? "" : "\nNo\n");  // the server's words
    EXPECT_TRUE(verb == "greeting" || error == gone || s.engine.LastFailure() + "\n" == told)
        << verb;
    EXPECT_EQ(s.ui->Seen().sounds, std::vector<std::string>{"bad.wav"});
    EXPECT_EQ(s.server.Transcript().size(), verb == "greeting" ? 0U : verb == "USER" ? 1U : 2U);
    EXPECT_EQ(transfer.Login(), label.ends_with("failed.") ? -1 : 0) << verb;
    EXPECT_EQ(row->Seen().labels.back(), label) << verb;
  }
  ProcessSettings::Set({});
}

TEST(Login, FailsWithoutAServer) {
  auto browser = std::make_shared<RecordingBrowserUi>();
  const std::uint16_t port = ScriptedServer().Port();
  EXPECT_EQ(MFtp("127.0.0.1", port, "u", "p", true, browser).Login(), 0);
  EXPECT_EQ(MFtp("no-such-host.invalid", 21, "u", "p", true, browser).Login(), 0);
  EXPECT_EQ(browser->Seen().Texts("FERR"_what, "error").back(),
            "Could not resolve the address for:\n\n no-such-host.invalid");
  EXPECT_EQ(browser->Seen().Texts("FERR"_what, "detail"),
            std::vector<std::string>{"Connection refused"});
}

TEST(Login, WaitsForTheGreetingProper) {
  Session s;
  s.server.On("greeting", {.reply = "120 Soon\r\n220 Ready\r\n"});
  for (int login = 0; login < 2; ++login) {  // the second one in the middle of a connection
    s.LogIn();
    EXPECT_EQ(s.engine.SendCommand("SYST\n"), 215);
  }
}

TEST(Login, GoesThroughAProxy) {
  // Without the proxy's address the server itself is asked, still by the proxy's form of the name.
  for (const std::string host : {"ftp.example", "127.0.0.1"}) {
    ScriptedServer server;
    ProcessSettings::Set({.useProxy = true,
                          .proxyAddress = host == "127.0.0.1" ? "" : "127.0.0.1",
                          .proxyPort = std::to_string(server.Port())});
    auto browser = std::make_shared<RecordingBrowserUi>();
    EXPECT_EQ(MFtp(host, server.Port(), "u", "p", true, browser).Login(), 1);
    EXPECT_EQ(server.Transcript().at(0), "USER u@" + host + "\r\n");
  }
  ProcessSettings::Set({});
}

TEST(Login, LearnsTheServerAndItsDirectory) {
  const std::tuple<std::string, std::string, int, std::string, std::string> cases[] = {
      {"215 Windows_NT version 4.0", "257 \"/\" is current", 1, "/", "LIST"},
      {"215 UNIX Type: L8", "257 \"/a \"\"b\"\" c\" x", 0, "/a \"b\" c", "LIST -la"},
      {"215 UNIX AppleShare IP FTP Server", "257 /plain", 2, "/plain", "LIST"},
      {"500 What?", "502 No", 0, "", "LIST -la"},
      {"215", "257 \"", 0, "", "LIST -la"},
  };
  for (const bool passive : {false, true}) {
    for (const auto& [syst, pwd, type, path, list] : cases) {
      Session s(passive);
      s.server.On("SYST", {.reply = syst + "\r\n"});
      s.server.On("PWD", {.reply = pwd + "\r\n"});
      s.LogIn();
      s.engine.GetServerType();
      s.engine.SetPWD();
      EXPECT_EQ(s.engine.ReturnServerType(), type) << syst;
      EXPECT_EQ(s.ui->Seen().path, path) << pwd;
      EXPECT_TRUE(s.engine.SetUpData() && s.engine.GetListing().whole);
      EXPECT_TRUE(s.Sent().ends_with("\n" + list + "\r\n")) << s.Sent();
    }
  }
}

}  // namespace
}  // namespace corvane
