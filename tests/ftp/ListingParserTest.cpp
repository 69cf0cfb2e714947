#include "ftp/ListingParser.h"

#include <gtest/gtest.h>

#include <ctime>
#include <string>
#include <utility>

namespace corvane {
namespace {

using namespace std::chrono_literals;

std::string Describe(const RemoteEntry& e) {
  char time[32] = "";
  const std::time_t seconds = e.modified ? e.modified->seconds : 0;
  std::tm utc{};
  ::gmtime_r(&seconds, &utc);
  const bool day = e.modified && e.modified->precision == RemoteTime::Precision::Day;
  std::strftime(time, sizeof time, day ? "%Y-%m-%d" : "%Y-%m-%d %H:%M", &utc);
  return std::to_string(static_cast<int>(e.kind)) + '|' + e.mode + '|' + e.owner + '|' + e.group +
         '|' + (e.size ? std::to_string(*e.size) : "") + '|' + time + '|' + e.name +
         (e.linkTarget.empty() ? "" : "->" + e.linkTarget);
}

TEST(ListingParser, ReadsEveryKindOfLine) {
  const std::string longest(4096, 'n');
  // What is of no known form, or too long, is counted.
  const std::pair<std::string, std::string> cases[] = {
      {"total 42\n", ""},
      {"total 42", ""},
      {"-rw-r--r--   1 ftp ftp  1023 Jan 12 12:34 a b.txt\n",
       "1|-rw-r--r--|ftp|ftp|1023|2024-01-12 12:34|a b.txt\n"},
      {"total 8\ndrwxr-xr-x 2 u g 512 Mar  1  1999  pub\n", "2|drwxr-xr-x|u|g||1999-03-01|pub\n"},
      // A month that is still to come belongs to the year before; this month does not.
      {"-r- 1 u g 1024 Dec 31 23:59 x\n-r- 1 u g 0 Mar 31 23:59  y",
       "1|-r-|u|g|1024|2023-12-31 23:59|x\n1|-r-|u|g|0|2024-03-31 23:59| y\n"},
      {"lrwx 1 u g 9 Feb  2 10:00 data -> /var/data\nlrwx 1 u g 9 Feb  2 10:00 plain\n",
       "3|lrwx|u|g||2024-02-02 10:00|data->/var/data\n3|lrwx|u|g||2024-02-02 10:00|plain\n"},
      {"-r- 1 u g 4294967296000 Foo  9 2001 odd -> name\n",
       "1|-r-|u|g|4294967296000|2001-01-09|odd -> name\n"},
      {"crw 1 u g 1, 3 Jan  1 2000 null\n", "4|crw|u|g||2000-01-01|null\n"},
      {"drwx 1 u g 1 Jan  1 2000 .\ndrwx 1 u g 1 Jan  1 2000 ..\n-r- 1 u g 1 Jan  1 9:30 ...\n",
       "1|-r-|u|g|1|9-01-01|...\n"},
      // A line is one entry or none; the next one is read all the same.
      {"-r- 1 u\n-r- 1 u g 1 Jan 1 10:00 z\n", "1|-r-|u|g|1|2024-01-01 10:00|z\nstrange 1\n"},
      {"-r- 1 u g 1 Jan 1 10:00 z\ntotal 8\n", "1|-r-|u|g|1|2024-01-01 10:00|z\nstrange 1\n"},
      {"\n \n   ", ""},
      {"Listing denied\n", "strange 1\n"},
      {"07-17-00  02:35PM                 2048 a b.txt\n07-18-2031  12:05AM       <DIR>          "
       "My  d",
       "1||||2048|2000-07-17 14:35|a b.txt\n2|||||2031-07-18 00:05|My  d\n"},
      {"07-17-71  14:35  <JUNCTION>  j\n", "3|||||1971-07-17 14:35|j\n"},
      {"07-17-00  02:35PM  none x\n7/1/00 02:35PM 1 x\n07-17-00\n", "strange 3\n"},
      {"-r- 1 u g 1 Jan 1 10:00 " + longest + "\n-r- 1 u g 1 Jan 1 10:00 n" + longest + "\n",
       "1|-r-|u|g|1|2024-01-01 10:00|" + longest + "\ntoo long 1\n"},
  };
  for (const auto& [text, rows] : cases) {
    ListingParser parser(text, 2024y / 3 / 15);
    RemoteEntry entry;
    std::string found;
    while (parser.Next(entry)) found += Describe(entry) + '\n';
    if (parser.Strange() > 0) found += "strange " + std::to_string(parser.Strange()) + '\n';
    if (parser.TooLong() > 0) found += "too long " + std::to_string(parser.TooLong()) + '\n';
    EXPECT_EQ(found, rows) << text;
  }
}

}  // namespace
}  // namespace corvane
