#include "workers/FileTransfer.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "ftp/MFtp.h"
#include "kit/Background.h"
#include "support/RecordingTransferUi.h"
#include "support/ScriptedServer.h"
#include "support/TemporaryDirectory.h"
#include "support/WaitFor.h"

namespace corvane {
namespace {

using namespace std::chrono_literals;

std::string Contents(const std::filesystem::path& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

/// One transfer of "/pub/f" in its own connection.
struct Job {
  ScriptedServer server;
  TemporaryDirectory folder;
  std::shared_ptr<RecordingTransferUi> row = std::make_shared<RecordingTransferUi>();
  transferStruct description;
  std::shared_ptr<FileTransfer> worker;

  Job() {
    server.Tree().AddFile("/pub/f", "0123456789");
    description.remoteDirectory = "/pub";
    description.targetFolder = folder.Path();
  }

  void Start(const std::string& name = "f", bool passive = false) {
    description.engine = std::make_shared<MFtp>("127.0.0.1", server.Port(), "u", "p", passive, row);
    fileStruct item;
    item.name = name;
    item.type = kFile;
    item.size = 10;
    description.items = {item};
    worker = std::make_shared<FileTransfer>(row, description, false);
    worker->Run();
  }

  TransferEnd Wait() {
    EXPECT_TRUE(WaitFor([&] { return row->End().has_value(); })) << server.Dialogue();
    EXPECT_TRUE(Background::WaitForNone(2000ms));
    return row->End().value_or(TransferEnd::Failed);
  }
};

TEST(FileTransfer, Downloads) {
  Job job;
  job.Start();
  EXPECT_EQ(job.Wait(), TransferEnd::Finished) << job.row->Seen().why;
  EXPECT_EQ(Contents(job.folder.Path() / "f"), "0123456789");
  EXPECT_EQ(job.server.Transcript().back(), "QUIT\r\n");
  EXPECT_EQ(job.row->Progress().done, 10);
  EXPECT_EQ(job.row->Seen().files, std::vector<std::string>{"f"});
}

TEST(FileTransfer, ResumesOrStartsAgain) {
  for (const bool refused : {false, true}) {
    Job job;
    std::ofstream(job.folder.Path() / "f") << (refused ? "abc" : "012");
    if (refused) job.server.On("REST", {.reply = "502 No\r\n"});
    job.description.overwrite = false;
    job.Start();
    EXPECT_EQ(job.Wait(), TransferEnd::Finished) << job.row->Seen().why;
    EXPECT_EQ(Contents(job.folder.Path() / "f"), "0123456789");
    EXPECT_EQ(job.row->Progress().start, refused ? 0 : 3);
  }
}

TEST(FileTransfer, FailsWithAReason) {
  const struct {
    const char* what;
    std::function<void(Job&)> prepare;
    const char* name;
    const char* why;
  } cases[] = {
      {"login", [](Job& j) { j.server.On("PASS", {.reply = "530 No\r\n"}); }, "f",
       "Invalid Username"},
      {"folder", [](Job& j) { j.description.remoteDirectory = "/none"; }, "f", "Cannot do that"},
      {"name", [](Job&) {}, "../f", "cannot be used"},
      {"dots", [](Job&) {}, "..", "cannot be used"},
      {"missing", [](Job&) {}, "g", "No such"},
      {"target", [](Job& j) { j.description.targetFolder += "/none"; }, "f",
       "No such file or directory"},
      {"no part", [](Job& j) { j.description.overwrite = false; }, "f",
       "No such file or directory"},
      {"link", [](Job& j) { std::filesystem::create_symlink("elsewhere", j.folder.Path() / "f"); },
       "f", "Could not open"},
      {"lost", [](Job& j) { j.server.On("TYPE", {.reply = "", .control = ControlEnd::Close}); },
       "f", "closed the connection"},
  };
  for (const auto& c : cases) {
    Job job;
    c.prepare(job);
    job.Start(c.name, true);
    EXPECT_EQ(job.Wait(), TransferEnd::Failed) << c.what;
    EXPECT_NE(job.row->Seen().why.find(c.why), std::string::npos) << c.what << job.row->Seen().why;
    EXPECT_FALSE(std::filesystem::exists(job.folder.Path() / "g"));
    EXPECT_FALSE(std::filesystem::exists(job.folder.Path() / "elsewhere"));
  }
}

TEST(FileTransfer, CancelsAtEveryStep) {
  const struct {
    const char* verb;
    ScriptedAction action;
  } cases[] = {
      {"greeting", {.reply = ""}},  {"CWD", {.reply = ""}},
      {"RETR", {.reply = ""}},      {"RETR", {.dataLimit = 3, .dataEnd = DataEnd::Stall}},
      {"RETR", {.completion = ""}},
  };
  for (const auto& c : cases) {
    Job job;
    std::atomic<bool> arrived = false;
    ScriptedAction action = c.action;
    action.arrived = [&] { arrived = true; };
    job.server.On(c.verb, action);
    job.Start();
    ASSERT_TRUE(WaitFor([&] { return arrived.load(); })) << c.verb;
    if (c.action.dataLimit == 3) {
      ASSERT_TRUE(WaitFor([&] { return job.row->Progress().done == 3; }));
    }
    job.worker->Cancel();
    EXPECT_EQ(job.Wait(), TransferEnd::Cancelled) << c.verb;
    const bool partial = c.action.dataLimit == 3;
    if (partial) EXPECT_EQ(Contents(job.folder.Path() / "f"), "012");
  }
}

TEST(FileTransfer, Uploads) {
  Job job;
  std::ofstream(job.folder.Path() / "up load") << "abc";
  job.description.download = false;
  job.description.localItems = {job.folder.Path() / "up load"};
  job.Start();
  EXPECT_EQ(job.Wait(), TransferEnd::Finished) << job.row->Seen().why;
  EXPECT_EQ(job.server.Tree().File("/pub/up load"), "abc");
  EXPECT_EQ(job.row->Seen().Texts("ADDI"_what, "FileName"), std::vector<std::string>{"up load"});

  Job gone;
  gone.description.download = false;
  gone.description.localItems = {gone.folder.Path() / "gone"};
  gone.Start();
  EXPECT_EQ(gone.Wait(), TransferEnd::Failed);
  EXPECT_EQ(gone.row->Seen().trailings,
            std::vector<std::string>{"  *Could not open file for reading!*"});
}

}  // namespace
}  // namespace corvane
