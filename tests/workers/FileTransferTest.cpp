#include <sys/resource.h>

#include <algorithm>
#include <csignal>
#include <new>
#include <optional>

#include "workers/TransferJob.h"

namespace corvane {
namespace {

// What stands at the name already, and the policy for it.
TEST(FileTransfer, KeepsReplacesOrGoesOn) {
  const std::string whole = Bytes(200'000);
  const std::string part = whole.substr(0, 100'000);
  std::string other = part;
  other.back() = static_cast<char>(~other.back());
  struct Case {
    const char* name;
    Policy policy;
    std::optional<std::string> there;
    std::int64_t listed;
    const char* verb;
    ScriptedAction action;
    std::int64_t start;  ///< of the bytes that count as there; -1 where the transfer fails
    std::size_t fetched;
  };
  const std::size_t tail = 64 * 1024;
  const std::size_t all = whole.size();
  const Case cases[] = {
      {"new", Policy::CreateNew, {}, 200'000, "", {}, 0, all},
      {"taken", Policy::CreateNew, part, 200'000, "", {}, -1, 0},
      {"left alone", Policy::Skip, part, 200'000, "", {}, 0, 0},
      {"replaced", Policy::Replace, other, 200'000, "", {}, 0, all},
      {"kept until whole",
       Policy::Replace,
       other,
       200'000,
       "RETR",
       {.completion = "451 No\r\n"},
       -1,
       all},
      {"resumed", Policy::Resume, part, 200'000, "", {}, 100'000, 100'000 + tail},
      {"resumed, size not listed", Policy::Resume, part, -1, "", {}, 100'000, 100'000 + tail},
      {"resumed, grown since it was listed",
       Policy::Resume,
       part,
       150'000,
       "",
       {},
       100'000,
       100'000 + tail},
      {"resumed, whole already", Policy::Resume, whole, 200'000, "", {}, 200'000, tail},
      {"resumed, but another file", Policy::Resume, other, 200'000, "", {}, 0, all + tail},
      {"resumed, but longer", Policy::Resume, whole + "x", 200'000, "", {}, 0, all},
      {"resumed, size unknown", Policy::Resume, part, -1, "SIZE", {.reply = "500 No\r\n"}, 0, all},
      {"resumed, no markers",
       Policy::Resume,
       part,
       200'000,
       "REST",
       {.reply = "502 No\r\n"},
       0,
       all},
      {"resumed, marker ignored",
       Policy::Resume,
       part,
       200'000,
       "RETR",
       {.data = whole},
       0,
       all + tail},
      {"resumed, short",
       Policy::Resume,
       part,
       200'000,
       "RETR",
       {.dataLimit = 70'000, .completion = "226 Done\r\n"},
       -1,
       70'000},
      {"resumed, gone", Policy::Resume, {}, 200'000, "", {}, -1, 0},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    Job job;
    job.policy = c.policy;
    job.server.Tree().AddFile("/pub/f", whole);
    const fs::path path = job.folder.Path() / "f";
    if (c.there) Write(path, *c.there);
    if (*c.verb != '\0') job.server.On(c.verb, c.action, 1);
    job.Fetch("f", RemoteEntry::Kind::File, c.listed);
    EXPECT_EQ(job.Run() == TransferEnd::Finished, c.start >= 0) << job.row->Seen().why;
    const bool untouched = c.start < 0 || c.policy == Policy::Skip;
    std::string expected = untouched ? c.there.value_or("") : whole;
    if (std::string_view(c.name) == "resumed, short")
      expected = whole.substr(0, 100'000 - tail + 70'000);
    EXPECT_TRUE(Contents(path) == expected) << Contents(path).size() << job.server.Dialogue();
    if (c.start > 0) EXPECT_EQ(job.row->Progress().start, c.start);
    const auto entries = fs::directory_iterator(job.folder.Path());
    EXPECT_LE(std::distance(entries, fs::directory_iterator()), 1) << "no part file is left";
  }
}

TEST(FileTransfer, FailsWithAReason) {
  const std::tuple<std::string, std::string, std::function<void(Job&)>> cases[] = {
      {"../f", "cannot be used", [](Job&) {}},
      {".f.corvane-part", "cannot be used", [](Job&) {}},
      {"g", "No such file", [](Job&) {}},
      {"f", "Invalid User", [](Job& j) { j.server.On("PASS", {.reply = "530 No\r\n"}); }},
      {"f", "cannot be opened", [](Job& j) { j.description.jobs[0].remote = "/none/f"; }},
      {"f", "No such file", [](Job& j) { j.description.targetFolder += "/none"; }},
      {"f", "No such file", [](Job& j) { j.description.jobs[0].policy = Policy::Resume; }},
      {"f", "Could not read",
       [](Job& j) {
         j.description.jobs.clear();
         j.Send("gone");
       }},
      {"f", "exists already", [](Job& j) { fs::create_symlink("gone", j.folder.Path() / "f"); }},
      {"f", "was lost", [](Job& j) { j.server.On("CWD", {.control = ControlEnd::Close}); }},
      {"f", "Denied",
       [](Job& j) {
         Write(j.folder.Path() / "f", "kept until the server agrees");
         j.description.jobs[0].policy = Policy::Replace;
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
         j.session->SetSilenceLimit(700);
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

TEST(FileTransfer, AsksOnceWhetherAFileShrankOrGrew) {
  const std::tuple<std::int64_t, std::string, bool> cases[] = {
      {300'000, "213 10\r\n", true},  {300'000, "213 300000\r\n", false},
      {300'000, "550 No\r\n", false}, {300'000, "213 x\r\n", false},
      {5, "213 10\r\n", true},        {5, "213 11\r\n", true},
      {5, "213 5\r\n", false},        {5, "550 No\r\n", true},
  };
  for (const auto& [listed, size, whole] : cases) {
    Job job;
    job.server.On("SIZE", {.reply = size});
    job.Fetch("f", RemoteEntry::Kind::File, listed);
    EXPECT_EQ(job.Run() == TransferEnd::Finished, whole) << listed << size;
    EXPECT_EQ(std::ranges::count(job.server.Transcript(), "SIZE f\r\n"), 1);
  }
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
            "way: \"way\" exists already.\ngone: No such file.\n");
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
    std::optional<std::int64_t> size;
    const EngineLease lease(*job.session);
    EXPECT_TRUE(!shared || (job.session->Size("/pub/f", size).IsDone() && size == 10));
  }
}

TEST(FileTransfer, EndsAtOnceWhereItIsCancelledBeforeItsTurn) {
  Job job(true, true);
  job.Fetch("f");
  const EngineLease lease(*job.session);
  job.Start();
  job.worker->Cancel();
  EXPECT_EQ(job.Wait(), TransferEnd::Cancelled);
  EXPECT_TRUE(Background::WaitForNone(std::chrono::seconds(2)));
}

// What stands on the server already stays, unless the user has agreed.
TEST(FileTransfer, UploadsReplaceOnlyWhereAgreed) {
  const std::tuple<Policy, TransferEnd, const char*, const char*> cases[] = {
      {Policy::CreateNew, TransferEnd::Failed, "theirs", "f: \"f\" exists already.\n"},
      {Policy::Skip, TransferEnd::Finished, "theirs", "f: Left alone, for it is there already.\n"},
      {Policy::Replace, TransferEnd::Finished, "ours", ""},
  };
  for (const auto& [policy, end, stored, notes] : cases) {
    for (const char* size : {"", "502 No\r\n", "213\r\n"}) {
      Job job;
      job.policy = policy;
      if (*size != '\0') job.server.On("SIZE", {.reply = size});
      for (const char* name : {"f", "new"}) Write(job.folder.Path() / name, "ours");
      job.server.Tree().AddFile("/pub/f", "theirs");
      for (const char* name : {"f", "new"}) job.Send(name);
      EXPECT_EQ(job.Run(), end) << job.server.Dialogue();
      EXPECT_EQ(job.server.Tree().File("/pub/f"), stored);
      EXPECT_EQ(job.server.Tree().File("/pub/new"), "ours");
      EXPECT_EQ(job.Notes(), notes);
    }
  }
}

// A row that has no memory left when the file begins.
TEST(FileTransfer, AnExceptionLeavesNothingBehind) {
  struct FullRow : RecordingTransferUi {
    bool BeginFile(std::string_view /*name*/) override { throw std::bad_alloc(); }
  };
  for (const bool shared : {false, true}) {
    Job job(true, shared);
    job.row = std::make_shared<FullRow>();
    job.Fetch("f");
    EXPECT_EQ(job.Run(), TransferEnd::Failed);
    EXPECT_NE(job.row->Seen().why.find("could not be carried out"), std::string::npos);
    EXPECT_TRUE(fs::is_empty(job.folder.Path()));
    std::optional<std::int64_t> size;
    const EngineLease lease(*job.session);
    EXPECT_TRUE(!shared || (job.session->Size("/pub/f", size).IsDone() && size == 10));
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
