#include <gtest/gtest.h>
#include <unistd.h>

#include <map>
#include <set>

#include "ftp/MFtp.h"
#include "support/Files.h"
#include "support/RealServers.h"
#include "support/RecordingBrowserUi.h"
#include "support/RecordingTransferUi.h"
#include "support/TemporaryDirectory.h"
#include "support/WaitFor.h"
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
    const std::string& name = std::get<0>(GetParam());
    if (name == "pure-ftpd" && ::geteuid() != 0) GTEST_SKIP() << name << " starts for root only";
    Write(pub_ / kKorean, "utf-8\n");
    for (const char* file : {"a b", "empty", "old/deep/f"}) Write(pub_ / file, "");
    Write(remote_.Path() / "tree" / "one" / "deep", "x");
    server_ = std::make_unique<RealServer>(name, remote_.Path());
    where_ = {"127.0.0.1", server_->port, server_->user, server_->password, "pub"};
    where_.passive = std::get<1>(GetParam());
  }

  TemporaryDirectory remote_;
  const fs::path pub_ = remote_.Path() / "pub";
  std::unique_ptr<RealServer> server_;
  Site where_;
};

/// The files below a folder by their path, folders as such.
std::map<std::string, std::string> TreeOf(const fs::path& top) {
  std::map<std::string, std::string> tree;
  for (const auto& entry : fs::recursive_directory_iterator(top))
    tree[entry.path().lexically_relative(top)] =
        entry.is_directory() ? "folder" : "file " + Contents(entry.path());
  return tree;
}

TEST_P(SessionTest, TransfersTreesBothWays) {
  TemporaryDirectory local;
  const fs::path back = local.Path() / "back";
  for (const char* name :
       {"A", "a", "up/sp ace", "up/\xC3\xA4", "up/-n", "up/[x]*", "up/deep/'q\"", kKorean})
    Write(local.Path() / "d" / name, Bytes(name[1] == '\0' ? 0 : 400'000));
  fs::create_directories(local.Path() / "d" / "up" / "void");
  fs::create_directory(back);
  const auto expected = TreeOf(local.Path() / "d");
  for (const std::string step : {"send", "fetch", "resume"}) {
    const auto row = std::make_shared<RecordingTransferUi>();
    const auto session = std::make_shared<MFtp>(where_, row);
    transferStruct what;
    what.download = step != "send";
    what.targetFolder = back;
    if (step == "resume") fs::resize_file(back / "d" / "up" / "\xC3\xA4", 300'001);
    const std::string here = what.download ? back / "d" : local.Path() / "d";
    what.jobs = {{"pub/d", here, RemoteEntry::Kind::Directory, -1,
                  step == "resume" ? Policy::Resume : Policy::CreateNew}};
    std::make_shared<FileTransfer>(row, what, session)->Run();
    ASSERT_TRUE(WaitFor([&] { return row->End().has_value(); }, std::chrono::seconds(30)));
    EXPECT_EQ(row->End(), TransferEnd::Finished) << step << row->Seen().why;
    EXPECT_TRUE(TreeOf(what.download ? back / "d" : pub_ / "d") == expected) << step;
  }
}

TEST_P(SessionTest, DoesWhatABrowserWindowAsks) {
  fs::create_directory_symlink("../tree", pub_ / "to tree");
  fs::create_symlink(kKorean, pub_ / "to file");
  const auto ui = std::make_shared<RecordingBrowserUi>();
  const auto looper =
      std::make_shared<ControlLooper>(where_, std::make_shared<MFtp>(where_, ui), ui);
  ASSERT_TRUE(looper->Run());
  const auto post = [&](std::uint32_t what,
                        const std::vector<std::pair<const char*, std::string>>& fields) {
    Message message(what);
    message.AddString("path", ui->Seen().path);
    for (const auto& [name, text] : fields) message.AddString(name, text);
    EXPECT_TRUE(looper->PostMessage(std::move(message)));
  };
  using Names = std::set<std::string>;
  const auto shows = [&](const Names& names) {
    const bool shown = WaitFor([&] {
      const auto now = ui->Seen().Names();
      return ui->Seen().count.has_value() && Names(now.begin(), now.end()) == names;
    });
    EXPECT_TRUE(shown) << ui->Seen().log;
    return shown;
  };
  post("CNNT"_what, {});
  ASSERT_TRUE(shows({"a b", "empty", kKorean, "old", "to file", "to tree"}));
  post("MKDR"_what, {{"name", "n \xC3\xB6"}});
  post("RNFL"_what, {{"original", "a b"}, {"renameto", "x -> y"}});
  post("CRDR"_what, {});
  ASSERT_TRUE(shows({"x -> y", "empty", kKorean, "old", "to file", "to tree", "n \xC3\xB6"}));
  Message entries("DELE"_what);
  entries.AddString("path", ui->Seen().path);
  for (const char* name : {"empty", "x -> y", "n \xC3\xB6", "old"}) {
    entries.AddString("name", name);
    entries.AddInt32("type", fs::is_directory(pub_ / name) ? 2 : 1);
  }
  EXPECT_TRUE(looper->PostMessage(entries));
  ASSERT_TRUE(shows({kKorean, "to file", "to tree"}));
  EXPECT_FALSE(fs::exists(pub_ / "old"));
  Write(pub_ / "new", "12345");
  Message fresh("STAT"_what);
  fresh.AddString("path", ui->Seen().path);
  for (const char* name : {"new", "to tree"}) fresh.AddString("name", name);
  EXPECT_TRUE(looper->PostMessage(fresh));
  ASSERT_TRUE(shows({kKorean, "to file", "to tree", "new"}));
  EXPECT_EQ(ui->Seen().entries.back().size, 5);
  EXPECT_EQ(ui->Seen().entries.back().mode, "-rw-r--r--");
  if (std::get<0>(GetParam()) == "proftpd") {
    post("DUPL"_what, {{"name", "new"}, {"to", "new [2]"}});
    ASSERT_TRUE(shows({kKorean, "to file", "to tree", "new", "new [2]"}));
    EXPECT_EQ(Contents(pub_ / "new [2]"), "12345");
    post("MOVE"_what, {{"name", "new [2]"}, {"to", "../tree/one"}});
  }
  post("MOVE"_what, {{"name", "new"}, {"to", "to tree/one"}});
  ASSERT_TRUE(shows({kKorean, "to file", "to tree"}));
  EXPECT_EQ(Contents(remote_.Path() / "tree" / "one" / "new"), "12345");
  post("VWFL"_what, {{"file", kKorean}});
  EXPECT_TRUE(WaitFor([&] { return ui->Seen().viewerText == "utf-8\n"; }));
  post("HSYM"_what, {{"sym", "to file"}});
  post("HSYM"_what, {{"sym", "to tree"}});
  EXPECT_TRUE(shows({"one"}));
  EXPECT_EQ(ui->Seen().Texts("DWLD"_what, "FileName"), std::vector<std::string>{"to file"});
  EXPECT_EQ(ui->Seen().Texts("GERR"_what, "warning"), std::vector<std::string>{});
  looper->Quit();
}

INSTANTIATE_TEST_SUITE_P(Servers, SessionTest,
                         testing::Combine(testing::ValuesIn(RealServer::Names()), testing::Bool()));

}  // namespace
}  // namespace corvane
