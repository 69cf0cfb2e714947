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
  using enum Policy;
  const ScriptedAction brokenOff = {.completion = "451 No\r\n"};
  const ScriptedAction cut = {.dataLimit = 70'000, .completion = "226 Done\r\n"};
  // Name, policy, what stands there, the size as listed, what the server does at a verb, and how
  // many bytes count as there: -1 where the transfer fails.
  using Case = std::tuple<const char*, Policy, std::optional<std::string>, int, const char*,
                          ScriptedAction, int>;
  const Case cases[] = {
      {"new", CreateNew, {}, 200'000, "", {}, 0},
      {"taken", CreateNew, part, 200'000, "", {}, -1},
      {"left alone", Skip, part, 200'000, "", {}, 0},
      {"replaced", Replace, other, 200'000, "", {}, 0},
      {"kept until whole", Replace, other, 200'000, "RETR", brokenOff, -1},
      {"resumed", Resume, part, 200'000, "", {}, 100'000},
      {"resumed, size not listed", Resume, part, -1, "", {}, 100'000},
      {"resumed, grown since it was listed", Resume, part, 150'000, "", {}, 100'000},
      {"resumed, whole already", Resume, whole, 200'000, "", {}, 200'000},
      {"resumed, but another file", Resume, other, 200'000, "", {}, 0},
      {"resumed, but longer", Resume, whole + "x", 200'000, "", {}, 0},
      {"resumed, size unknown", Resume, part, -1, "SIZE", {.reply = "500 No\r\n"}, 0},
      {"resumed, no markers", Resume, part, 200'000, "REST", {.reply = "502 No\r\n"}, 0},
      {"resumed, marker ignored", Resume, part, 200'000, "RETR", {.data = whole}, 0},
      {"resumed, short", Resume, part, 200'000, "RETR", cut, -1},
  };
  for (const auto& [name, policy, there, listed, verb, action, start] : cases) {
    SCOPED_TRACE(name);
    Job job;
    job.policy = policy;
    job.server.Tree().AddFile("/pub/f", whole);
    const fs::path path = job.folder.Path() / "f";
    if (there) Write(path, *there);
    if (*verb != '\0') job.server.On(verb, action, 1);
    job.Fetch("f", RemoteEntry::Kind::File, listed);
    EXPECT_EQ(job.Run() == TransferEnd::Finished, start >= 0) << job.row->Seen().why;
    const bool untouched = start < 0 || policy == Skip;
    std::string expected = untouched ? there.value_or("") : whole;
    if (std::string_view(name) == "resumed, short")
      expected = whole.substr(0, 100'000 - 65'536 + 70'000);
    EXPECT_TRUE(Contents(path) == expected) << Contents(path).size() << job.server.Dialogue();
    EXPECT_TRUE(start <= 0 || job.row->Progress().there == 200'000);
    const auto entries = fs::directory_iterator(job.folder.Path());
    EXPECT_LE(std::distance(entries, fs::directory_iterator()), 1) << "no part file is left";
  }
}

TEST(FileTransfer, FailsWithAReason) {
  using Prepare = std::function<void(Job&)>;
  const auto on = [](const char* verb, const ScriptedAction& action) -> Prepare {
    return [=](Job& j) { j.server.On(verb, action); };
  };
  // The reason, and what stands at the file's name in the end.
  const std::tuple<std::string, std::string, Prepare> cases[] = {
      {"cannot be used", "",
       [](Job& j) { j.description.jobs[0].local = j.folder.Path() / ".f.corvane-part"; }},
      {"Invalid User", "", on("PASS", {.reply = "530 No\r\n"})},
      {"cannot be opened", "", [](Job& j) { j.description.jobs[0].remote = "/none/f"; }},
      {"No such file", "", [](Job& j) { j.description.targetFolder += "/none"; }},
      {"No such file", "", [](Job& j) { j.description.jobs[0].policy = Policy::Resume; }},
      {"Could not read", "",
       [](Job& j) {
         j.description.jobs.clear();
         j.Send("gone");
       }},
      {"was lost", "", on("CWD", {.control = ControlEnd::Close})},
      {"Denied", "kept until the server agrees",
       [](Job& j) {
         Write(j.folder.Path() / "f", "kept until the server agrees");
         j.description.jobs[0].policy = Policy::Replace;
         j.server.On("RETR", {.reply = "550 Denied\r\n"});
       }},
      {"Only 3 of 10", "012", on("RETR", {.dataLimit = 3, .completion = "226 Done\r\n"})},
      {"does not answer", "012",
       [](Job& j) {
         j.silence = 700;
         j.server.On("RETR", {.dataLimit = 3, .dataEnd = DataEnd::Stall, .completion = ""});
       }},
  };
  for (const auto& [why, stands, prepare] : cases) {
    Job job;
    job.Fetch("f");
    prepare(job);
    const bool mayPass = why == "was lost" || why == "Only 3 of 10" || why == "does not answer";
    EXPECT_EQ(job.Run(), mayPass ? TransferEnd::Again : TransferEnd::Failed) << why;
    EXPECT_EQ(job.Notes(), "") << "the reason says it all";
    EXPECT_NE(job.row->Seen().why.find(why), std::string::npos) << why << job.row->Seen().why;
    EXPECT_EQ(Contents(job.folder.Path() / "f"), stands) << why;
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
  EXPECT_EQ(job.row->Seen().why, "4 of 5 files failed");
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
    EXPECT_TRUE(!shared || job.IsInStep());
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
    EXPECT_TRUE(!shared || job.IsInStep());
  }
}

TEST(FileTransfer, UploadsWhatAFileHolds) {
  const std::tuple<const char*, std::int64_t, std::string> cases[] = {
      {"stays", 0, ""}, {"shrinks", -1'000'000, "became shorter"}, {"grows", 10, ""}};
  for (const auto& [name, change, why] : cases) {
    Job job;
    const fs::path path = job.folder.Path() / name;
    Write(path, Bytes(3'000'000));
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
    EXPECT_TRUE(!why.empty() || messages[0].FindInt64("fSize") == 3'000'000 + change);
  }
}

}  // namespace
}  // namespace corvane
