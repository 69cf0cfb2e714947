#include "util/LocalFile.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cerrno>
#include <set>

#include "support/Files.h"
#include "support/TemporaryDirectory.h"

namespace corvane {
namespace {

namespace fs = std::filesystem;
using std::string_view_literals::operator""sv;
using Mode = LocalFile::Mode;

struct LocalFileTest : testing::Test {
  LocalFileTest() { EXPECT_EQ(top.Open(folder), 0); }

  // Every name in the folder, in order.
  [[nodiscard]] std::string Names() const {
    std::set<std::string> names;
    for (const auto& entry : fs::directory_iterator(folder)) names.insert(entry.path().filename());
    std::string text;
    for (const std::string& name : names) text += name + " ";
    return text;
  }

  TemporaryDirectory directory;
  const fs::path& folder = directory.Path();
  LocalFolder top;
  LocalFile file;
};

// What a transfer does with one file, and what is on the disk before its end and after it.
TEST_F(LocalFileTest, WhatStandsThereStaysUntilTheNewOneIsWhole) {
  struct Row {
    const char* what;
    Mode mode;
    const char* before;  // nullptr: nothing stands there
    int opened;
    const char* writes;
    bool afresh;                                    // and begins again with "new"
    const char *meanwhile, *committed, *discarded;  // nullptr: gone
  };
  const Row rows[] = {
      {"new", Mode::CreateNew, nullptr, 0, "abc", false, "abc", "abc", "abc"},
      {"new and empty", Mode::CreateNew, nullptr, 0, "", false, "", "", nullptr},
      {"new, taken", Mode::CreateNew, "old", EEXIST, "", false, "old", "old", "old"},
      {"replaced", Mode::Replace, "old", 0, "abc", false, "old", "abc", "old"},
      {"replaced by an empty one", Mode::Replace, "old", 0, "", false, "old", "", "old"},
      {"nothing to replace", Mode::Replace, nullptr, 0, "abc", false, nullptr, "abc", nullptr},
      {"resumed", Mode::Resume, "old", 0, "abc", false, "oldabc", "oldabc", "oldabc"},
      {"nothing to resume", Mode::Resume, nullptr, ENOENT, "", false, nullptr, nullptr, nullptr},
      {"resumed, afresh", Mode::Resume, "old", 0, "abc", true, "old", "new", "old"},
      {"new, afresh", Mode::CreateNew, nullptr, 0, "abc", true, "abc", "new", "abc"},
      {"new and empty, afresh", Mode::CreateNew, nullptr, 0, "", true, "new", "new", "new"},
      {"replaced, afresh", Mode::Replace, "old", 0, "abcdef", true, "old", "new", "old"},
  };
  const auto there = [this](const char* text, const std::string& when) {
    EXPECT_EQ(fs::exists(folder / "f"), text != nullptr) << when;
    EXPECT_EQ(Contents(folder / "f"), text == nullptr ? "" : text) << when;
  };
  for (const Row& row : rows) {
    for (const bool commit : {true, false}) {
      const std::string what = row.what + std::string(commit ? ", committed" : ", discarded");
      fs::remove(folder / "f");
      if (row.before != nullptr) Write(folder / "f", row.before);
      ASSERT_EQ(file.Open(top, "f", row.mode), row.opened) << what;
      if (row.opened == 0) {
        EXPECT_EQ(file.InitialSize(), row.before != nullptr ? 3 : 0) << what;
        EXPECT_EQ(file.Write(std::string_view(row.writes)), 0) << what;
        EXPECT_EQ(row.afresh ? file.StartAfresh() : 0, 0) << what;
        EXPECT_EQ(row.afresh ? file.Write("new"sv) : 0, 0) << what;
        there(row.meanwhile, what + ", meanwhile");
        EXPECT_EQ(commit ? file.Commit(Durability::Now) : 0, 0) << what;
        file.Discard();
      }
      there(commit ? row.committed : row.discarded, what);
      EXPECT_EQ(Names(), fs::exists(folder / "f") ? "f " : "") << what;
    }
  }
}

TEST_F(LocalFileTest, WhatIsNotCommittedIsDiscardedWithTheObject) {
  LocalFile().Discard();
  Write(folder / "old", "kept");
  {
    LocalFile fresh;
    LocalFile part;
    ASSERT_EQ(fresh.Open(top, "fresh", Mode::CreateNew), 0);
    ASSERT_EQ(part.Open(top, "old", Mode::Replace), 0);
    ASSERT_EQ(part.Write("lost"sv), 0);
    LocalFile taken;
    ASSERT_EQ(taken.Open(top, "taken", Mode::CreateNew), 0);
    fs::remove(folder / "taken");
    Write(folder / "taken", "");
  }
  EXPECT_EQ(Names(), "old taken ") << "a file that took the name since is somebody else's";
  EXPECT_EQ(Contents(folder / "old"), "kept");
}

TEST_F(LocalFileTest, OneWriterAtATime) {
  for (const Mode first : {Mode::CreateNew, Mode::Replace, Mode::Resume}) {
    for (const bool afresh : {false, true}) {
      fs::remove(folder / "f");
      if (first != Mode::CreateNew) Write(folder / "f", "old");
      ASSERT_EQ(file.Open(top, "f", first), 0);
      ASSERT_EQ(file.Write("abc"sv), 0);
      ASSERT_EQ(afresh ? file.StartAfresh() : 0, 0);
      LocalFile other;
      for (const Mode second : {Mode::Replace, Mode::Resume})
        EXPECT_EQ(other.Open(top, "f", second), EWOULDBLOCK);
      EXPECT_EQ(other.Open(top, "f", Mode::Read), 0);
      ASSERT_EQ(file.Commit(Durability::Later), 0);
      EXPECT_EQ(other.Open(top, "f", Mode::Resume), 0);
    }
  }
  ASSERT_EQ(file.Open(top, "g", Mode::Replace), 0);
  EXPECT_EQ(LocalFile().Open(top, "g", Mode::CreateNew), EWOULDBLOCK);
  EXPECT_FALSE(fs::exists(folder / "g"));
}

TEST_F(LocalFileTest, APartFileIsHiddenFitsAndIsTakenOverFromTheDead) {
  const std::string ordinary = PartFile::NameFor("f");
  const std::string wide = std::string(253, 'n') + "\xC3\xA9";
  EXPECT_EQ(ordinary, ".f.corvane-part");
  EXPECT_NE(PartFile::NameFor(wide), PartFile::NameFor(std::string(255, 'n')));
  for (const std::string& name : {std::string("f"), wide, std::string(240, 'n') + "\xE2\x82\xAC"}) {
    const fs::path part = folder / PartFile::NameFor(name);
    EXPECT_LE(part.filename().string().size(), 255U);
    Write(part, "what a killed process had");
    Write(folder / name, "old");
    fs::permissions(folder / name, fs::perms::owner_all);
    ASSERT_EQ(file.Open(top, name, Mode::Replace), 0);
    ASSERT_EQ(file.Write("new"sv), 0);
    EXPECT_EQ(Contents(part), "new");
    EXPECT_EQ(fs::status(part).permissions(), fs::perms::owner_all) << "never open to others";
    ASSERT_EQ(file.Commit(Durability::Later), 0);
    EXPECT_EQ(Contents(folder / name), "new");
    EXPECT_EQ(fs::status(folder / name).permissions(), fs::perms::owner_all);
    fs::remove(folder / name);
  }
  EXPECT_EQ(Names(), "");
  // A link in the part file's place leads nowhere.
  Write(folder / "victim", "precious");
  fs::create_symlink("victim", folder / ordinary);
  EXPECT_EQ(file.Open(top, "f", Mode::Replace), ELOOP);
  EXPECT_EQ(Contents(folder / "victim"), "precious");
}

TEST_F(LocalFileTest, ReadsAtAnyOffsetAndWritesManyPieces) {
  const std::string bytes = Bytes(std::size_t{20} << 20);
  Write(folder / "f", bytes.substr(0, 1000));
  ASSERT_EQ(file.Open(top, "f", Mode::Resume), 0);
  char tail[64];
  std::size_t got = 0;
  ASSERT_EQ(file.ReadAt(960, tail, got), 0);
  EXPECT_EQ(std::string_view(tail, got), bytes.substr(960, 40));
  EXPECT_EQ(file.Position(), 1000);
  ASSERT_EQ(file.Write(std::string_view(bytes).substr(1000)), 0);
  ASSERT_EQ(file.Commit(Durability::Now), 0);
  EXPECT_TRUE(Contents(folder / "f") == bytes);
  ASSERT_EQ(file.Open(top, "f", Mode::Read), 0);
  ASSERT_EQ(file.Read(tail, got), 0);
  EXPECT_EQ(file.Position(), 64);
  EXPECT_NE(file.Write("x"sv), 0);
  EXPECT_EQ(top.SyncAll(), 0);
}

TEST_F(LocalFileTest, NothingOutsideTheFolderIsNamed) {
  for (const std::string_view name : {""sv, "."sv, ".."sv, "a/b"sv, "/"sv, "../x"sv, "a\0b"sv}) {
    EXPECT_FALSE(IsSafeLocalName(name));
    EXPECT_EQ(file.Open(top, name, Mode::CreateNew), EINVAL);
  }
  EXPECT_TRUE(IsSafeLocalName("..."));
  EXPECT_LT(OpenBeneath(top.Fd(), "../x", O_RDONLY), 0);
  EXPECT_EQ(errno, EXDEV);
}

TEST_F(LocalFileTest, LinksAndOtherKindsAreRefusedWithoutWaiting) {
  TemporaryDirectory outside;
  const fs::path victim = outside.Path() / "victim";
  Write(victim, "precious");
  fs::create_symlink(victim, folder / "link");
  fs::create_symlink(outside.Path() / "none", folder / "dangling");
  fs::create_directory(folder / "directory");
  ASSERT_EQ(::mkfifo((folder / "fifo").c_str(), 0600), 0);
  const std::string names = Names();
  for (const Mode mode : {Mode::CreateNew, Mode::Replace, Mode::Resume, Mode::Read}) {
    const bool fresh = mode == Mode::CreateNew;
    EXPECT_EQ(file.Open(top, "link", mode), fresh ? EEXIST : ELOOP);
    EXPECT_EQ(file.Open(top, "dangling", mode), fresh ? EEXIST : ELOOP);
    EXPECT_EQ(file.Open(top, "directory", mode), fresh ? EEXIST : EISDIR);
    EXPECT_EQ(file.Open(top, "fifo", mode), fresh ? EEXIST : ENOTSUP);
  }
  EXPECT_EQ(Names(), names);
  EXPECT_FALSE(fs::exists(outside.Path() / "none"));
  EXPECT_EQ(fs::file_size(victim), 8U);
  EXPECT_EQ(file.OpenForReading(folder / "fifo"), ENOTSUP);
  EXPECT_EQ(file.OpenForReading(folder / "link"), 0) << "the user may choose a link";
  fs::create_directory_symlink(outside.Path(), folder / "folder");
  LocalFolder linked;
  EXPECT_EQ(linked.Open(folder / "folder"), 0) << "or reach the folder by one";
}

TEST_F(LocalFileTest, AFolderIsEnteredAndNeverFollowed) {
  TemporaryDirectory outside;
  fs::create_directory_symlink(outside.Path(), folder / "link");
  fs::create_symlink("none", folder / "dangling");
  Write(folder / "file", "x");
  LocalFolder inside;
  EXPECT_EQ(LocalFolder().Open(folder / "none"), ENOENT);
  for (const char* name : {"link", "dangling", "file"}) EXPECT_NE(inside.Enter(top, name), 0);
  for (const char* name : {"", ".", "..", "a/b", "/"}) EXPECT_EQ(inside.Enter(top, name), EINVAL);
  for (const bool there : {false, true}) EXPECT_EQ(inside.Enter(top, "made"), 0) << there;
  // What is put in a folder's place later is of no interest.
  fs::rename(folder / "made", folder / "moved");
  fs::create_directory_symlink(outside.Path(), folder / "made");
  ASSERT_EQ(file.Open(inside, "f", Mode::CreateNew), 0);
  EXPECT_TRUE(fs::exists(folder / "moved" / "f"));
  EXPECT_TRUE(fs::is_empty(outside.Path()));
}

}  // namespace
}  // namespace corvane
