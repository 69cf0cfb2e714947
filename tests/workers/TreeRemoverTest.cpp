#include "workers/TreeRemover.h"

#include <gtest/gtest.h>

#include "ftp/MFtp.h"
#include "support/RecordingBrowserUi.h"
#include "support/ScriptedServer.h"

namespace corvane {
namespace {

// RMD is sent for what was emptied whole, whatever stands where in its listing; the rest is deleted
// and what is left is named.
TEST(TreeRemover, RemovesOnlyWhatItHasEmptied) {
  const auto line = [](const std::string& mode, const std::string& name) {
    return mode + " 1 u g 1 Jan 1 2020 " + name + "\r\n";
  };
  struct Case {
    const char* verb;
    ScriptedAction action;
    int occurrence;
    TreeBounds bounds;
    std::string left;  ///< of "/d/"
    std::string told;
  };
  const Case cases[] = {
      {"", {}, 0, {}, "", ""},
      {"DELE", {.reply = "550 Not a\r\n"}, 1, {}, "d|d/a|", "d/a: Not a"},
      {"DELE", {.reply = "550 Not x\r\n"}, 2, {}, "d|d/s|d/s/x|", "d/s/x: Not x"},
      {"RMD", {.reply = "550 Not s\r\n"}, 1, {}, "d|d/s|", "d/s: Not s"},
      {"CWD", {.reply = "550 Shut\r\n"}, 2, {}, "d|d/s|d/s/x|", "d/s: Shut"},
      {"LIST",
       {.data = line("lrwxrwxrwx", "l -> a") + line("-rw-r--r--", "a")},
       1,
       {},
       "d|d/s|d/s/x|d/t|d/t/y|d/z|",
       "d/l: Left alone, for it is a link."},
      {"LIST",
       {.data = line("srwxrwxrwx", "q") + line("-rw-r--r--", "a")},
       1,
       {},
       "d|d/s|d/s/x|d/t|d/t/y|d/z|",
       "d/q: Left alone, for it is a special file."},
      {"LIST",
       {.data = line("-rw-r--r--", "../keep") + line("-rw-r--r--", "a")},
       1,
       {},
       "d|d/s|d/s/x|d/t|d/t/y|d/z|",
       "d/../keep: Left alone, for the name leads elsewhere."},
      {"LIST",
       {.data = line("drwxr-xr-x", "s") + "what is this\r\n"},
       1,
       {},
       "d|d/a|d/t|d/t/y|d/z|",
       "d: Lines of the listing that are not understood: 1"},
      {"LIST", {.completion = "451 Cut\r\n"}, 2, {}, "d|d/s|d/s/x|", "*"},
      {"",
       {},
       0,
       {.entries = 4},
       "d|d/s|d/s/x|d/t|d/t/y|d/z|",
       "d/s: The deletion stopped here, after 4 entries."},
      {"",
       {},
       0,
       {.entries = 1},
       "d|d/s|d/s/x|d/t|d/t/y|d/z|",
       "d: The deletion stopped here, after 1 entries."},
      {"",
       {},
       0,
       {.depth = 1},
       "d|d/s|d/s/x|d/t|d/t/y|",
       "d/s: The directories are nested too deeply.\nd/t: The directories are nested too deeply."},
  };
  for (const Case& c : cases) {
    ScriptedServer server;
    for (const char* path : {"/d/a", "/d/s/x", "/d/t/y", "/d/z", "/keep"})
      server.Tree().AddFile(path, "1");
    if (*c.verb != '\0') server.On(c.verb, c.action, c.occurrence);
    const auto ui = std::make_shared<RecordingBrowserUi>();
    MFtp session(server.Where(true), ui);
    ASSERT_TRUE(session.Connect().IsDone());
    Refusals refused;
    TreeRemover remover(session, *ui, refused, "/", c.bounds);
    EXPECT_EQ(remover.RemoveDirectory("d"), c.left.empty()) << server.Dialogue();
    std::string left;
    for (const auto& [path, text] : server.Tree().Everything())
      if (path.starts_with("/d")) left += path.substr(1) + "|";
    EXPECT_EQ(left, c.left) << server.Dialogue();
    EXPECT_TRUE(c.told == "*" || refused.Lines().English() == c.told) << refused.Lines().English();
    EXPECT_EQ(refused.Count() == 0, c.left.empty());
    EXPECT_TRUE(server.Tree().Exists("/keep"));
  }
}

// What was stopped begins nothing more.
TEST(TreeRemover, StopsInTheMiddle) {
  ScriptedServer server;
  for (const char* path : {"/d/a", "/d/s/x"}) server.Tree().AddFile(path, "1");
  const auto ui = std::make_shared<RecordingBrowserUi>();
  const auto session = std::make_shared<MFtp>(server.Where(true), ui);
  const auto interrupt = [weak = std::weak_ptr(session)] {
    if (const auto held = weak.lock()) held->Interrupt();
  };
  server.On("DELE", {.arrived = interrupt, .reply = ""}, 1);
  ASSERT_TRUE(session->Connect().IsDone());
  Refusals refused;
  TreeRemover remover(*session, *ui, refused, "/");
  EXPECT_FALSE(remover.RemoveDirectory("d"));
  EXPECT_EQ(std::ranges::count(ui->Seen().statuses, "Deleting File."), 1);
  EXPECT_EQ(std::ranges::count(ui->Seen().statuses, "Deleting Directory."), 0);
}

}  // namespace
}  // namespace corvane
