#include <sstream>

#include "ftp/Session.h"

namespace corvane {
namespace {

constexpr char kLine[] = "-rw-r--r-- 1 u g 1 Jan 1 10:00 f\r\n";

// A server that tells of a link by facts as of what it leads to, one that tells it as a link, and
// one that leaves it out.
TEST(Listing, NeverTakesALinkForADirectory) {
  const std::string plain =
      "drwxr-xr-x 2 u g 1 Jan 1 2000 d\r\nlrwxrwxrwx 1 u g 1 Jan 1 2000 l -> d\r\n";
  const std::string d = "type=dir; d\r\n";
  // MLSD, LIST, the kinds told, and what is sent for two listings.
  const std::tuple<std::string, std::string, std::string, std::string> cases[] = {
      {d + "type=dir; l\r\n", plain, "d2l3", "PORT|MLSD|PORT|LIST -la|PORT|LIST -la"},
      {d, plain, "d2l3", "PORT|MLSD|PORT|LIST -la|PORT|LIST -la"},
      {d + "type=OS.unix=slink:d; l\r\n", plain, "d2l3", "PORT|MLSD|PORT|MLSD"},
      {d, "drwxr-xr-x 2 u g 1 Jan 1 2000 d\r\n", "d2",
       "PORT|MLSD|PORT|LIST -la|PORT|MLSD|PORT|LIST -la"},
      {"", "", "", "PORT|MLSD|PORT|MLSD"},
      {"500", plain, "d2l3", "PORT|MLSD|PORT|LIST -la|PORT|LIST -la"},
  };
  for (const auto& [facts, lines, told, sent] : cases) {
    Session s;
    s.server.On("FEAT", {.reply = "211-Has\r\n MLST type*;\r\n211 End\r\n"});
    if (facts != "500") s.server.On("MLSD", {.data = facts});
    s.server.On("LIST", {.data = lines});
    s.LogIn();
    for (int i = 0; i < 2; ++i) {
      EXPECT_EQ(Told(s.List()), "Done");
      EXPECT_EQ(s.kinds, told);
    }
    EXPECT_EQ(s.Sent(), sent);
  }
}

TEST(Listing, EndsWholeOrSaysWhatIsMissing) {
  const std::string korean = "-rw-r--r-- 1 u g 1 Jan 1 10:00 \xEC\x97\xAC\n";
  const std::string cut = "The listing is not complete: ";
  const std::string unknown = "Refused: The server's listing is in a form that is not understood.";
  std::string many;
  for (int i = 0; i < 11; ++i) many += kLine;
  // The text of an outcome may go on.
  const std::tuple<ScriptedAction, std::string, std::string> cases[] = {
      {{.data = ""}, "", "Done"},
      // The byte that begins a character ends a listing only where nothing follows.
      {{.data = korean + kLine}, "\xEC\x97\xAC|f|", "Done"},
      {{.data = "-rw-r--r-- 1 u g 1 Jan 1 10:00 a\xEC\n"}, "a\xEC|", "Done"},
      // A line without its end, and a server that says itself that it has not told all.
      {{.data = "-rw-r--r-- 1 u g 1 Jan 1 10:00 a\xEC"},
       "a\xEC|",
       "Busy: " + cut + "its last line"},
      {{.data = std::string(kLine) + kLine, .dataLimit = 60},
       "f|1 u g 1 Jan 1 1|",
       "Busy: " + cut + "its last"},
      {{.data = kLine, .completion = "226-Options: -l\r\n226 Output truncated to 1 matches\r\n"},
       "f|",
       "Refused: " + cut + "226-Options: -l\n226 Output truncated to 1"},
      {{.data = "ls: f: Permission denied\n"}, "", unknown},
      {{.data = kLine + std::string("ls: g: Permission denied\n")},
       "f|",
       "Done: Lines of the listing that are not understood: 1"},
      {{.data = std::string(kLine) + "-rw-r--r-- 1 u g 1 at some time h\n"},
       "f|1 u g 1 at some time h|",
       "Done: Entries whose names the listing does not tell: 1"},
      {{.data = kLine + std::string("\xEC"), .dataEnd = DataEnd::Stall}, "f|", "Busy: " + cut},
      {{.preliminary = "", .data = kLine, .completion = "226 Done\r\n"}, "f|", "Done"},
      {{.preliminary = "150 Wait\r\n125 Wait\r\n", .data = kLine}, "f|", "Done"},
      {{.reply = "350 Go on\r\n"}, "", "Refused: The server is out of step; "},
      {{.reply = "450 No\r\n"}, "", "Busy: Error in parameters\n\nNo"},
      {{.completion = "451 Cut\r\n"}, "", "Refused: " + cut + "Cut"},
      {{.data = kLine, .completion = "451 Cut\r\n"}, "f|", "Refused: " + cut},
      {{.data = kLine, .dataLimit = 4, .dataEnd = DataEnd::Reset}, "", "Busy: " + cut},
      {{.data = "What do you want?\n"}, "", unknown},
      {{.data = std::string(1'100, '\r')}, "", "Refused: " + cut + "the listing is larger"},
      {{.data = many}, "f|f|f|f|f|f|f|f|f|f|", "Refused: " + cut + "it has more than"},
      {{.data = many.substr(0, many.size() / 11 * 10)}, "f|f|f|f|f|f|f|f|f|f|", "Done"},
  };
  for (const bool passive : {false, true}) {
    for (const auto& [action, names, told] : cases) {
      Session s(passive);
      s.engine.SetListingLimits(1'000, 10);
      s.server.On("LIST", action);
      s.LogIn();
      const Outcome outcome = s.List();
      EXPECT_TRUE(Told(outcome).starts_with(told)) << Told(outcome) << s.server.Dialogue();
      EXPECT_EQ(outcome.IsDone(), told.starts_with("Done"));
      EXPECT_EQ(outcome.text.IsEmpty(), told == "Done");
      EXPECT_EQ(s.names, names);
      EXPECT_TRUE(s.IsInStep()) << s.server.Dialogue();
    }
  }
}

// What LIST -la brings, what LIST, what is then told, and what is sent for two listings.
TEST(Listing, AsksForLessWhereOptionsAreNotUnderstood) {
  using Row = std::tuple<ScriptedAction, ScriptedAction, std::string, std::string>;
  const std::string both = "LIST -la|LIST";
  const std::string dots = "drwxr-xr-x 2 u g 1 Jan 1 10:00 .\r\n";
  const Row rows[] = {
      {{.reply = "550 No options\r\n"}, {.data = kLine}, "f|", both + "|LIST"},
      {{.reply = "501 No options\r\n"}, {.data = ""}, "", both + "|LIST"},
      {{.data = "", .completion = "504 No options\r\n"}, {.data = kLine}, "f|", both + "|LIST"},
      // Taken for a name.
      {{.data = ""}, {.data = kLine}, "f|", both + "|LIST"},
      {{.data = "-la: not found\r\n"}, {.data = kLine}, "f|", both + "|LIST"},
      // Where less brings no more, and where options have brought something, they stay.
      {{.data = ""}, {.data = ""}, "", both + "|" + both},
      {{.data = ""}, {.reply = "500 No\r\n"}, "", both + "|" + both},
      {{.data = dots}, {.data = kLine}, "", "LIST -la|LIST -la"},
      {{.data = kLine}, {.data = ""}, "f|", "LIST -la|LIST -la"},
      {{.reply = "450 No\r\n"}, {.data = kLine}, "Busy", "LIST -la|LIST -la"},
      {{.reply = "550 No\r\n"}, {.reply = "550 No\r\n"}, "Refu", both + "|" + both},
  };
  for (const auto& [withOptions, bare, told, sent] : rows) {
    for (const bool passive : {false, true}) {
      Session s(passive);
      int occurrence = 0;
      std::istringstream commands(sent);
      for (std::string line; std::getline(commands, line, '|');)
        s.server.On("LIST", line == "LIST" ? bare : withOptions, ++occurrence);
      s.LogIn();
      for (int i = 0; i < 2; ++i) {
        const Outcome outcome = s.List();
        EXPECT_EQ(outcome.IsDone() ? s.names : Told(outcome).substr(0, 4), told);
      }
      EXPECT_EQ(s.Sent("LIST"), sent) << s.server.Dialogue();
      EXPECT_TRUE(s.IsInStep());
    }
  }
}

// What comes twice without the end of its last line, what the server tells of the directory in a
// reply, and what is then believed.
TEST(Listing, ComparesWhatMayBeCutWithAReply) {
  const std::string line = "-rw-r--r-- 1 u g 1 Jan 1 10:00 ";
  const std::string head = "213-Status of .:\r\n";
  const std::string end = "213 End\r\n";
  const std::string cut = "Busy: The listing is not complete: its last line has no end.";
  const std::tuple<std::string, std::string, std::string> rows[] = {
      {line + "a\r\n" + line + "b", head + " " + line + "a\r\n " + line + "b\r\n" + end, "Done"},
      {line + "a\r\n" + line + "b", head + " " + line + "a\r\n " + line + "bc\r\n" + end, cut},
      {line + "a\r\n" + line + "b", head + " " + line + "a\r\n" + end, cut},
      {line + "a", head + "A fine server.\r\n" + end, cut},
      {line + "a", "213 End\r\n", cut},
      {line + "a", "502 No\r\n", cut},
  };
  for (const auto& [data, status, told] : rows) {
    Session s;
    s.server.On("LIST", {.data = data});
    s.server.On("STAT", {.reply = status});
    s.LogIn();
    EXPECT_EQ(Told(s.List()), told) << s.server.Dialogue();
    EXPECT_EQ(s.Sent(), "PORT|LIST -la|PORT|LIST -la|STAT -la");
    EXPECT_TRUE(s.IsInStep());
  }
}

}  // namespace
}  // namespace corvane
