#include <sys/resource.h>

#include <algorithm>
#include <csignal>

#include "workers/TransferJob.h"

namespace corvane {
namespace {

TEST(FileTransfer, DownloadsResumesOrStartsAgain) {
  const std::string whole = "0123456789";
  // What is there, what the server does, where the transfer begins, and what is there afterwards.
  const std::tuple<const char*, const char*, ScriptedAction, std::int64_t, const char*> cases[] = {
      {"", "REST", {}, 0, "0123456789"},
      {"012", "REST", {}, 3, "0123456789"},
      {"0123456789", "REST", {}, 10, "0123456789"},
      {"abc", "REST", {.reply = "502 No\r\n"}, 0, "0123456789"},
      // The server agrees to resume and begins at the start all the same.
      {"abc", "RETR", {.data = whole}, 0, "0123456789"},
      {"abcdefghij", "RETR", {.data = whole}, 0, "0123456789"},
      {"0123456789a", "REST", {}, 0, nullptr},
  };
  for (const auto& [part, verb, action, start, result] : cases) {
    for (const std::int64_t listed : {10, -1}) {
      if (listed < 0 && result == nullptr) continue;
      Job job;
      Write(job.folder.Path() / "f", part);
      job.description.overwrite = *part == '\0';
      job.server.On(verb, action, 1);
      job.Fetch("f", listed < 0 ? kLink : kFile, listed);
      EXPECT_EQ(job.Run() == TransferEnd::Finished, result != nullptr) << job.row->Seen().why;
      EXPECT_EQ(Contents(job.folder.Path() / "f"), result != nullptr ? result : part);
      EXPECT_EQ(job.row->Progress().start, start) << part;
    }
  }
  // What was there is kept when the second attempt fails too.
  Job job;
  Write(job.folder.Path() / "f", "abc");
  job.description.overwrite = false;
  job.server.On("RETR", {.data = Bytes(100'000)}, 1);
  job.server.On("RETR", {.reply = "550 No\r\n"}, 2);
  job.Fetch("f", kFile, 99'000);
  EXPECT_EQ(job.Run(), TransferEnd::Failed);
  EXPECT_EQ(Contents(job.folder.Path() / "f"), "abc");
}

TEST(FileTransfer, FailsWithAReason) {
  const std::tuple<std::string, std::string, std::function<void(Job&)>> cases[] = {
      {"../f", "cannot be used", [](Job&) {}},
      {"g", "No such file", [](Job&) {}},
      {"f", "Invalid User", [](Job& j) { j.server.On("PASS", {.reply = "530 No\r\n"}); }},
      {"f", "Cannot do that", [](Job& j) { j.description.remoteDirectory = "/none"; }},
      {"f", "No such file", [](Job& j) { j.description.targetFolder += "/none"; }},
      {"f", "No such file", [](Job& j) { j.description.overwrite = false; }},
      {"f", "Could not read", [](Job& j) { j.Send("gone"); }},
      {"f", "Could not open", [](Job& j) { fs::create_symlink("gone", j.folder.Path() / "f"); }},
      {"f", "was lost", [](Job& j) { j.server.On("CWD", {.control = ControlEnd::Close}); }},
      {"f", "Denied",
       [](Job& j) {
         Write(j.folder.Path() / "f", "kept until the server agrees");
         j.server.On("RETR", {.reply = "550 Denied\r\n"});
       }},
      {"f", "Only 3 of 10",
       [](Job& j) { j.server.On("RETR", {.dataLimit = 3, .completion = "226 Done\r\n"}); }},
      {"f", "Gone",
       [](Job& j) {
         j.server.On("RETR",
                     {.dataLimit = 3, .dataEnd = DataEnd::Reset, .completion = "426 Gone\r\n"});
       }},
      {"f", "does not answer",
       [](Job& j) {
         j.description.engine->silenceLimit = 700;
         j.server.On("RETR", {.dataLimit = 3, .dataEnd = DataEnd::Stall, .completion = ""});
       }},
  };
  for (const auto& [name, why, prepare] : cases) {
    Job job;
    job.Fetch(name);
    prepare(job);
    EXPECT_EQ(job.Run(), TransferEnd::Failed) << why;
    EXPECT_EQ(job.Notes(), "") << "the reason says it all";
    EXPECT_NE(job.row->Seen().why.find(why), std::string::npos) << why << job.row->Seen().why;
    EXPECT_FALSE(fs::exists(job.folder.Path() / "g") || fs::exists(job.folder.Path() / "gone"));
    if (why == "Gone") continue;  // a reset may overtake the bytes before it
    const bool begun = why == "Only 3 of 10" || why == "does not answer";
    EXPECT_EQ(Contents(job.folder.Path() / "f"), why == "Denied" ? "kept until the server agrees"
                                                 : begun         ? "012"
                                                                 : "");
  }
}

TEST(FileTransfer, AsksOnceWhetherAFileShrank) {
  for (const std::string size : {"213 10\r\n", "213 300000\r\n", "550 No\r\n", "213 x\r\n"}) {
    Job job;
    job.server.On("SIZE", {.reply = size});
    job.Fetch("f", kFile, 300'000);
    EXPECT_EQ(job.Run() == TransferEnd::Finished, size == "213 10\r\n") << size;
    EXPECT_EQ(std::ranges::count(job.server.Transcript(), "SIZE f\r\n"), 1);
  }
}

TEST(FileTransfer, DoesNotWorkInAnotherDirectoryOfItsWindow) {
  Job job(true, true);
  Write(job.folder.Path() / "g", "x");
  job.Send("g");
  job.description.remoteDirectory = "/elsewhere";
  EXPECT_EQ(job.Run(), TransferEnd::Failed);
  EXPECT_FALSE(job.server.Tree().Exists("/pub/g"));
}

TEST(FileTransfer, GoesOnWhereItCanAndSaysWhatFailed) {
  Job job;
  for (const char* name : {"none", "../x", "way", "f", "gone"}) job.Fetch(name);
  fs::create_directory(job.folder.Path() / "way");
  EXPECT_EQ(job.Run(), TransferEnd::Failed);
  EXPECT_EQ(Contents(job.folder.Path() / "f"), "0123456789");
  EXPECT_EQ(job.row->Seen().why, "4 of 5 entries failed.");
  EXPECT_EQ(job.Notes(),
            "none: No such file.\n../x: The name \"../x\" cannot be used for a local file.\n"
            "way: Could not open way: Is a directory\ngone: No such file.\n");
  EXPECT_FALSE(fs::exists(job.folder.Path() / "gone"));
}

TEST(FileTransfer, StopsWhenTheDiskIsFull) {
  for (const bool shared : {false, true}) {
    Job job(true, shared);
    job.server.Tree().AddFile("/pub/big", Bytes(3000));
    for (const char* name : {"f", "big", "none"}) job.Fetch(name);
    rlimit before{};
    ASSERT_EQ(::getrlimit(RLIMIT_FSIZE, &before), 0);
    const auto handler = std::signal(SIGXFSZ, SIG_IGN);
    const rlimit small{1000, before.rlim_max};
    ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &small), 0);
    const TransferEnd end = job.Run();
    ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &before), 0);
    std::signal(SIGXFSZ, handler);
    EXPECT_EQ(end, TransferEnd::Failed);
    EXPECT_EQ(job.Notes(), "big: Could not write the file: File too large\n");
    EXPECT_TRUE(Contents(job.folder.Path() / "big") == Bytes(3000).substr(0, 1000));
    const EngineLease lease(*job.description.engine);
    EXPECT_TRUE(!shared || job.description.engine->SendCommand("SYST\n") == 215);
  }
}

TEST(FileTransfer, UploadsWhatAFileHolds) {
  const std::string bytes = Bytes(3'000'000);
  const std::tuple<const char*, std::int64_t, std::string> cases[] = {
      {"stays", 0, ""}, {"shrinks", -1'000'000, "became shorter"}, {"grows", 10, ""}};
  for (const auto& [name, change, why] : cases) {
    Job job;
    const fs::path path = job.folder.Path() / name;
    Write(path, bytes);
    job.Send(name);
    job.server.On("STOR", {.arrived = [&, by = change] {
                    fs::resize_file(path, static_cast<std::uintmax_t>(3'000'000 + by));
                  }});
    EXPECT_EQ(job.Run() == TransferEnd::Finished, why.empty()) << job.row->Seen().why;
    EXPECT_NE(job.row->Seen().why.find(why), std::string::npos) << job.row->Seen().why;
    const std::string stored = job.server.Tree().File(std::string("/pub/") + name).value_or("");
    EXPECT_TRUE(!why.empty() || stored == Contents(path)) << name;
    const auto messages = job.row->Seen().messages;
    ASSERT_EQ(messages.size(), why.empty() ? 1U : 0U);
    if (!why.empty()) continue;
    EXPECT_EQ(messages[0].FindInt64("fSize"), 3'000'000 + change);
  }
}

}  // namespace
}  // namespace corvane
