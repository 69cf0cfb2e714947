#include "ftp/ListingParser.h"

#include <gtest/gtest.h>

#include <iomanip>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

namespace corvane {
namespace {

std::string Describe(const fileStruct& e) {
  std::ostringstream row;
  row << e.type << '|' << e.permissions << '|' << e.owner << '|' << e.group << '|' << e.size << '|'
      << e.sizeString << '|' << e.date << '|' << std::put_time(&e.time, "%Y-%m-%d %H:%M|")
      << e.name;
  return row.str();
}

std::vector<std::string> All(const std::string& text, bool totals = true) {
  std::vector<std::string> rows;
  std::tm march{};
  ::strptime("2024-03-15", "%Y-%m-%d", &march);
  EntryMaker maker(march);
  ListingParser parser(text, totals);
  ListingParser::Fields fields;
  while (parser.Next(fields)) rows.push_back(Describe(maker.Make(fields)));
  return rows;
}

TEST(ListingParser, ReadsEveryKindOfLine) {
  const std::pair<const char*, std::vector<std::string>> cases[] = {
      {"total 42\n", {}},
      {"total 42", {}},
      {"-rw-r--r--   1 ftp ftp  1023 Jan 12 12:34 a b.txt\n",
       {"1|-rw-r--r--|ftp|ftp|1023|1023 B|Jan 12 12:34|2024-01-12 12:34|a b.txt"}},
      {"total 8\ndrwxr-xr-x 2 u g 512 Mar  1  1999  pub\n",
       {"2|drwxr-xr-x|u|g|-1|<dir>|Mar 1 1999|1999-03-01 00:00|pub"}},
      // A month that is still to come belongs to the year before; this month does not.
      {"-r- 1 u g 1024 Dec 31 23:59 x\n-r- 1 u g 1024000 Mar 31 23:59 y\n",
       {"1|-r-|u|g|1024|1.00 KB|Dec 31 23:59|2023-12-31 23:59|x",
        "1|-r-|u|g|1024000|1.00  MB|Mar 31 23:59|2024-03-31 23:59|y"}},
      {"lrwx 1 u g 9 Feb  2 10:00 data -> /var/data\nlrwx 1 u g 9 Feb  2 10:00 plain\n",
       {"3|lrwx|u|g|-2|<link>|Feb 2 10:00|2024-02-02 10:00|data",
        "3|lrwx|u|g|-2|<link>|Feb 2 10:00|2024-02-02 10:00|plain"}},
      {"-r- 1 u g 4294967296000 Foo  9 2001 odd -> name\n",
       {"1|-r-|u|g|4294967296000|4194304.00  MB|Foo 9 2001|2001-01-09 00:00|odd -> name"}},
      {"drwx 1 u g 1 Jan  1 2000 .\ndrwx 1 u g 1 Jan  1 2000 ..\n-r- 1 u g 1 Jan  1 9:30 ...\n",
       {"1|-r-|u|g|1|1 B|Jan 1 9:30|9-01-01 00:00|..."}},
      // A line that is too short takes what it lacks from the next one.
      {"-r- 1 u\n-r- 1 u g 1 Jan 1 10:00 z\n",
       {"1|-r-|u|-r-|1|1 B|u g 1|1-01-00 00:00|Jan 1 10:00 z"}},
      {"\n \n   ", {}},
  };
  for (const auto& [text, rows] : cases) EXPECT_EQ(All(text), rows) << text;
  EXPECT_EQ(All("total 0\n-r- 1 u g 1 Jan 1 10:00 z\n", false).size(), 1U);
}

}  // namespace
}  // namespace corvane
