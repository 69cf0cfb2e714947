#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <iostream>
#include <map>

#include "ftp/MFtp.h"
#include "support/Files.h"
#include "support/RealServers.h"
#include "support/RecordingBrowserUi.h"
#include "support/RecordingTransferUi.h"
#include "support/TemporaryDirectory.h"
#include "support/WaitFor.h"
#include "util/LocalFile.h"
#include "workers/ControlLooper.h"
#include "workers/FileTransfer.h"

namespace corvane {
namespace {

namespace fs = std::filesystem;

constexpr char kKorean[] = "\xED\x95\x9C\xEA\xB8\x80 \xEC\x97\xAC.txt";

/// What a user does in one session, against a server of the distribution.
class SessionTest : public testing::TestWithParam<std::tuple<std::string, bool>> {
 protected:
  void SetUp() override {
    const auto& [name, passive] = GetParam();
    if (const std::string obstacle = RealServer::Obstacle(name); !obstacle.empty()) {
      ASSERT_TRUE(name == "pure-ftpd" && ::geteuid() != 0) << obstacle;
      GTEST_SKIP() << obstacle;
    }
    Write(pub_ / "a b", bytes_);
    Write(pub_ / kKorean, "utf-8\n");
    Write(pub_ / "empty", "");
    Write(tree_ / "one" / "deep", "x");
    fs::create_directories(tree_ / "void");
    server_ = std::make_unique<RealServer>(name, remote_.Path());
    engine_ = std::make_unique<MFtp>("127.0.0.1", server_->port, server_->user, server_->password,
                                     passive, browser_);
    engine_->silenceLimit = 20'000;
    ASSERT_EQ(engine_->Login(), 1);
    engine_->GetServerType();
  }

  void TearDown() override {
    if (HasFailure()) std::cerr << browser_->Seen().log;
  }

  std::vector<std::string> List() {
    EXPECT_TRUE(engine_->SetUpData());
    const MFtp::Listing listing = engine_->GetListing();
    EXPECT_TRUE(listing.whole);
    engine_->ParseListing(listing.text);
    auto names = browser_->Seen().Names();
    std::sort(names.begin(), names.end());
    return names;
  }

  int Download(const std::string& name, std::int64_t expected, std::int64_t offset = 0) {
    LocalFile file;
    const auto mode = offset > 0 ? LocalFile::Mode::Resume : LocalFile::Mode::Create;
    EXPECT_EQ(file.Open(local_.Path(), name, mode), 0);
    EXPECT_TRUE(engine_->PrepareTransfer());
    EXPECT_EQ(engine_->SendCommand("REST " + std::to_string(offset) + "\n"), 350);
    return engine_->Download(row_, file, {name, expected, offset, offset == 0}, never_);
  }

  int Upload(const std::string& name, std::int64_t offset) {
    LocalFile file;
    EXPECT_EQ(file.OpenForReading(local_.Path() / name), 0);
    EXPECT_EQ(file.Seek(offset), 0);
    EXPECT_TRUE(engine_->PrepareTransfer());
    EXPECT_EQ(engine_->SendCommand("REST " + std::to_string(offset) + "\n"), 350);
    return engine_->Upload(row_, file, name, never_);
  }

  const std::string bytes_ = Bytes(700'000);
  TemporaryDirectory remote_;
  TemporaryDirectory local_;
  const fs::path pub_ = remote_.Path() / "pub";
  const fs::path tree_ = remote_.Path() / "tree";
  std::unique_ptr<RealServer> server_;
  std::shared_ptr<RecordingBrowserUi> browser_ = std::make_shared<RecordingBrowserUi>();
  std::unique_ptr<MFtp> engine_;
  RecordingTransferUi row_;
  const std::atomic<bool> never_ = false;
};

TEST_P(SessionTest, DoesWhatAUserDoes) {
  EXPECT_EQ(List(), (std::vector<std::string>{".", "..", "pub", "tree"}));
  EXPECT_NE(engine_->CheckResult(engine_->ChangeDir("pub")), 0);
  EXPECT_EQ(List(), (std::vector<std::string>{".", "..", "a b", "empty", kKorean}));

  EXPECT_EQ(Download("a b", 700'000), 1) << engine_->LastFailure();
  EXPECT_TRUE(Contents(local_.Path() / "a b") == bytes_);
  EXPECT_EQ(Download("empty", 0), 1) << engine_->LastFailure();
  EXPECT_EQ(Download(kKorean, 6), 1) << engine_->LastFailure();
  EXPECT_EQ(Contents(local_.Path() / kKorean), "utf-8\n");

  fs::resize_file(local_.Path() / "a b", 300'001);
  EXPECT_EQ(Download("a b", 700'000, 300'001), 1) << engine_->LastFailure();
  EXPECT_TRUE(Contents(local_.Path() / "a b") == bytes_);

  const std::string name = "up \xC3\xA4";
  Write(local_.Path() / name, bytes_);
  for (const std::int64_t offset : {0, 123'456}) {
    EXPECT_EQ(Upload(name, offset), 1) << engine_->LastFailure();
    EXPECT_TRUE(Contents(pub_ / name) == bytes_);
    EXPECT_EQ(engine_->GetFileSize(name), 700'000);
    fs::resize_file(pub_ / name, 123'456);
  }

  EXPECT_NE(engine_->CheckResult(engine_->ChangeDir("..")), 0);
  Refusals refused;
  EXPECT_NE(engine_->DeleteDirectory("tree", refused), 0) << refused.Text();
  EXPECT_FALSE(fs::exists(tree_));
  EXPECT_EQ(List(), (std::vector<std::string>{".", "..", "pub"}));
  EXPECT_EQ(engine_->SendCommand("QUIT\n"), 221);
}

/// The files below a folder by their path, folders as such.
std::map<std::string, std::string> TreeOf(const fs::path& top) {
  std::map<std::string, std::string> tree;
  for (const auto& entry : fs::recursive_directory_iterator(top))
    tree[entry.path().lexically_relative(top)] =
        entry.is_directory() ? "folder" : "file " + Contents(entry.path());
  return tree;
}

TEST_P(SessionTest, TransfersTreesBothWays) {
  for (const char* name :
       {"A", "a", "up/sp ace", "up/\xC3\xA4", "up/-n", "up/[x]*", "up/deep/'q\""})
    Write(local_.Path() / "d" / name, Bytes(name[1] == '\0' ? 0 : 40'000));
  fs::create_directories(local_.Path() / "d" / "up" / "void");
  const auto expected = TreeOf(local_.Path() / "d");
  for (const bool download : {false, true}) {
    auto row = std::make_shared<RecordingTransferUi>();
    transferStruct what;
    what.engine = std::make_shared<MFtp>("127.0.0.1", server_->port, server_->user,
                                         server_->password, std::get<1>(GetParam()), row);
    what.remoteDirectory = "pub";
    what.download = download;
    what.targetFolder = local_.Path() / "back";
    fs::create_directory(what.targetFolder);
    fileStruct item;
    item.name = "d";
    what.items = {item};
    what.localItems = {local_.Path() / "d"};
    std::make_shared<FileTransfer>(row, what, false)->Run();
    ASSERT_TRUE(WaitFor([&] { return row->End().has_value(); }, std::chrono::seconds(30)));
    EXPECT_EQ(row->End(), TransferEnd::Finished) << row->Seen().why;
    EXPECT_TRUE(TreeOf(download ? local_.Path() / "back" / "d" : pub_ / "d") == expected);
  }
}

TEST_P(SessionTest, DoesWhatABrowserWindowAsks) {
  fs::create_directory_symlink("../tree", pub_ / "to tree");
  fs::create_symlink(kKorean, pub_ / "to file");
  const auto& ui = browser_;
  const auto looper =
      std::make_shared<ControlLooper>("127.0.0.1", server_->port, server_->user, server_->password,
                                      "pub", std::get<1>(GetParam()), ui);
  ASSERT_TRUE(looper->Run());
  const auto post = [&](std::uint32_t what,
                        std::vector<std::pair<const char*, std::string>> fields) {
    Message message(what);
    for (const auto& [name, text] : fields) message.AddString(name, text);
    EXPECT_TRUE(looper->PostMessage(std::move(message)));
  };
  const auto shows = [&](std::vector<std::string> names) {
    std::sort(names.begin(), names.end());
    const auto listed = [&] {
      auto shown = ui->Seen().Names();
      std::sort(shown.begin(), shown.end());
      return shown == names;
    };
    return WaitFor([&] { return ui->Seen().count.has_value() && listed(); });
  };
  post("CNNT"_what, {});
  ASSERT_TRUE(shows({".", "..", "a b", "empty", kKorean, "to file", "to tree"}));
  const std::string path = ui->Seen().path;
  post("MKDR"_what, {{"path", path}, {"name", "n \xC3\xB6"}});
  ASSERT_TRUE(shows({".", "..", "a b", "empty", kKorean, "n \xC3\xB6", "to file", "to tree"}));
  post("RNFL"_what, {{"path", path}, {"original", "a b"}, {"renameto", "x -> y"}});
  ASSERT_TRUE(WaitFor([&] { return fs::exists(pub_ / "x -> y"); }));
  post("PCHN"_what, {{"cwd", "."}});
  ASSERT_TRUE(shows({".", "..", "x -> y", "empty", kKorean, "n \xC3\xB6", "to file", "to tree"}));
  Message entries("DELE"_what);
  entries.AddString("path", path);
  for (const char* name : {"empty", "x -> y", "n \xC3\xB6"}) {
    entries.AddString("name", name);
    entries.AddInt32("type", *name == 'n' ? kDirectory : kFile);
  }
  EXPECT_TRUE(looper->PostMessage(entries));
  ASSERT_TRUE(shows({".", "..", kKorean, "to file", "to tree"}));
  post("VWFL"_what, {{"path", path}, {"file", kKorean}});
  EXPECT_TRUE(WaitFor([&] { return ui->Seen().viewerText == "utf-8\n"; }));
  post("HSYM"_what, {{"sym", "to file"}});
  post("HSYM"_what, {{"sym", "to tree"}});
  EXPECT_TRUE(shows({".", "..", "one", "void"}));
  EXPECT_EQ(ui->Seen().Texts("DWLD"_what, "FileName"), std::vector<std::string>{"to file"});
  EXPECT_EQ(ui->Seen().Texts("GERR"_what, "warning"), std::vector<std::string>{});
  looper->Quit();
}

INSTANTIATE_TEST_SUITE_P(Servers, SessionTest,
                         testing::Combine(testing::ValuesIn(RealServer::Names()), testing::Bool()));

}  // namespace
}  // namespace corvane
