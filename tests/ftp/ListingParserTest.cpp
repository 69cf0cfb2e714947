#include "ftp/ListingParser.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <ctime>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "ftp/ListingText.h"

namespace corvane {
namespace {

using namespace std::chrono_literals;

constexpr std::chrono::year_month_day kToday = 2024y / 3 / 15;

// Kind, mode, owner, group, size, time and name; "?" where the name cannot be told.
std::string Describe(const RemoteEntry& e) {
  char time[32] = "";
  const std::time_t seconds = e.modified ? e.modified->seconds : 0;
  std::tm utc{};
  ::gmtime_r(&seconds, &utc);
  using Precision = RemoteTime::Precision;
  const Precision precision = e.modified ? e.modified->precision : Precision::Day;
  const char* const form = precision == Precision::Day      ? "%Y-%m-%d"
                           : precision == Precision::Minute ? "%Y-%m-%d %H:%M"
                                                            : "%Y-%m-%d %H:%M:%S";
  if (e.modified) std::strftime(time, sizeof time, form, &utc);
  return std::to_string(static_cast<int>(e.kind)) + '|' + e.mode + '|' + e.owner + '|' + e.group +
         '|' + (e.size ? std::to_string(*e.size) : "") + '|' + time + '|' + e.name +
         (e.linkTarget.empty() ? "" : "->" + e.linkTarget) + (e.unclear ? "?" : "");
}

std::string Rows(const std::string& text, ListingParser::Form form = ListingParser::Form::Lines,
                 std::chrono::year_month_day now = kToday) {
  ListingParser parser(text, now, form);
  RemoteEntry entry;
  std::string found;
  while (parser.Next(entry)) found += (found.empty() ? "" : "\n") + Describe(entry);
  if (parser.Strange() > 0) found += "\nstrange " + std::to_string(parser.Strange());
  if (const std::size_t count = parser.TooLong().size(); count > 0)
    found += "\ntoo long " + std::to_string(count);
  return found;
}

// Lines, and what they are read as.
using Table = std::vector<std::pair<std::string, std::string>>;

void Check(const Table& table, ListingParser::Form form = ListingParser::Form::Lines) {
  for (const auto& [text, rows] : table) EXPECT_EQ(Rows(text, form), rows) << text;
}

TEST(ListingParser, ReadsTheLongFormat) {
  const std::string longest(4096, 'n');
  Check({
      {"total 42\n", ""},
      {"total 42", ""},
      {"﻿total 8\ninsgesamt 8\n", ""},
      {"insgesamt 42\n-rw-r--r-- 1 u g 5 Jan 12 12:34 x", "1|-rw-r--r--|u|g|5|2024-01-12 12:34|x"},
      {"总用量 8\n﻿x", "\nstrange 1"},
      {"﻿合計 8.0K\n-rw-r--r--   1 ftp ftp  1023 Jan 12 12:34 a b.txt\n",
       "1|-rw-r--r--|ftp|ftp|1023|2024-01-12 12:34|a b.txt"},
      // Names begin one blank after the date; years stand to the right of five places, or to the
      // left.
      {"drwxr-xr-x 2 u g 512 Mar  1  1999 pub", "2|drwxr-xr-x|u|g||1999-03-01|pub"},
      {"-rw-r--r-- 1 u g 5 Mar  1  1999  lead ", "1|-rw-r--r--|u|g|5|1999-03-01| lead "},
      {"-rw-r--r-- 1 u g 5 Mar  1 1999  left", "1|-rw-r--r--|u|g|5|1999-03-01|left"},
      {"-rw-r--r-- 1 u g 5 Jan 12 12:34   two", "1|-rw-r--r--|u|g|5|2024-01-12 12:34|  two"},
      {"-rw-r--r-- 1 u g 5 Jan 12  9:30 t\n-rw-r--r-- 1 u g 5 Jan 12 9:30 t\n-rw-r--r-- 1 u g 5 "
       "Jan 12 24:00 t",
       "1|-rw-r--r--|u|g|5|2024-01-12 09:30|t\n1|-rw-r--r--|u|g|5|2024-01-12 "
       "09:30|t\n1|-rw-r--r--|u|g|5|2024-01-13 00:00|t"},
      // A month that is still to come belongs to the year before; this one does not.
      {"-r- 1 u g 1024 Dec 31 23:59 x\n-r- 1 u g 0 Mar 31 23:59  y",
       "1|-r-|u|g|1024|2023-12-31 23:59|x\n1|-r-|u|g|0|2024-03-31 23:59| y"},
      {"-rw-r--r-- 1 u g 5 Feb 30 2020 no day", "1|-rw-r--r--|u|g|5||no day"},
      // A word that is no month's counts as January where it can be nothing else.
      {"-r- 1 u g 4294967296000 Foo  9 2001 odd -> name",
       "1|-r-|u|g|4294967296000|2001-01-09|odd -> name"},
      {"lrwx 1 u g 9 Feb  2 10:00 data -> /var/data\nlrwx 1 u g 9 Feb  2 10:00 plain",
       "3|lrwx|u|g||2024-02-02 10:00|data->/var/data\n3|lrwx|u|g||2024-02-02 10:00|plain"},
      {"lrwxrwxrwx 1 u g 6 Feb  2 10:00 a -> b -> c\nlrwxrwxrwx 1 u g 1 Feb  2 10:00 a -> b -> "
       "c\nlrwxrwxrwx 1 u g 4 Feb  2 10:00 a -> b -> c",
       "3|lrwxrwxrwx|u|g||2024-02-02 10:00|a->b -> c\n3|lrwxrwxrwx|u|g||2024-02-02 10:00|a -> "
       "b->c\n3|lrwxrwxrwx|u|g||2024-02-02 10:00|a -> b -> c?"},
      {"crw-rw-rw- 1 root tty 1, 3 Jan  1 2000 null\nbrw-rw---- 1 root disk 8,   0 Jan  1 2000 "
       "sda\ncrw-rw-rw- 1 root tty 10,200 Jan  1 2000 tun",
       "4|crw-rw-rw-|root|tty||2000-01-01|null\n3|brw-rw----|root|disk||2000-01-01|sda\n4|crw-rw-"
       "rw-|root|tty||2000-01-01|tun"},
      {"prw------- 1 u g 0 Jan  1 2000 pipe\nsrwxrwxrwx 1 u g 0 Jan  1 2000 sock -> x\nDr--r--r-- "
       "1 u g 0 Jan  1 2000 door",
       "3|prw-------|u|g||2000-01-01|pipe\n3|srwxrwxrwx|u|g||2000-01-01|sock -> "
       "x\n3|Dr--r--r--|u|g||2000-01-01|door"},
      // Columns that are missing, glued together, or more than usual.
      {"-rw-r--r-- 1 u 5 Jan  1 2000 x\n-rw-r--r-- u g 5 Jan  1 2000 x\n-rw-r--r-- u 5 Jan  1 2000 "
       "x\n-rw-r--r-- 5 Jan  1 2000 x",
       "1|-rw-r--r--|u||5|2000-01-01|x\n1|-rw-r--r--|u|g|5|2000-01-01|x\n1|-rw-r--r--|u||5|2000-01-"
       "01|x\n1|-rw-r--r--|||5|2000-01-01|x"},
      {"drwxr-xr-x123 u g 5 Jan  1 2000 x\n-rw-r--r-- 1 u group12345 Jan  1 2000 x",
       "2|drwxr-xr-x|u|g||2000-01-01|x\n1|-rw-r--r--|u|group12345||2000-01-01|x"},
      {"drwxr-xr-x+ 2 u g 5 Jan  1 2000 x\n-rw-r--r--. 1 u g 5 Jan  1 2000 x\n-rw-r--r--@ 1 u g 5 "
       "Jan  1 2000 x\n-rw-r--r--+12 u g 5 Jan  1 2000 x\n-rw-r--r-- + 1 u g 5 Jan  1 2000 x",
       "2|drwxr-xr-x+|u|g||2000-01-01|x\n1|-rw-r--r--.|u|g|5|2000-01-01|x\n1|-rw-r--r--@|u|g|5|"
       "2000-01-01|x\n1|-rw-r--r--+|u|g|5|2000-01-01|x\n1|-rw-r--r--|u|g|5|2000-01-01|x"},
      {"-rw-r--r--. 1 u g system_u:object_r:usr_t:s0 5 Jan  1 2000 x",
       "1|-rw-r--r--.|u|g|5|2000-01-01|x"},
      {"  131 -rw-r--r-- 1 u g 5 Jan  1 2000 x\n131 4.0K drwxr-xr-x 1 u g 5 Jan  1 2000 x",
       "1|-rw-r--r--|u|g|5|2000-01-01|x\n2|drwxr-xr-x|u|g||2000-01-01|x"},
      {"-rw-r--r-- 1 Jo Ann Domain Users 5 Jan  1 2000 x\n-rw-r--r-- 1 mar 5 2000 Jan  1 2000 x",
       "1|-rw-r--r--|Jo Ann Domain Users||5|2000-01-01|x\n1|-rw-r--r--|mar|5|2000|2000-01-01|x"},
      {"-rw-r--r-- 1 u g 1,234,567 Jan  1 2000 x\n-rw-r--r-- 1 u g 1.234.567 Jan  1 2000 "
       "x\n-rw-r--r-- 1 u g 12'345 Jan  1 2000 x\n-rw-r--r-- 1 u g 1.2K Jan  1 2000 x",
       "1|-rw-r--r--|u|g|1234567|2000-01-01|x\n1|-rw-r--r--|u|g|1234567|2000-01-01|x\n1|-rw-r--r--|"
       "u|g|12345|2000-01-01|x\n1|-rw-r--r--|u|g||2000-01-01|x"},
      {"-rw-r--r--\t1\tu\tg\t5\tJan\t1\t2000\tx y", "1|-rw-r--r--|u|g|5|2000-01-01|x y"},
      {"   10  -rwx     4210138   Mar 1 1993 00:02:15 +00:00 c2600.bin\n    2  drwx           0   "
       "Mar 1 1993 00:02:15  d",
       "1|-rwx|||4210138|1993-03-01 00:02:15|c2600.bin\n2|drwx||||1993-03-01 00:02:15|d"},
      // Dates in other orders, forms and languages.
      {"-rw-r--r-- 1 u g 5 2009-02-28 10:11 x\n-rw-r--r-- 1 u g 5 2009-02-28 10:11:12.345678900 "
       "+0100 x y\n-rw-r--r-- 1 u g 5 2009-02-28  10:11\n-rw-r--r-- 1 u g 5 01-12 10:11 x",
       "1|-rw-r--r--|u|g|5|2009-02-28 10:11|x\n1|-rw-r--r--|u|g|5|2009-02-28 09:11:12|x "
       "y\n1|-rw-r--r--|u|g|5|2009-02-28|10:11\n1|-rw-r--r--|u|g|5|2024-01-12 10:11|x"},
      {"-rw-r--r-- 1 u g 5 Jan  1 10:11:12 2000 x\n-rw-r--r-- 1 u g 5 Sat Jan  1 10:11:12 2000 "
       "x\n-rw-r--r-- 1 u g 5 Jan  1 10:11:12 2000",
       "1|-rw-r--r--|u|g|5|2000-01-01 10:11:12|x\n1|-rw-r--r--|u|g|5|2000-01-01 "
       "10:11:12|x\n1|-rw-r--r--|u|g|5|2024-01-01 10:11:12|2000"},
      {"-rw-r--r-- 1 u g 5  1 Feb 10:11 x\n-rw-r--r-- 1 u g 5 31. Dez  1999 x\n-rw-r--r-- 1 u g 5 "
       "28.02.2009 10:11 x",
       "1|-rw-r--r--|u|g|5|2024-02-01 "
       "10:11|x\n1|-rw-r--r--|u|g|5|1999-12-31|x\n1|-rw-r--r--|u|g|5|2009-02-28 10:11|x"},
  });
}

// What is of no known form costs itself alone, and is counted; what names nothing is none.
TEST(ListingParser, ReadsOnPastWhatItDoesNotKnow) {
  const std::string longest(4096, 'n');
  const std::string x = "-rw-r--r-- 1 u g 5 Jan  1 2000 x\n";
  const std::string read = "1|-rw-r--r--|u|g|5|2000-01-01|x";
  Check({
      {"\n \n   ", ""},
      {"Listing denied\n", "\nstrange 1"},
      // A carriage return belongs to the name, unless every line has one more than it should.
      {"total 1\n-rw-r--r-- 1 u g 5 Jan  1 2000 x\r\n", read + "\r"},
      {"total 1\r\n-rw-r--r-- 1 u g 5 Jan  1 2000 x\r\n", read},
      {"-r- 1 u\n" + x, read + "\nstrange 1"},
      {x + "total 8\n", read + "\nstrange 1"},
      {"ls: cannot access 'y': Permission denied\n" + x, read + "\nstrange 1"},
      {x + "-rw-r--r-- 1 u g 5 Jan  1 2000 \n-rw-r--r-- 1 u g 5 Jan 32 2000 y\n" + x,
       read + "\n3|-rw-r--r--|||||1 u g 5 Jan 32 2000 y?\n" + read + "\nstrange 1"},
      {"-rw-r--r-- 1 u g 5 2000年1月1日 y z\n" + x,
       "3|-rw-r--r--|||||1 u g 5 2000年1月1日 y z?\n" + read},
      {"drwx 1 u g 1 Jan  1 2000 .\ndrwx 1 u g 1 Jan  1 2000 ..\n" + x, read},
      {x + "-r- 1 u g 1 Jan 1 10:00 n" + longest + "\n" + x, read + "\n" + read + "\ntoo long 1"},
      {"-r- 1 u g 1 Jan 1 2000 " + longest, "1|-r-|u|g|1|2000-01-01|" + longest},
  });
}

TEST(ListingParser, KnowsMonthsInManyLanguages) {
  const std::pair<std::string, int> months[] = {
      {"Mär", 3},    {"M\xE4r", 3}, {"mrt", 3},   {"févr.", 2},         {"f\xE9vr.", 2},
      {"août", 8},   {"déc", 12},   {"ene", 1},   {"abr", 4},           {"dic", 12},
      {"gen", 1},    {"mag", 5},    {"lug", 7},   {"ott", 10},          {"set", 9},
      {"fev", 2},    {"maj", 5},    {"okt.", 10}, {"des", 12},          {"heinä", 7},
      {"maalis", 3}, {"paź", 10},   {"wrz", 9},   {"úno", 2},           {"szept", 9},
      {"Ağu", 8},    {"май", 5},    {"мая", 5},   {"\xE4\xC5\xCB", 12}, {"\xE4\xE5\xEA", 12},
      {"Φεβ", 2},    {"10月", 10},  {"5월", 5},   {"SEPT", 9},          {"March", 3}};
  for (const auto& [name, number] : months) {
    char date[16];
    std::snprintf(date, sizeof date, "2000-%02d-01", number);
    for (const std::string& words : {name + "  1", "1 " + name})
      EXPECT_EQ(Rows("-rw-r--r-- 1 u g 5 " + words + "  2000 x"),
                "1|-rw-r--r--|u|g|5|" + std::string(date) + "|x");
  }
}

// Today, the date told, and what it means.
TEST(ListingParser, FindsTheYearThatIsNotTold) {
  const std::tuple<std::chrono::year_month_day, const char*, const char*> rows[] = {
      {2023y / 12 / 31, "Jan  1 00:30", "2024-01-01 00:30"},
      {2023y / 12 / 30, "Jan  5 00:30", "2024-01-05 00:30"},
      {2023y / 12 / 31, "Mar  1 00:30", "2023-03-01 00:30"},
      {2024y / 1 / 1, "Dec 31 23:59", "2023-12-31 23:59"},
      {2024y / 1 / 31, "Feb  1 00:10", "2024-02-01 00:10"},
      {2025y / 3 / 1, "Feb 29 10:00", "2024-02-29 10:00"},
      {2024y / 2 / 28, "Feb 29 10:00", "2024-02-29 10:00"},
      {2103y / 5 / 1, "Feb 29 10:00", "2096-02-29 10:00"},
  };
  for (const auto& [now, date, time] : rows) {
    EXPECT_EQ(
        Rows("-rw-r--r-- 1 u g 5 " + std::string(date) + " x", ListingParser::Form::Lines, now),
        "1|-rw-r--r--|u|g|5|" + std::string(time) + "|x");
  }
}

TEST(ListingParser, ReadsDosAndOs2) {
  Check({
      {" Volume in drive C is X\n Directory of C:\\\n07-17-00  02:35PM                 2048 a "
       "b.txt\n07-18-2031  12:05AM       <DIR>          My  d\n               1 File(s)          "
       "2,048 bytes\n",
       "1||||2048|2000-07-17 14:35|a b.txt\n2|||||2031-07-18 00:05|My  d"},
      {"07-17-71  14:35  <JUNCTION>  j\n07/17/2000  02:35 PM    <SYMLINK>      l "
       "[C:\\a]\n07/17/2000  12:35 AM    <SYMLINK>      l [x] [y]\n",
       "3|||||1971-07-17 14:35|j\n3|||||2000-07-17 14:35|l->C:\\a\n3|||||2000-07-17 00:35|l [x] "
       "[y]?"},
      {"07-17-00  02:35PM       <DIR>            two\n07-17-00  02:35PM                    1  "
       "lead\n",
       "2|||||2000-07-17 14:35|  two\n1||||1|2000-07-17 14:35| lead"},
      {"17.07.2000  14:35             1.234.567 x\n2000-07-17  14:35:36  5 x\n7/1/00 02:35PM 1 "
       "x\n31-12-99 00:00 5 x",
       "1||||1234567|2000-07-17 14:35|x\n1||||5|2000-07-17 14:35:36|x\n1||||1|2000-07-01 "
       "14:35|x\n1||||5|1999-12-31 00:00|x"},
      {"07-17-00  02:35PM  none x\n07-17-00\n07-17-00  02:35PM  5\n07-17-00  02:35PM  5 \n07-17-00 "
       " 25:35  5 x\n",
       "\nstrange 5"},
      {"                 0           DIR   04-11-95   16:26  ADDRESS\n               612      A    "
       "      07-28-95   16:45  air tra.bag\n   5 Z 07-28-95 16:45 x",
       "2|||||1995-04-11 16:26|ADDRESS\n1||||612|1995-07-28 16:45|air tra.bag\nstrange 1"},
  });
}

TEST(ListingParser, ReadsEplfAndNetware) {
  Check({
      {"+i8388621.29609,m824255902,/,\tdev\n+i8388621.44468,m839956783,r,s10376,\t  "
       "a,b\tc\n+r,sx,m99999999999999999999,\tx\n+m5\tneither\n",
       "2|||||1996-02-13 23:58:22|dev\n1||||10376|1996-08-13 17:19:43|  "
       "a,b\tc\n1||||||x\n3|||||1970-01-01 00:00:05|neither"},
      {"+i,r,s5 no tab\n+r,\t\n+\n", "\nstrange 3"},
      {"d [R----F--] supervisor            512       Jan 16 18:53    login\n- [RWCEAFMS] rhesus    "
       "         214059       Oct 20  2003    cx.exe\nd[RWCEMFA] a b 512 Jan 16 18:53 glued\n- "
       "[X!] u 5 Jan 16 18:53 x\n",
       "2|d [R----F--]|supervisor|||2024-01-16 18:53|login\n1|- "
       "[RWCEAFMS]|rhesus||214059|2003-10-20|cx.exe\n2|d[RWCEMFA]|a b|||2024-01-16 "
       "18:53|glued\nstrange 1"},
  });
}

TEST(ListingParser, ReadsVms) {
  Check({
      {"\nDirectory SYS$SYSDEVICE:[JOE]\n\nREADME.TXT;4        2/3   15-JAN-2001 12:34:56  "
       "[GRP,OWNER]   (RWED,RWED,RE,)\nSUB.DIR;1           1     15-JAN-2001 12:34  [OWNER]   "
       "(RWE,RWE,RE,RE)\n\nTotal of 2 files, 8 blocks.\n",
       "1|(RWED,RWED,RE,)|OWNER|GRP||2001-01-15 "
       "12:34:56|README.TXT;4\n2|(RWE,RWE,RE,RE)|OWNER|||2001-01-15 12:34|SUB"},
      {"A_LONG_NAME.TXT;12\n                    12   2-FEB-1999 10:11 [G,O] (RWE,RWE,RE,)\nNEXT^ "
       "ONE.TXT;1 5 3-FEB-1999 [O] (R)\nALONE.TXT;3\nLAST.;2",
       "1|(RWE,RWE,RE,)|O|G||1999-02-02 10:11|A_LONG_NAME.TXT;12\n1|(R)|O|||1999-02-03|NEXT^ "
       "ONE.TXT;1\n1||||||ALONE.TXT;3\n1||||||LAST.;2"},
      {"BAD.TXT;1   %RMS-E-PRV, insufficient privilege or file protection violation\nX.TXT;1 what "
       "is this\n;5 5 3-FEB-1999 [O] (R)\nWRAPPED.TXT;1\n  %RMS-E-PRV, no\n",
       "1||||||BAD.TXT;1\n1||||||WRAPPED.TXT;1\nstrange 3"},
  });
}

TEST(ListingParser, ReadsMainframes) {
  Check({
      {"QSYS            77824 02/23/00 15:09:55 *DIR       QOpenSys/\nJOE             35 23.02.00 "
       "15:09:55 *STMF      a  b.txt\nJOE             *MEM       FILE.FILE/MBR.MBR\nJOE  8 "
       "02/23/00 15:09:55 *SYMLNK l\nJOE *bad x\nJOE *MEM\n",
       "2||QSYS|||2000-02-23 15:09:55|QOpenSys\n1||JOE||35|2000-02-23 15:09:55|a  "
       "b.txt\n1||JOE||||FILE.FILE/MBR.MBR\n3|l|JOE|||2000-02-23 15:09:55|l\nstrange 2"},
      {"Volume Unit    Referred Ext Used Recfm Lrecl BlkSz Dsorg Dsname\nWPC03R 3390   2007/01/05  "
       "1    1  VB     255 27998  PS  A.CNTL\nWPC03R 3390   2007/01/05  1    1  FB      80 27920  "
       "PO  A.LIB\nMigrated                                                B.OLD\nPseudo Directory "
       "                                       'C.D'\nWPC03R 3390                                  "
       "       VSAM E\nno name here!\n",
       "1|||||2007-01-05|A.CNTL\n2|||||2007-01-05|A.LIB\n3||||||B.OLD\n2||||||'C.D'\n3||||||"
       "E\nstrange 1"},
      {" Name     VV.MM   Created       Changed      Size  Init   Mod   Id\nMEMBER1   01.03 "
       "2002/09/12 2002/10/11 09:37    11    11     0 JOE\nMEMBER2\n toolongname\n",
       "1|||||2002-10-11 09:37|MEMBER1\n1||||||MEMBER2\nstrange 1"},
      {" Name      Size     TTR   Alias-of AC --------- Attributes --------- Amode Rmode\nPGM1     "
       " 00012A  000103          00 FO                             31    ANY\n",
       "1||||||PGM1"},
      {"A.B.C\nMEMBER2\n", "\nstrange 2"},
  });
}

TEST(ListingParser, ReadsEmbeddedServers) {
  Check({
      {"  size          date       time       name\n--------       ------     ------    --------\n "
       "    512    JAN-02-1980   00:00:00   SUB DIR            <DIR>\n    1234    FEB-03-1999   "
       "10:11:12   file.txt\n    12    FEB-03-1999   10:11   x\n     5    FEB-03-1999   10:11:12\n",
       "2|||||1980-01-02 00:00:00|SUB DIR\n1||||1234|1999-02-03 "
       "10:11:12|file.txt\n1||||12|1999-02-03 10:11:00|x\nstrange 1"},
      {"nvram.cfg       1014196  06/03/04  Thur.   10:20:03\nnvram.cfg       x  06/03/04  Thur.   "
       "10:20:03\n",
       "1||||1014196|2004-06-03 10:20:03|nvram.cfg\nstrange 1"},
  });
}

// Whatever the pieces are, and however long a line is.
TEST(ListingText, KeepsWholeLinesOnly) {
  const std::string longest(ListingText::kMaxLine, 'x');
  // What comes, what is kept, how many lines are left out, and whether the last one has its end.
  const std::tuple<std::string, std::string, std::size_t, bool> rows[] = {
      {"", "", 0, false},
      {"a\r\nb\n\n", "a\nb\n\n", 0, false},
      {"a\rb\r\r\nc\r", "a\rb\r\nc\r", 0, true},
      {"a\n" + longest + "\nb", "a\n" + longest + "\nb", 0, true},
      {"a\n" + longest + "x\r\nb\r\n", "a\nb\n", 1, false},
      {longest + longest, "", 1, true},
  };
  for (const auto& [came, kept, dropped, open] : rows) {
    for (const std::size_t length : {std::size_t{1}, std::size_t{7}, came.size() + 1}) {
      ListingText text;
      for (std::size_t at = 0; at < came.size(); at += length)
        ASSERT_TRUE(text.Append(std::span(came).subspan(at, std::min(length, came.size() - at))));
      EXPECT_EQ(text.View(), kept);
      EXPECT_EQ(text.Dropped(), dropped);
      EXPECT_EQ(text.IsOpen(), open);
    }
  }
}

TEST(ListingParser, ReadsFacts) {
  Check(
      {
          {"type=file;size=5;modify=20260314092600.123456;UNIX.mode=0640;UNIX.owner=7; a b\n",
           "1|-rw-r-----|7||5|2026-03-14 09:26:00|a b"},
          {"UNIX.groupname=web;Unix.ownerName=ann;unix.owner=7;TYPE=Dir;Size=4096;x;y=; d\n",
           "2||ann|web|||d"},
          {"modify=16010101000000;type=file; old\nmodify=20260231000000;type=file; no day\n",
           "1|||||1601-01-01 00:00:00|old\n1||||||no day"},
          // What is of no type that is known can be nothing that is followed.
          {"type=OS.unix=slink:/a b;UNIX.mode=0777; l\ntype=os.unix=symlink;size=8; m\n"
           "type=unknown;UNIX.mode=0o644; u\ntype=file;unix.mode=0x1; x\nsize=3; "
           "t\ntype=OS.unix=chr-1/3; c\n",
           "3|lrwxrwxrwx|||||l->/a b\n3|l|||||m\n"
           "3|?rw-r--r--|||||u\n1||||||x\n3||||||t\n"
           "4||||||c"},
          {"type=cdir; /here\ntype=pdir; /\ntype=file; ..\ntype=dir; .\ntype=dir; a/b\n",
           "2||||||a/b"},
          {"type=file;size=1;  lead\ntype=file; a;b=c d\n plain\ntype=file;size=2 short\n",
           "1||||1|| lead\n1||||||a;b=c d\n"
           "3||||||plain\n1||||2||short"},
          {"type=file;size=-1; a\ntype=file;size=99999999999999999999; b\ntype=file;\ntype=file; "
           "\n",
           "1||||||a\n1||||||b\nstrange 2"},
      },
      ListingParser::Form::Facts);
}

}  // namespace
}  // namespace corvane
