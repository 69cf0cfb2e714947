#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <functional>
#include <future>

#include "ftp/Session.h"
#include "net/NLException.h"
#include "support/TemporaryDirectory.h"
#include "support/WaitFor.h"
#include "util/LocalFile.h"

namespace corvane {
namespace {

using namespace std::chrono_literals;

std::string Contents(const std::filesystem::path& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

void Write(const std::filesystem::path& path, const std::string& bytes) {
  std::ofstream(path, std::ios::binary) << bytes;
}

std::string Bytes(std::size_t count) {
  std::string bytes(count, '\0');
  for (std::size_t i = 0; i < count; ++i) bytes[i] = static_cast<char>(i * 7 + i / 251);
  return bytes;
}

// A port below the ones that anybody listens on here.
constexpr char kDeadPort[] = "227 Entering Passive Mode (127,0,0,1,0,1)\r\n";

TEST(Passive, TakesOnlyAWholeReply) {
  const struct {
    const char* reply;
    bool good;
  } cases[] = {
      {"227 Entering Passive Mode (10,0,0,1,{port})\r\n", true},
      {"227 Entering Passive Mode 10,0,0,1,{port}\r\n", true},
      {"227 ok (10,0,0,1,4)\r\n", false},
      {"227 ok (10,0,0,1,256,1)\r\n", false},
      {"227 ok (10,0,0,1,4,-1)\r\n", false},
      {"227 ok (10,0,0,1,0,0)\r\n", false},
      {"227 no numbers\r\n", false},
      {"227\r\n", false},
      {"502 No\r\n", false},
  };
  for (const auto& c : cases) {
    Session s(true);
    s.server.On("PASV", {.reply = c.reply});
    s.LogIn();
    EXPECT_EQ(s.engine.SetUpData(), c.good) << c.reply;
    // The address in the reply is not this machine's; the listing comes all the same.
    if (c.good) EXPECT_TRUE(s.engine.GetListing().whole) << c.reply;
    EXPECT_EQ(s.Warnings().empty(), c.good) << c.reply;
  }
}

struct ListingCase {
  const char* what;
  ScriptedAction action;
  std::string text;  // "" stands for whatever came
  bool whole;
  std::string warning;
};

TEST(Listing, EndsWholeOrSaysWhatIsMissing) {
  const std::string line = "-rw-r--r-- 1 u g 1 Jan 1 10:00 f\r\n";
  const std::string plain = "-rw-r--r-- 1 u g 1 Jan 1 10:00 f\n";
  const std::string korean = "\xEC\x97\xAC\n";
  const ListingCase cases[] = {
      {"plain", {.data = line}, plain, true, ""},
      {"empty", {.data = ""}, "", true, ""},
      {"sentinel",
       {.data = "ab\xEC"
                "cd"},
       "ab\xEC",
       true,
       ""},
      {"sentinel last", {.data = "ab\xEC"}, "ab\xEC", true, ""},
      {"character", {.data = korean + "ab"}, korean + "ab", true, ""},
      {"half a character", {.data = "ab\xEC\x97"}, "ab\xEC", true, ""},
      {"answered once",
       {.preliminary = "", .data = line, .completion = "226 Done\r\n"},
       plain,
       true,
       ""},
      {"refused", {.reply = "450 No\r\n"}, "", false, "Error in parameters\n"},
      {"cut short",
       {.data = line, .completion = "451 Disk error\r\n"},
       plain,
       false,
       "The listing is not complete: Disk error\n"},
      {"reset",
       {.data = line, .dataLimit = 4, .dataEnd = DataEnd::Reset, .completion = "426 Reset\r\n"},
       "",
       false,
       ""},
      {"never connected",
       {.reply = "150 Wait\r\n425 No\r\n"},
       "",
       false,
       "Passive connection failed.\n"},
  };
  for (const bool passive : {false, true}) {
    for (const auto& c : cases) {
      Session s(passive);
      s.server.On("LIST", c.action);
      if (c.action.reply) s.server.On("PASV", {.reply = kDeadPort});
      s.LogIn();
      ASSERT_TRUE(s.engine.SetUpData());
      SCOPED_TRACE(c.what);
      MFtp::Listing listing;
      int next = 0;
      try {
        listing = s.engine.GetListing();
        next = s.engine.SendCommand("SYST\n");
      } catch (const NLException& error) {
        ADD_FAILURE() << error.Text();
      }
      EXPECT_EQ(next, 215) << "out of step after " << c.what << passive << s.server.Dialogue();
      EXPECT_EQ(listing.whole, c.whole) << c.what << passive << s.server.Dialogue();
      if (c.whole || !c.text.empty()) EXPECT_EQ(listing.text, c.text) << c.what;
      if (!c.warning.empty()) {
        const auto warnings = s.Warnings();
        EXPECT_NE(std::find(warnings.begin(), warnings.end(), c.warning), warnings.end())
            << c.what << passive << (warnings.empty() ? "" : warnings.back());
      }
    }
  }
}

TEST(Listing, AsksForLessWhereOptionsAreRefused) {
  const struct {
    bool passive;
    const char* sent;
  } cases[] = {{false, "PORT\r\nLIST -la\r\nLIST\r\nPORT\r\nLIST\r\n"},
               {true, "PASV\r\nLIST -la\r\nPASV\r\nLIST\r\nPASV\r\nLIST\r\n"}};
  for (const auto& c : cases) {
    Session s(c.passive);
    s.server.On("LIST", {.reply = "550 No options\r\n"}, 1);
    s.LogIn();
    for (int i = 0; i < 2; ++i) {
      ASSERT_TRUE(s.engine.SetUpData());
      EXPECT_TRUE(s.engine.GetListing().whole);
    }
    EXPECT_EQ(s.Sent(), c.sent);
    EXPECT_TRUE(s.Warnings().empty());
  }
}

TEST(Listing, ShowsItsRows) {
  Session s;
  s.server.Tree().AddFile("/b.txt", "12345");
  s.server.Tree().AddDirectory("/a");
  s.LogIn();
  ASSERT_TRUE(s.engine.SetUpData());
  s.engine.ParseListing(s.engine.GetListing().text +
                        "crw 1 u g 1, 3 Jan 1 10:00 null\nlrwx 1 u g 1 Jan 1 10:00 l -> x\n");
  const BrowserRecord seen = s.browser->Seen();
  EXPECT_EQ(seen.Names(), (std::vector<std::string>{".", "..", "a", "b.txt", "l"}));
  EXPECT_EQ(seen.count, 3U);
  EXPECT_EQ(seen.statuses.back(), "Connected.");
  s.browser->closing = true;
  EXPECT_FALSE(s.engine.ParseListing(""));
}

struct DownloadCase {
  const char* what;
  ScriptedAction action;
  int result;
  std::string why;  // part of the reason
};

TEST(Download, FinishesOnlyWhatIsWhole) {
  const std::string bytes = Bytes(300'000);
  const DownloadCase cases[] = {
      {"whole", {}, 1, ""},
      {"empty", {.data = ""}, -1, "Only 0 of 300000 bytes came."},
      {"short",
       {.dataLimit = 1000, .completion = "226 Done\r\n"},
       -1,
       "Only 1000 of 300000 bytes came."},
      {"longer", {.data = bytes + "more"}, 1, ""},
      {"answered once", {.preliminary = "", .completion = "226 Done\r\n"}, 1, ""},
      {"refused", {.reply = "550 No such file\r\n"}, -1, "No such file"},
      {"refused oddly", {.reply = "350 Go on\r\n"}, -1, "Go on"},
      {"broken", {.dataLimit = 1000, .completion = "426 Broken\r\n"}, -1, "Broken"},
      {"disk", {.completion = "451 Read error\r\n"}, -1, "Read error"},
      {"reset",
       {.dataLimit = 1000, .dataEnd = DataEnd::Reset, .completion = "426 Gone\r\n"},
       -1,
       "Gone"},
      {"lying reset",
       {.dataLimit = 1000, .dataEnd = DataEnd::Reset, .completion = "226 Fine\r\n"},
       -1,
       "reset"},
      {"silent at the end", {.completion = ""}, -1, "does not answer"},
      {"stalled", {.dataLimit = 1000, .dataEnd = DataEnd::Stall, .completion = ""}, -1, ""},
      {"closed", {.reply = "", .control = ControlEnd::Close}, -1, "closed the connection"},
      {"closed at the end",
       {.completion = "", .control = ControlEnd::Close},
       -1,
       "closed the connection"},
      {"never connected", {.reply = "150 Wait\r\n425 Cannot connect\r\n"}, -1, "Cannot connect"},
      {"a stranger first", {.strangerFirst = true}, 1, ""},
  };
  for (const bool passive : {false, true}) {
    for (const auto& c : cases) {
      TemporaryDirectory folder;
      TransferSession s(passive);
      s.engine.silenceLimit = 400;
      s.server.Tree().AddFile("/f", bytes);
      s.server.On("RETR", c.action);
      if (c.action.reply) s.server.On("PASV", {.reply = kDeadPort});
      ASSERT_EQ(s.engine.Login(), 1);
      LocalFile file;
      ASSERT_EQ(file.Open(folder.Path(), "f", LocalFile::Mode::Create), 0);
      ASSERT_TRUE(s.engine.PrepareTransfer());
      const std::atomic<bool> cancelled = false;
      EXPECT_EQ(s.engine.Download(*s.row, file, {"f", 300'000, 0, true}, cancelled), c.result)
          << c.what << passive << s.engine.LastFailure() << s.server.Dialogue();
      if (!c.why.empty())
        EXPECT_NE(s.engine.LastFailure().find(c.why), std::string::npos)
            << c.what << passive << ": " << s.engine.LastFailure();
      const std::string got = Contents(folder.Path() / "f");
      if (c.result == 1) EXPECT_TRUE(got == c.action.data.value_or(bytes)) << c.what;
      EXPECT_TRUE(bytes.starts_with(got) || c.result == 1) << c.what;
    }
  }
}

TEST(Download, AsksOnceWhetherAFileShrank) {
  for (const char* size : {"213 1000\r\n", "213 300000\r\n", "550 No\r\n", "213 x\r\n"}) {
    TemporaryDirectory folder;
    TransferSession s;
    s.server.Tree().AddFile("/f", Bytes(1000));
    s.server.On("SIZE", {.reply = size});
    ASSERT_EQ(s.engine.Login(), 1);
    LocalFile file;
    ASSERT_EQ(file.Open(folder.Path(), "f", LocalFile::Mode::Create), 0);
    ASSERT_TRUE(s.engine.PrepareTransfer());
    const std::atomic<bool> cancelled = false;
    EXPECT_EQ(s.engine.Download(*s.row, file, {"f", 300'000, 0, true}, cancelled),
              std::string(size) == "213 1000\r\n" ? 1 : -1)
        << size;
  }
}

TEST(Download, KeepsTheFileUntilTheServerAgrees) {
  TemporaryDirectory folder;
  Write(folder.Path() / "f", "precious");
  Session s;
  s.server.Tree().AddFile("/f", "new");
  s.server.On("RETR", {.reply = "550 No\r\n"}, 1);
  s.LogIn();
  const std::atomic<bool> cancelled = false;
  RecordingTransferUi row;
  for (const char* contents : {"precious", "new"}) {
    LocalFile file;
    ASSERT_EQ(file.Open(folder.Path(), "f", LocalFile::Mode::Create), 0);
    ASSERT_TRUE(s.engine.PrepareTransfer());
    s.engine.Download(row, file, {"f", 3, 0, true}, cancelled);
    EXPECT_EQ(Contents(folder.Path() / "f"), contents);
  }
  EXPECT_EQ(s.Sent(), "PORT\r\nTYPE I\r\nRETR f\r\nPORT\r\nTYPE I\r\nRETR f\r\n");
  EXPECT_EQ(s.Warnings(), std::vector<std::string>{"No\n"});
}

TEST(Upload, FinishesOnlyWhatTheServerKept) {
  const std::string bytes = Bytes(3'000'000);
  const DownloadCase cases[] = {
      {"whole", {}, 1, ""},
      {"answered once", {.preliminary = "226 Done\r\n", .completion = ""}, 1, ""},
      {"refused", {.reply = "553 Not here\r\n"}, -1, "Not here"},
      {"full", {.dataLimit = 1000, .completion = "552 Disk full\r\n"}, -1, "Disk full"},
      {"reset",
       {.dataLimit = 1000, .dataEnd = DataEnd::Reset, .completion = "426 Gone\r\n"},
       -1,
       "Gone"},
      {"stalled", {.dataLimit = 1000, .dataEnd = DataEnd::Stall, .completion = ""}, -1, ""},
      {"silent at the end", {.completion = ""}, -1, "does not answer"},
  };
  for (const bool passive : {false, true}) {
    for (const auto& c : cases) {
      TemporaryDirectory folder;
      Write(folder.Path() / "f", bytes);
      TransferSession s(passive);
      s.engine.silenceLimit = 400;
      s.server.On("STOR", c.action);
      ASSERT_EQ(s.engine.Login(), 1);
      LocalFile file;
      ASSERT_EQ(file.OpenForReading(folder.Path() / "f"), 0);
      ASSERT_TRUE(s.engine.PrepareTransfer());
      const std::atomic<bool> cancelled = false;
      EXPECT_EQ(s.engine.Upload(*s.row, file, "f", cancelled), c.result)
          << c.what << passive << s.engine.LastFailure();
      if (!c.why.empty())
        EXPECT_NE(s.engine.LastFailure().find(c.why), std::string::npos)
            << c.what << passive << ": " << s.engine.LastFailure();
      if (c.result == 1)
        EXPECT_TRUE(WaitFor([&] { return s.server.Tree().File("/f") == bytes; })) << c.what;
    }
  }
}

TEST(Transfer, CancelEndsItAndKeepsStep) {
  for (const bool passive : {false, true}) {
    TemporaryDirectory folder;
    Session s(passive);
    s.engine.silenceLimit = 60'000;
    s.server.Tree().AddFile("/f", Bytes(100'000));
    s.server.On("RETR",
                {.dataLimit = 1000, .dataEnd = DataEnd::Stall, .completion = "426 Broken\r\n"});
    s.LogIn();
    LocalFile file;
    ASSERT_EQ(file.Open(folder.Path(), "f", LocalFile::Mode::Create), 0);
    ASSERT_TRUE(s.engine.PrepareTransfer());
    std::atomic<bool> cancelled = false;
    RecordingTransferUi row;
    auto done = std::async(std::launch::async, [&] {
      return s.engine.Download(row, file, {"f", 100'000, 0, true}, cancelled);
    });
    ASSERT_TRUE(WaitFor([&] { return row.Progress().done == 1000; }));
    cancelled = true;
    s.engine.AbortData();
    ASSERT_EQ(done.wait_for(2s), std::future_status::ready);
    EXPECT_EQ(done.get(), -1);
    EXPECT_EQ(s.engine.LastFailure(), "Cancelled.");
    EXPECT_EQ(s.engine.SendCommand("SYST\n"), 215) << s.server.Dialogue();
  }
}

TEST(ViewFile, FillsATextWindow) {
  for (const bool passive : {false, true}) {
    Session s(passive);
    s.server.Tree().AddFile("/f", "one\r\ntwo\n");
    s.LogIn();
    EXPECT_EQ(s.engine.ViewFile("f"), 1);
    EXPECT_EQ(s.engine.ViewFile("none"), 0);
    EXPECT_EQ(s.browser->Seen().viewerText, "one\ntwo\n");
    EXPECT_EQ(s.browser->Seen().viewerTitle, "f");
    EXPECT_EQ(s.engine.SendCommand("SYST\n"), 215);
  }
}

TEST(DeleteDirectory, SendsItsCommandsInOrder) {
  Session s;
  s.server.Tree().AddFile("/d/f", "x");
  s.server.Tree().AddFile("/d/e/g", "x");
  s.LogIn();
  EXPECT_NE(s.engine.DeleteDirectory("d"), 0);
  EXPECT_FALSE(s.server.Tree().Exists("/d"));
  EXPECT_EQ(s.Sent(),
            "CWD d\r\nPORT\r\nTYPE I\r\nLIST -la\r\n"
            "CWD e\r\nPORT\r\nTYPE I\r\nLIST -la\r\nDELE g\r\nCWD ..\r\nRMD e\r\n"
            "DELE f\r\nCWD ..\r\nRMD d\r\n");
  EXPECT_EQ(s.browser->Seen().statuses.back(), "Dir Deleted.");
}

TEST(DeleteDirectory, StopsWithoutHarm) {
  const struct {
    const char* verb;
    ScriptedAction action;
  } cases[] = {
      {"CWD", {.reply = "550 No\r\n"}},
      {"LIST", {.reply = "450 No\r\n"}},
      {"LIST", {.completion = "451 Cut\r\n"}},
      {"LIST", {.data = "drwx 1 u g 1 Jan 1 10:00 /\r\n"}},
      {"LIST", {.data = "-rwx 1 u g 1 Jan 1 10:00 ../keep\r\n"}},
      {"DELE", {.reply = "550 No\r\n"}},
  };
  for (const auto& c : cases) {
    Session s(true);
    s.server.Tree().AddFile("/keep", "x");
    s.server.Tree().AddFile("/d/f", "x");
    s.server.Tree().AddLink("/d/link", "/");
    s.server.On(c.verb, c.action, 1);
    s.LogIn();
    EXPECT_EQ(s.engine.DeleteDirectory("d"), 0) << c.verb;
    EXPECT_TRUE(s.server.Tree().Exists("/keep"));
    EXPECT_TRUE(s.server.Tree().Exists("/d"));
    s.engine.SetPWD();
    EXPECT_EQ(s.browser->Seen().path, "/") << c.verb << s.server.Dialogue();
  }
  // A tree without end: every directory holds itself.
  Session s(true);
  s.server.On("CWD", {.reply = "250 ok\r\n"});
  s.server.On("LIST", {.data = "drwx 1 u g 1 Jan 1 10:00 d\r\n"});
  s.LogIn();
  EXPECT_EQ(s.engine.DeleteDirectory("d"), 0);
}

}  // namespace
}  // namespace corvane
