#include "util/LocalFile.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>

#include <cerrno>
#include <csignal>
#include <fstream>
#include <iterator>

#include "support/TemporaryDirectory.h"

namespace corvane {
namespace {

using std::string_view_literals::operator""sv;
using Mode = LocalFile::Mode;

class LocalFileTest : public testing::Test {
 protected:
  std::string Folder() const { return directory_.Path().string(); }
  std::string Path(const std::string& name) const { return Folder() + "/" + name; }
  std::string Text(const std::string& name) const {
    std::ifstream stream(Path(name), std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
  }
  bool Exists(const std::string& name) const { return std::filesystem::exists(Path(name)); }

  TemporaryDirectory directory_;
  LocalFile file_;
};

TEST_F(LocalFileTest, AnExistingFileIsEmptiedOnlyByTruncate) {
  std::ofstream(Path("old")) << "0123456789";
  ASSERT_EQ(file_.Open(Folder(), "old", Mode::Create), 0);
  EXPECT_FALSE(file_.Created());
  EXPECT_EQ(file_.InitialSize(), 10);
  EXPECT_EQ(Text("old"), "0123456789");
  ASSERT_EQ(file_.Truncate(), 0);
  ASSERT_EQ(file_.Write(std::string("new")), 0);
  ASSERT_EQ(file_.Close(), 0);
  EXPECT_EQ(Text("old"), "new");
}

TEST_F(LocalFileTest, DiscardRemovesOnlyWhatOpenMade) {
  ASSERT_EQ(file_.Open(Folder(), "fresh", Mode::Create), 0);
  EXPECT_TRUE(file_.Created());
  file_.Discard();
  EXPECT_FALSE(Exists("fresh"));

  ASSERT_EQ(file_.Open(Folder(), "fresh", Mode::Create), 0);
  std::filesystem::remove(Path("fresh"));
  std::ofstream(Path("fresh")) << "somebody else's";
  file_.Discard();
  EXPECT_EQ(Text("fresh"), "somebody else's");
}

TEST_F(LocalFileTest, ResumeWritesAtTheEndAndSeekElsewhere) {
  EXPECT_EQ(file_.Open(Folder(), "part", Mode::Resume), ENOENT);
  EXPECT_FALSE(Exists("part"));
  std::ofstream(Path("part")) << "abc";
  ASSERT_EQ(file_.Open(Folder(), "part", Mode::Resume), 0);
  EXPECT_EQ(file_.InitialSize(), 3);
  ASSERT_EQ(file_.Write(std::string("def")), 0);
  ASSERT_EQ(file_.Seek(1), 0);
  ASSERT_EQ(file_.Write(std::string("B")), 0);
  ASSERT_EQ(file_.Close(), 0);
  EXPECT_EQ(Text("part"), "aBcdef");

  ASSERT_EQ(file_.OpenForReading(Path("part")), 0);
  char buffer[4];
  std::size_t got = 0;
  for (const std::string_view expected : {"aBcd", "ef", ""}) {
    ASSERT_EQ(file_.Read(buffer, got), 0);
    EXPECT_EQ(std::string_view(buffer, got), expected);
  }
}

TEST_F(LocalFileTest, NothingOutsideTheFolderIsNamed) {
  for (const std::string_view name : {""sv, "."sv, ".."sv, "a/b"sv, "/"sv, "../x"sv, "a\0b"sv}) {
    EXPECT_FALSE(IsSafeLocalName(name));
    EXPECT_EQ(file_.Open(Folder(), name, Mode::Create), EINVAL);
  }
  EXPECT_TRUE(IsSafeLocalName("..."));
}

TEST_F(LocalFileTest, LinksAndOtherKindsAreRefusedWithoutWaiting) {
  TemporaryDirectory outside;
  const std::string victim = outside.Path().string() + "/victim";
  std::ofstream(victim) << "precious";
  ASSERT_EQ(::symlink(victim.c_str(), Path("link").c_str()), 0);
  ASSERT_EQ(::symlink((victim + "2").c_str(), Path("dangling").c_str()), 0);
  ASSERT_EQ(::mkdir(Path("directory").c_str(), 0700), 0);
  ASSERT_EQ(::mkfifo(Path("fifo").c_str(), 0600), 0);
  for (const Mode mode : {Mode::Create, Mode::Resume, Mode::Read}) {
    EXPECT_EQ(file_.Open(Folder(), "link", mode), ELOOP);
    EXPECT_EQ(file_.Open(Folder(), "dangling", mode), ELOOP);
    EXPECT_EQ(file_.Open(Folder(), "directory", mode), EISDIR);
    EXPECT_EQ(file_.Open(Folder(), "fifo", mode), ENOTSUP);
    EXPECT_EQ(file_.Open("/dev", "null", mode), ENOTSUP);
    EXPECT_FALSE(file_.IsOpen());
  }
  EXPECT_FALSE(std::filesystem::exists(victim + "2"));
  EXPECT_EQ(file_.OpenForReading(Path("fifo")), ENOTSUP);
  EXPECT_EQ(file_.OpenForReading(Path("link")), 0) << "the user may choose a link";
  ASSERT_EQ(file_.Open(outside.Path().string(), "victim", Mode::Read), 0);
  EXPECT_EQ(file_.InitialSize(), 8);

  // The folder itself may be reached by a link.
  ASSERT_EQ(::symlink(outside.Path().c_str(), Path("folder").c_str()), 0);
  EXPECT_EQ(file_.Open(Path("folder"), "victim", Mode::Read), 0);
}

TEST_F(LocalFileTest, AWriteThatDoesNotFitSaysWhy) {
  rlimit before{};
  ASSERT_EQ(::getrlimit(RLIMIT_FSIZE, &before), 0);
  const auto handler = std::signal(SIGXFSZ, SIG_IGN);
  ASSERT_EQ(file_.Open(Folder(), "big", Mode::Create), 0);
  const rlimit small{1000, before.rlim_max};
  ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &small), 0);
  const int error = file_.Write(std::string(1500, 'x'));
  ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &before), 0);
  std::signal(SIGXFSZ, handler);
  EXPECT_EQ(error, EFBIG);
  EXPECT_EQ(std::filesystem::file_size(Path("big")), 1000U) << "what fits is kept";
}

}  // namespace
}  // namespace corvane
