#include "util/LocalFile.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cerrno>

#include "support/Files.h"
#include "support/TemporaryDirectory.h"

namespace corvane {
namespace {

namespace fs = std::filesystem;
using std::string_view_literals::operator""sv;
using Mode = LocalFile::Mode;

struct LocalFileTest : testing::Test {
  TemporaryDirectory directory;
  const fs::path& folder = directory.Path();
  LocalFile file;
};

TEST_F(LocalFileTest, DiscardRemovesOnlyWhatOpenMade) {
  Write(folder / "old", "kept");
  ASSERT_EQ(file.Open(folder, "old", Mode::Create), 0);
  file.Discard();
  EXPECT_EQ(Contents(folder / "old"), "kept");
  for (const bool replaced : {false, true}) {
    ASSERT_EQ(file.Open(folder, "fresh", Mode::Create), 0);
    if (replaced) fs::remove(folder / "fresh");
    if (replaced) Write(folder / "fresh", "somebody else's");
    file.Discard();
    EXPECT_EQ(fs::exists(folder / "fresh"), replaced);
  }
}

TEST_F(LocalFileTest, OneWriterAtATime) {
  LocalFile other;
  ASSERT_EQ(file.Open(folder, "f", Mode::Create), 0);
  EXPECT_EQ(other.Open(folder, "f", Mode::Create), EWOULDBLOCK);
  EXPECT_EQ(other.Open(folder, "f", Mode::Resume), EWOULDBLOCK);
  other.Discard();
  EXPECT_EQ(other.Open(folder, "f", Mode::Read), 0);
  ASSERT_EQ(file.Close(), 0);
  EXPECT_EQ(other.Open(folder, "f", Mode::Resume), 0);
}

TEST_F(LocalFileTest, NothingOutsideTheFolderIsNamed) {
  for (const std::string_view name : {""sv, "."sv, ".."sv, "a/b"sv, "/"sv, "../x"sv, "a\0b"sv}) {
    EXPECT_FALSE(IsSafeLocalName(name));
    EXPECT_EQ(file.Open(folder, name, Mode::Create), EINVAL);
  }
  EXPECT_TRUE(IsSafeLocalName("..."));
}

TEST_F(LocalFileTest, LinksAndOtherKindsAreRefusedWithoutWaiting) {
  TemporaryDirectory outside;
  const fs::path victim = outside.Path() / "victim";
  Write(victim, "precious");
  fs::create_symlink(victim, folder / "link");
  fs::create_symlink(outside.Path() / "none", folder / "dangling");
  fs::create_directory(folder / "directory");
  ASSERT_EQ(::mkfifo((folder / "fifo").c_str(), 0600), 0);
  for (const Mode mode : {Mode::Create, Mode::Resume, Mode::Read}) {
    EXPECT_EQ(file.Open(folder, "link", mode), ELOOP);
    EXPECT_EQ(file.Open(folder, "dangling", mode), ELOOP);
    EXPECT_EQ(file.Open(folder, "directory", mode), EISDIR);
    EXPECT_EQ(file.Open(folder, "fifo", mode), ENOTSUP);
    EXPECT_EQ(file.Open("/dev", "null", mode), ENOTSUP);
  }
  EXPECT_FALSE(fs::exists(outside.Path() / "none"));
  EXPECT_EQ(fs::file_size(victim), 8U);
  EXPECT_EQ(file.OpenForReading(folder / "fifo"), ENOTSUP);
  EXPECT_EQ(file.OpenForReading(folder / "link"), 0) << "the user may choose a link";
  fs::create_directory_symlink(outside.Path(), folder / "folder");
  EXPECT_EQ(file.Open(folder / "folder", "victim", Mode::Read), 0) << "or reach the folder by one";
}

TEST_F(LocalFileTest, AFolderIsEnteredAndNeverFollowed) {
  TemporaryDirectory outside;
  fs::create_directory_symlink(outside.Path(), folder / "link");
  fs::create_symlink("none", folder / "dangling");
  Write(folder / "file", "x");
  LocalFolder top;
  LocalFolder inside;
  ASSERT_EQ(top.Open(folder), 0);
  EXPECT_EQ(LocalFolder().Open(folder / "none"), ENOENT);
  for (const char* name : {"link", "dangling", "file"}) EXPECT_EQ(inside.Enter(top, name), ENOTDIR);
  for (const char* name : {"", ".", "..", "a/b", "/"}) EXPECT_EQ(inside.Enter(top, name), EINVAL);
  for (const bool there : {false, true}) EXPECT_EQ(inside.Enter(top, "made"), 0) << there;
  // What is put in a folder's place later is of no interest.
  fs::rename(folder / "made", folder / "moved");
  fs::create_directory_symlink(outside.Path(), folder / "made");
  EXPECT_EQ(file.Open(inside, "f", Mode::Create), 0);
  EXPECT_TRUE(fs::exists(folder / "moved" / "f"));
  EXPECT_TRUE(fs::is_empty(outside.Path()));
}

}  // namespace
}  // namespace corvane
