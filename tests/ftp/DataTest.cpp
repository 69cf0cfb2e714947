#include "ftp/Session.h"

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

TEST(DeleteDirectory, StopsWithoutHarm) {
  const std::string led = "to: Left alone, for it leads to /other\n";
  const std::tuple<const char*, ScriptedAction, std::string> cases[] = {
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
      {"DELE", {}, led},  // a link by now, or in a listing that hides links
  };
  for (const auto& [verb, action, text] : cases) {
    Session s(true);
    for (const char* file : {"/keep", "/d/f", "/other/f"}) s.server.Tree().AddFile(file, "x");
    s.server.Tree().AddLink("/d/link", "/");
    s.server.Tree().AddLink("/to", "/other");
    s.server.On(verb, action, 1);
    s.LogIn();
    s.engine.SetPWD();
    Refusals refused;
    EXPECT_EQ(s.engine.DeleteDirectory(text == led ? "to" : "d", refused), 0) << verb;
    EXPECT_EQ(refused.Text(), text);
    for (const char* file : {"/keep", "/d/f", "/other/f"}) {
      EXPECT_TRUE(s.server.Tree().Exists(file)) << verb;
    }
    s.engine.SetPWD();
    EXPECT_EQ(s.ui->Seen().path, "/") << verb << s.server.Dialogue();
  }
}

}  // namespace
}  // namespace corvane
