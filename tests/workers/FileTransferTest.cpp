#include "workers/FileTransfer.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "ftp/MFtp.h"
#include "kit/Background.h"
#include "support/Files.h"
#include "support/RecordingTransferUi.h"
#include "support/ScriptedServer.h"
#include "support/TemporaryDirectory.h"
#include "support/WaitFor.h"

namespace corvane {
namespace {

using namespace std::chrono_literals;
namespace fs = std::filesystem;

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

  void SetUpload(const std::string& name) {
    description.download = false;
    description.localItems = {folder.Path() / name};
  }

  TransferEnd Wait() {
    EXPECT_TRUE(WaitFor([&] { return row->End().has_value(); })) << server.Dialogue();
    EXPECT_TRUE(Background::WaitForNone(2000ms));
    return row->End().value_or(TransferEnd::Failed);
  }
};

TEST(FileTransfer, DownloadsResumesOrStartsAgain) {
  for (const std::string part : {"", "012", "abc"}) {
    const bool resumed = part == "012";
    Job job;
    Write(job.folder.Path() / "f", part);
    job.description.overwrite = part.empty();
    if (!resumed) job.server.On("REST", {.reply = "502 No\r\n"});
    job.Start();
    EXPECT_EQ(job.Wait(), TransferEnd::Finished) << job.row->Seen().why;
    EXPECT_EQ(Contents(job.folder.Path() / "f"), "0123456789");
    EXPECT_EQ(job.row->Progress().start, resumed ? 3 : 0);
    EXPECT_EQ(job.row->Progress().done, resumed ? 7 : 10);
    EXPECT_EQ(job.server.Transcript().back(), "QUIT\r\n");
  }
}

TEST(FileTransfer, FailsWithAReason) {
  const std::tuple<std::string, std::string, std::function<void(Job&)>> cases[] = {
      {"../f", "cannot be used", [](Job&) {}},
      {"g", "No such file", [](Job&) {}},
      {"f", "Invalid User", [](Job& j) { j.server.On("PASS", {.reply = "530 No\r\n"}); }},
      {"f", "Cannot do that", [](Job& j) { j.description.remoteDirectory = "/none"; }},
      {"f", "No such file", [](Job& j) { j.description.targetFolder += "/none"; }},
      {"f", "No such file", [](Job& j) { j.description.overwrite = false; }},
      {"f", "Could not read", [](Job& j) { j.SetUpload("gone"); }},
      {"f", "Could not open", [](Job& j) { fs::create_symlink("gone", j.folder.Path() / "f"); }},
      {"f", "was lost", [](Job& j) { j.server.On("CWD", {.control = ControlEnd::Close}); }},
  };
  for (const auto& [name, why, prepare] : cases) {
    Job job;
    prepare(job);
    job.Start(name, true);
    EXPECT_EQ(job.Wait(), TransferEnd::Failed) << why;
    EXPECT_NE(job.row->Seen().why.find(why), std::string::npos) << why << job.row->Seen().why;
    EXPECT_FALSE(fs::exists(job.folder.Path() / "g") || fs::exists(job.folder.Path() / "gone"));
  }
}

TEST(FileTransfer, CancelsAtEveryStep) {
  const std::pair<const char*, ScriptedAction> cases[] = {
      {"greeting", {.reply = ""}},  {"CWD", {.reply = ""}},
      {"RETR", {.reply = ""}},      {"RETR", {.dataLimit = 3, .dataEnd = DataEnd::Stall}},
      {"RETR", {.completion = ""}},
  };
  for (const auto& [verb, action] : cases) {
    Job job;
    std::atomic<bool> arrived = false;
    ScriptedAction held = action;
    held.arrived = [&] { arrived = true; };
    job.server.On(verb, held);
    job.Start();
    const bool partial = action.dataEnd == DataEnd::Stall;
    ASSERT_TRUE(WaitFor([&] { return arrived && (!partial || job.row->Progress().done == 3); }));
    job.worker->Cancel();
    EXPECT_EQ(job.Wait(), TransferEnd::Cancelled) << verb;
    EXPECT_TRUE(!partial || Contents(job.folder.Path() / "f") == "012");
  }
}

TEST(FileTransfer, Uploads) {
  Job job;
  Write(job.folder.Path() / "up load", "abc");
  job.SetUpload("up load");
  job.Start();
  EXPECT_EQ(job.Wait(), TransferEnd::Finished) << job.row->Seen().why;
  EXPECT_EQ(job.server.Tree().File("/pub/up load"), "abc");
  EXPECT_EQ(job.row->Seen().Texts("ADDI"_what, "FileName"), std::vector<std::string>{"up load"});
}

}  // namespace
}  // namespace corvane
