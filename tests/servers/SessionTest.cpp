#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>

#include "ftp/MFtp.h"
#include "net/NLException.h"
#include "support/RealServers.h"
#include "support/RecordingBrowserUi.h"
#include "support/RecordingTransferUi.h"
#include "support/TemporaryDirectory.h"
#include "util/LocalFile.h"

namespace corvane {
namespace {

namespace fs = std::filesystem;

constexpr char kKorean[] = "\xED\x95\x9C\xEA\xB8\x80 \xEC\x97\xAC.txt";

std::string Contents(const fs::path& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

void Write(const fs::path& path, const std::string& bytes) {
  fs::create_directories(path.parent_path());
  std::ofstream(path, std::ios::binary) << bytes;
}

std::string Bytes(std::size_t count) {
  std::string bytes(count, '\0');
  for (std::size_t i = 0; i < count; ++i) bytes[i] = static_cast<char>(i * 31 + i / 257);
  return bytes;
}

/// What a user does in one session, against a server of the distribution.
class SessionTest : public testing::TestWithParam<std::tuple<std::string, bool>> {
 protected:
  void SetUp() override {
    const auto& [name, passive] = GetParam();
    if (const std::string obstacle = RealServer::Obstacle(name); !obstacle.empty())
      GTEST_SKIP() << obstacle;
    Write(remote_.Path() / "pub" / "a b", Bytes(700'000));
    Write(remote_.Path() / "pub" / kKorean, "utf-8\n");
    Write(remote_.Path() / "pub" / "empty", "");
    Write(remote_.Path() / "tree" / "one" / "deep", "x");
    Write(remote_.Path() / "tree" / "two", "x");
    fs::create_directories(remote_.Path() / "tree" / "void");
    server_ = std::make_unique<RealServer>(name, remote_.Path());
    engine_ = std::make_unique<MFtp>("127.0.0.1", server_->port, server_->user, server_->password,
                                     passive, browser_);
    engine_->silenceLimit = 20'000;
    ASSERT_EQ(engine_->Login(), 1) << browser_->Seen().log;
    engine_->GetServerType();
  }

  void Session();

  std::vector<std::string> List() {
    EXPECT_TRUE(engine_->SetUpData()) << browser_->Seen().log;
    const MFtp::Listing listing = engine_->GetListing();
    EXPECT_TRUE(listing.whole) << browser_->Seen().log;
    browser_->BeginListing();
    engine_->ParseListing(listing.text);
    auto names = browser_->Seen().Names();
    std::sort(names.begin(), names.end());
    return names;
  }

  int Download(const std::string& name, std::int64_t expected, bool resume) {
    LocalFile file;
    EXPECT_EQ(
        file.Open(local_.Path(), name, resume ? LocalFile::Mode::Resume : LocalFile::Mode::Create),
        0);
    EXPECT_TRUE(engine_->PrepareTransfer());
    const std::int64_t offset = resume ? file.InitialSize() : 0;
    if (resume) EXPECT_EQ(engine_->SendCommand("REST " + std::to_string(offset) + "\n"), 350);
    const int result = engine_->Download(row_, file, {name, expected, offset, !resume}, never_);
    EXPECT_EQ(file.Close(), 0);
    return result;
  }

  int Upload(const std::string& name, std::int64_t offset) {
    LocalFile file;
    EXPECT_EQ(file.OpenForReading(local_.Path() / name), 0);
    EXPECT_EQ(file.Seek(offset), 0);
    EXPECT_TRUE(engine_->PrepareTransfer());
    if (offset > 0) EXPECT_EQ(engine_->SendCommand("REST " + std::to_string(offset) + "\n"), 350);
    return engine_->Upload(row_, file, name, never_);
  }

  TemporaryDirectory remote_;
  TemporaryDirectory local_;
  std::unique_ptr<RealServer> server_;
  std::shared_ptr<RecordingBrowserUi> browser_ = std::make_shared<RecordingBrowserUi>();
  std::unique_ptr<MFtp> engine_;
  RecordingTransferUi row_;
  const std::atomic<bool> never_ = false;
};

TEST_P(SessionTest, DoesWhatAUserDoes) {
  try {
    Session();
  } catch (const NLException& error) {
    FAIL() << error.Text() << browser_->Seen().log;
  }
}

void SessionTest::Session() {
  EXPECT_EQ(List(), (std::vector<std::string>{".", "..", "pub", "tree"}));
  EXPECT_NE(engine_->CheckResult(engine_->ChangeDir("pub")), 0);
  EXPECT_EQ(List(), (std::vector<std::string>{".", "..", "a b", "empty", kKorean}));

  const std::string bytes = Bytes(700'000);
  EXPECT_EQ(Download("a b", 700'000, false), 1) << engine_->LastFailure();
  EXPECT_TRUE(Contents(local_.Path() / "a b") == bytes);
  EXPECT_EQ(Download("empty", 0, false), 1) << engine_->LastFailure();
  EXPECT_EQ(Download(kKorean, 6, false), 1) << engine_->LastFailure();
  EXPECT_EQ(Contents(local_.Path() / kKorean), "utf-8\n");
  EXPECT_EQ(Download("none", 1, false), -1);
  EXPECT_FALSE(engine_->LastFailure().empty());

  fs::resize_file(local_.Path() / "a b", 300'001);
  EXPECT_EQ(Download("a b", 700'000, true), 1) << engine_->LastFailure();
  EXPECT_TRUE(Contents(local_.Path() / "a b") == bytes);

  Write(local_.Path() / "up \xC3\xA4", bytes);
  EXPECT_EQ(Upload("up \xC3\xA4", 0), 1) << engine_->LastFailure();
  EXPECT_TRUE(Contents(remote_.Path() / "pub" / "up \xC3\xA4") == bytes);
  EXPECT_EQ(engine_->GetFileSize("up \xC3\xA4"), 700'000);
  fs::resize_file(remote_.Path() / "pub" / "up \xC3\xA4", 123'456);
  EXPECT_EQ(Upload("up \xC3\xA4", 123'456), 1) << engine_->LastFailure();
  EXPECT_TRUE(Contents(remote_.Path() / "pub" / "up \xC3\xA4") == bytes);

  EXPECT_NE(engine_->CheckResult(engine_->ChangeDir("..")), 0);
  EXPECT_NE(engine_->DeleteDirectory("tree"), 0) << browser_->Seen().log;
  EXPECT_FALSE(fs::exists(remote_.Path() / "tree"));
  EXPECT_EQ(List(), (std::vector<std::string>{".", "..", "pub"}));
  EXPECT_EQ(engine_->SendCommand("QUIT\n"), 221);
}

std::string CaseName(const testing::TestParamInfo<SessionTest::ParamType>& info) {
  std::string name = std::get<0>(info.param) + (std::get<1>(info.param) ? "Passive" : "Active");
  std::erase(name, '-');
  return name;
}

INSTANTIATE_TEST_SUITE_P(Servers, SessionTest,
                         testing::Combine(testing::ValuesIn(RealServer::Names()), testing::Bool()),
                         CaseName);

}  // namespace
}  // namespace corvane
