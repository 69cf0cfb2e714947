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

std::string Rows(const std::string& text, ListingParser::Form form = ListingParser::Form::Lines) {
  ListingParser parser(text, 2024y / 3 / 15, form);
  RemoteEntry entry;
  std::string found;
  while (parser.Next(entry)) found += Describe(entry) + '\n';
  if (parser.Strange() > 0) found += "strange " + std::to_string(parser.Strange()) + '\n';
  if (parser.TooLong() > 0) found += "too long " + std::to_string(parser.TooLong()) + '\n';
  return found;
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
  for (const auto& [text, rows] : cases) EXPECT_EQ(Rows(text), rows) << text;
}

TEST(ListingParser, ReadsFacts) {
  const std::pair<std::string, std::string> cases[] = {
      {"type=file;size=5;modify=20260314092600.123456;UNIX.mode=0640;UNIX.owner=7; a b\n",
       "1|-rw-r-----|7||5|2026-03-14 09:26|a b\n"},
      {"UNIX.groupname=web;Unix.ownerName=ann;unix.owner=7;TYPE=Dir;Size=4096;x;y=; d\n",
       "2||ann|web||1970-01-01 00:00|d\n"},
      {"modify=16010101000000;type=file; old\nmodify=20260231000000;type=file; no day\n",
       "1|||||1601-01-01 00:00|old\n1|||||1970-01-01 00:00|no day\n"},
      // What is of no type that is known can be nothing that is followed.
      {"type=OS.unix=slink:/a b;UNIX.mode=0777; l\ntype=os.unix=symlink;size=8; m\n"
       "type=unknown;UNIX.mode=644; u\nsize=3; t\ntype=OS.unix=chr-1/3; c\n",
       "3|lrwxrwxrwx||||1970-01-01 00:00|l->/a b\n3|l||||1970-01-01 00:00|m\n"
       "3|?rw-r--r--||||1970-01-01 00:00|u\n3|||||1970-01-01 00:00|t\n"
       "4|||||1970-01-01 00:00|c\n"},
      {"type=cdir; /here\ntype=pdir; /\ntype=file; ..\ntype=dir; .\ntype=dir; a/b\n",
       "2|||||1970-01-01 00:00|a/b\n"},
      {"type=file;size=1;  lead\ntype=file; a;b=c d\n plain\ntype=file;size=2 short\n",
       "1||||1|1970-01-01 00:00| lead\n1|||||1970-01-01 00:00|a;b=c d\n"
       "3|||||1970-01-01 00:00|plain\n1||||2|1970-01-01 00:00|short\n"},
      {"type=file;size=-1; a\ntype=file;size=99999999999999999999; b\ntype=file;\ntype=file; \n",
       "1|||||1970-01-01 00:00|a\n1|||||1970-01-01 00:00|b\nstrange 2\n"},
  };
  for (const auto& [text, rows] : cases)
    EXPECT_EQ(Rows(text, ListingParser::Form::Facts), rows) << text;
}

}  // namespace
}  // namespace corvane
