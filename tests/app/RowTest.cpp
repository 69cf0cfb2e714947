#include <gtest/gtest.h>

#include <string>

#include "app/MWListItem.h"

namespace corvane {
namespace {

TEST(Row, IconFollowsTypeAndExtension) {
  struct Case {
    std::int32_t type;
    const char* name;
    IconKind icon;
  };
  for (const Case& c : {
           Case{kFile, "abc", IconKind::Paper},
           Case{kFile, ".gz", IconKind::Archive},
           Case{kFile, ".z", IconKind::Archive},
           Case{kFile, "x.z", IconKind::Paper},
           Case{kFile, "a.gz", IconKind::Archive},
           Case{kFile, "ARCHIVE.ZIP", IconKind::Archive},
           Case{kFile, "x.ZIP ", IconKind::Paper},
           Case{kFile, ".profile", IconKind::Paper},
           Case{kFile, ".jpg", IconKind::Paper},
           Case{kFile, "a.tar.Html", IconKind::Html},
           Case{kFile, "song.mid", IconKind::Audio},
           Case{kFile, "tool.pkg", IconKind::Package},
           Case{kFile, "photo.JPEG", IconKind::Graphic},
           Case{kFile, "", IconKind::Paper},
           Case{kDirectory, "folder.zip", IconKind::Directory},
           Case{kLink, "photo.jpg", IconKind::Link},
           Case{kDevice, "tty", IconKind::Link},
       }) {
    EXPECT_EQ(IconFor(c.type, c.name), c.icon) << c.name;
  }
}

TEST(Row, SizeTextIsMadeFromTheNumber) {
  struct Case {
    std::int64_t size;
    const char* text;
  };
  for (const Case& c : {
           Case{0, " 0 B"},
           Case{1023, " 1023 B"},
           Case{1024, " 1.00 KB"},
           Case{1'023'999, " 1000.00 KB"},
           Case{1'024'000, " 1.00  MB"},
           Case{1'048'576, " 1.02  MB"},
           Case{5'000'000'000, " 4882.81  MB"},
           Case{kDirectorySize, " <dir>"},
           Case{kLinkSize, " <link>"},
           Case{kNoSize, " -"},
       }) {
    fileStruct entry;
    entry.size = c.size;
    EXPECT_EQ(MWListItem(entry, "name").SizeText(), c.text) << c.size;
  }
}

TEST(Row, DateIsMonthDayYear) {
  fileStruct entry;
  entry.time.tm_year = 126;
  entry.time.tm_mon = 10;
  entry.time.tm_mday = 3;
  EXPECT_EQ(MWListItem(entry, "name").DateText(), "11/03/2026");
  EXPECT_EQ(MWListItem(entry, "..").DateText(), "-");
}

TEST(Row, NamesCompareWithoutRegardToAsciiCase) {
  EXPECT_EQ(CompareLowered("readme", "README"), 0);
  EXPECT_LT(CompareLowered("a", "B"), 0);
  EXPECT_GT(CompareLowered("ab", "a"), 0);
  EXPECT_GT(CompareLowered("\xC3\xBC", "z"), 0);
}

}  // namespace
}  // namespace corvane
