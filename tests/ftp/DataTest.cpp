#include <gmock/gmock.h>

#include "ftp/Session.h"
#include "support/Files.h"
#include "support/WaitFor.h"

namespace corvane {
namespace {

// A port below the ones that anybody listens on here.
constexpr char kDeadPort[] = "227 Entering Passive Mode (127,0,0,1,0,1)\r\n";

TEST(Passive, TakesOnlyAWholeReply) {
  const std::pair<const char*, bool> cases[] = {
      // The address is not this machine's; the listing comes all the same.
      {"227 Entering Passive Mode (10,0,0,1,{port})\r\n", true},
      {"227 Entering Passive Mode 10,0,0,1,{port}\r\n", true},
      {"227 ok (10,0,0,1,4)\r\n", false},
      {"227 ok (10,0,0,1,256,1)\r\n", false},
      {"227 ok (10,0,0,1,4,-1)\r\n", false},
      {"227 ok (10,0,0,1,0,0)\r\n", false},
      {"227\r\n", false},
      {"502 No (10,0,0,1,{port})\r\n", false},
  };
  for (const auto& [reply, good] : cases) {
    Session s(true);
    s.server.On("PASV", {.reply = reply});
    s.LogIn();
    EXPECT_EQ(s.engine.SetUpData(), good) << reply;
    EXPECT_TRUE(!good || s.engine.GetListing().whole) << reply;
    EXPECT_EQ(s.Warnings().empty(), good) << reply;
  }
}

TEST(Listing, EndsWholeOrSaysWhatIsMissing) {
  const std::string line = "-rw-r--r-- 1 u g 1 Jan 1 10:00 f\r\n";
  const std::string plain = "-rw-r--r-- 1 u g 1 Jan 1 10:00 f\n";
  const std::string korean = "\xEC\x97\xAC\n";
  // A failed listing without a text stands for whatever came.
  const std::tuple<ScriptedAction, std::string, bool, std::string> cases[] = {
      {{.data = line}, plain, true, ""},
      {{.data = ""}, "", true, ""},
      // The sentinel ends a listing, a character that begins like it does not.
      {{.data = "ab\xEC/cd"}, "ab\xEC", true, ""},
      {{.data = korean + "ab"}, korean + "ab", true, ""},
      {{.data = "ab\xEC\x97"}, "ab\xEC", true, ""},
      {{.preliminary = "", .data = line, .completion = "226 Done\r\n"}, plain, true, ""},
      {{.reply = "450 No\r\n"}, "", false, "Error in parameters\n"},
      {{.reply = "425 No\r\n"}, "", false, "The server refused the request.\n\nNo\n"},
      {{.completion = "451 Cut\r\n"}, "", false, "The listing is not complete: Cut\n"},
      {{.data = line, .completion = "451 Cut\r\n"}, plain, false, ""},
      {{.data = line, .dataLimit = 4, .dataEnd = DataEnd::Reset}, "", false, ""},
      {{.reply = "150 Wait\r\n425 No\r\n"}, "", false, " connection failed.\n\nNo"},
  };
  for (const bool passive : {false, true}) {
    for (const auto& [action, text, whole, warning] : cases) {
      Session s(passive);
      s.server.On("LIST", action);
      if (action.reply) s.server.On("PASV", {.reply = kDeadPort});
      s.LogIn();
      ASSERT_TRUE(s.engine.SetUpData());
      const MFtp::Listing listing = s.engine.GetListing();
      EXPECT_EQ(s.engine.SendCommand("SYST\n"), 215) << "out of step" << s.server.Dialogue();
      EXPECT_EQ(listing.whole, whole) << s.server.Dialogue();
      EXPECT_TRUE((!whole && text.empty()) || listing.text == text) << listing.text;
      const std::vector<std::string> warnings = s.Warnings();
      EXPECT_EQ(warnings.empty(), whole);
      const std::string mode = warning[0] != ' ' ? "" : passive ? "Passive" : "Active";
      EXPECT_TRUE(warning.empty() || warnings == std::vector{mode + warning}) << warnings.front();
    }
  }
}

TEST(Listing, AsksForLessWhereOptionsAreRefused) {
  const std::pair<bool, const char*> cases[] = {
      {false, "PORT\r\nLIST -la\r\nLIST\r\nPORT\r\nLIST\r\n"},
      {true, "PASV\r\nLIST -la\r\nPASV\r\nLIST\r\nPASV\r\nLIST\r\n"}};
  for (const auto& [passive, sent] : cases) {
    Session s(passive);
    s.server.On("LIST", {.reply = "550 No options\r\n"}, 1);
    s.LogIn();
    EXPECT_TRUE(s.engine.SetUpData() && s.engine.GetListing().whole);
    EXPECT_TRUE(s.engine.SetUpData() && s.engine.GetListing().whole);
    EXPECT_EQ(s.Sent(), sent);
    EXPECT_TRUE(s.Warnings().empty());
  }
}

TEST(Listing, ShowsItsRows) {
  Session s;
  EXPECT_TRUE(
      s.engine.ParseListing("-rw 1 u g 1 Jan 1 10:00 a b\ncrw 1 u g 1, 3 Jan 1 10:00 null\n"
                            "lrwx 1 u g 1 Jan 1 10:00 l -> x\n"));
  EXPECT_EQ(s.ui->Seen().Names(), (std::vector<std::string>{".", "..", "a b", "l"}));
  EXPECT_EQ(s.ui->Seen().count, 2U);
  s.ui->closing = true;
  EXPECT_FALSE(s.engine.ParseListing(""));
}

TEST(Transfer, FinishesOnlyWhatIsWhole) {
  const std::string bytes = Bytes(3'000'000);
  // The last column is part of the reason; none for a transfer that finishes.
  const std::tuple<std::string, ScriptedAction, std::string> cases[] = {
      {"RETR", {}, ""},
      {"RETR", {.data = ""}, "Only 0 of 3000000 bytes came."},
      {"RETR", {.dataLimit = 1000, .completion = "226 Done\r\n"}, "Only 1000 of 3000000 bytes"},
      {"RETR", {.data = bytes + "more"}, ""},
      {"RETR", {.preliminary = "", .completion = "226 Done\r\n"}, ""},
      {"RETR", {.reply = "550 No such file\r\n"}, "No such file"},
      {"RETR", {.reply = "350 Go on\r\n"}, "Go on"},
      {"RETR", {.completion = "451 Read error\r\n"}, "Read error"},
      {"RETR", {.dataLimit = 9, .dataEnd = DataEnd::Reset, .completion = "426 Gone\r\n"}, "Gone"},
      {"RETR", {.dataLimit = 9, .dataEnd = DataEnd::Reset}, "reset"},
      {"RETR", {.completion = ""}, "does not answer"},
      {"RETR", {.dataLimit = 9, .dataEnd = DataEnd::Stall, .completion = ""}, "does not answer"},
      {"RETR", {.reply = "", .control = ControlEnd::Close}, "closed the connection"},
      {"RETR", {.completion = "", .control = ControlEnd::Close}, "closed the connection"},
      {"RETR", {.reply = "150 Wait\r\n425 Cannot connect\r\n"}, "Cannot connect"},
      {"RETR", {.strangerFirst = true}, ""},
      {"STOR", {}, ""},
      {"STOR", {.preliminary = "226 Done\r\n", .completion = ""}, ""},
      {"STOR", {.reply = "553 Not here\r\n"}, "Not here"},
      {"STOR", {.dataLimit = 1000, .completion = "552 Disk full\r\n"}, "Disk full"},
      {"STOR", {.dataLimit = 9, .dataEnd = DataEnd::Reset, .completion = "426 Gone\r\n"}, "Gone"},
      {"STOR", {.dataLimit = 9, .dataEnd = DataEnd::Stall, .completion = ""}, "does not answer"},
  };
  for (const bool passive : {false, true}) {
    for (const auto& [verb, action, why] : cases) {
      TransferSession s(passive);
      s.engine.silenceLimit = LimitFor(why);
      s.server.On(verb, action);
      if (action.reply) s.server.On("PASV", {.reply = kDeadPort});
      int result = 0;
      if (verb == "RETR") {
        s.server.Tree().AddFile("/f", bytes);
        Write(s.folder.Path() / "f", "kept until the server has agreed");
        result = s.Download(3'000'000);
        const std::string got = Contents(s.folder.Path() / "f");
        EXPECT_TRUE(action.reply  ? got == "kept until the server has agreed"
                    : result == 1 ? got == action.data.value_or(bytes)
                                  : bytes.starts_with(got));
      } else {
        Write(s.folder.Path() / "f", bytes);
        result = s.Upload();
        EXPECT_TRUE(result != 1 || WaitFor([&] { return s.server.Tree().File("/f") == bytes; }));
      }
      const bool refused = action.reply && !action.reply->empty() && action.reply->front() != '1';
      EXPECT_EQ(result, why.empty() ? 1
                        : refused   ? 0
                                    : -1)
          << s.engine.LastFailure() << s.server.Dialogue();
      EXPECT_NE(s.engine.LastFailure().find(why), std::string::npos)
          << why << " is not " << s.engine.LastFailure();
    }
  }
}

TEST(Download, AsksOnceWhetherAFileShrank) {
  for (const std::string size : {"213 1000\r\n", "213 300000\r\n", "550 No\r\n", "213 x\r\n"}) {
    TransferSession s;
    s.server.Tree().AddFile("/f", Bytes(1000));
    s.server.On("SIZE", {.reply = size});
    EXPECT_EQ(s.Download(300'000), size == "213 1000\r\n" ? 1 : -1) << size;
    EXPECT_EQ(s.Sent(), "PORT\r\nTYPE I\r\nRETR f\r\nSIZE f\r\n");
  }
}

TEST(ViewFile, FillsATextWindow) {
  Session s(true);
  s.server.Tree().AddFile("/f", "one\r\ntwo\n");
  s.LogIn();
  EXPECT_EQ(s.engine.ViewFile("f"), 1);
  EXPECT_EQ(s.engine.ViewFile("none"), 0);
  EXPECT_EQ(s.ui->Seen().viewerText, "one\ntwo\n");
  EXPECT_EQ(s.ui->Seen().viewerTitle, "f");
  EXPECT_EQ(s.Warnings(), std::vector<std::string>{"No such file.\n"});
  EXPECT_EQ(s.engine.SendCommand("SYST\n"), 215);
}

TEST(DeleteDirectory, StopsWithoutHarm) {
  const std::tuple<const char*, ScriptedAction, const char*> cases[] = {
      {"CWD", {.reply = "550 No\r\n"}, "d: No\n"},
      {"LIST", {.reply = "450 No\r\n"}, "/d: The listing did not come whole.\n"},
      {"LIST", {.completion = "451 Cut\r\n"}, "/d: The listing did not come whole.\n"},
      {"LIST",
       {.data = "drwx 1 u g 1 Jan 1 10:00 /\r\n"},
       "/d//: Left alone, for the name leads elsewhere.\n"},
      {"LIST",
       {.data = "-rwx 1 u g 1 Jan 1 10:00 ../keep\r\n"},
       "/d/../keep: Left alone, for the name leads elsewhere.\n"},
      {"DELE", {.reply = "550 No\r\n"}, "/d/f: No\n/d/link -> /: Left alone, for it is a link.\n"},
  };
  for (const auto& [verb, action, text] : cases) {
    Session s(true);
    s.server.Tree().AddFile("/keep", "x");
    s.server.Tree().AddFile("/d/f", "x");
    s.server.Tree().AddLink("/d/link", "/");
    s.server.On(verb, action, 1);
    s.LogIn();
    s.engine.SetPWD();
    Refusals refused;
    EXPECT_EQ(s.engine.DeleteDirectory("d", refused), 0) << verb;
    EXPECT_EQ(refused.Text(), text);
    EXPECT_TRUE(s.server.Tree().Exists("/keep") && s.server.Tree().Exists("/d/f")) << verb;
    s.engine.SetPWD();
    EXPECT_EQ(s.ui->Seen().path, "/") << verb << s.server.Dialogue();
  }
  // A link by now, or in a listing that hides links.
  Session swapped;
  swapped.server.Tree().AddFile("/other/f", "x");
  swapped.server.Tree().AddLink("/d", "/other");
  swapped.LogIn();
  swapped.engine.SetPWD();
  Refusals left;
  EXPECT_EQ(swapped.engine.DeleteDirectory("d", left), 0);
  EXPECT_EQ(left.Text(), "d: Left alone, for it leads to /other\n");
  EXPECT_TRUE(swapped.server.Tree().Exists("/other/f"));
  swapped.engine.SetPWD();
  EXPECT_EQ(swapped.ui->Seen().path, "/");
  // A tree without end: every directory holds itself.
  const std::pair<const char*, const char*> endless[] = {
      {"257 \"/d\"\r\n", "The server lists a directory inside itself: /d"},
      {"502 No\r\n", "The directories are nested too deeply."}};
  for (const auto& [pwd, failure] : endless) {
    Session s(true);
    s.server.On("CWD", {.reply = "250 ok\r\n"});
    s.server.On("PWD", {.reply = pwd});
    s.server.On("LIST", {.data = "drwx 1 u g 1 Jan 1 10:00 d\r\n"});
    s.LogIn();
    Refusals refused;
    EXPECT_EQ(s.engine.DeleteDirectory("d", refused), 0);
    EXPECT_THAT(refused.Text(), testing::HasSubstr(failure));
  }
}

}  // namespace
}  // namespace corvane
