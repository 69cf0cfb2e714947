// How many entries a second a listing in the long format yields.

#include <benchmark/benchmark.h>

#include <chrono>
#include <cstdio>
#include <string>

#include "ftp/ListingParser.h"

namespace {

constexpr int kEntries = 100'000;

std::string LongListing() {
  std::string text = "total 400000\n";
  char line[128];
  for (int i = 0; i < kEntries; ++i) {
    const char* const kind = i % 20 == 0 ? "drwxr-xr-x" : i % 33 == 0 ? "lrwxrwxrwx" : "-rw-r--r--";
    const char* const when = i % 3 == 0 ? " 2019" : "12:34";
    std::snprintf(line, sizeof line, "%s    1 joe      users    %8d Nov %2d %s file-%06d.txt%s\n",
                  kind, i * 37, i % 28 + 1, when, i, *kind == 'l' ? " -> target" : "");
    text += line;
  }
  return text;
}

void ParseListing(benchmark::State& state) {
  const std::string text = LongListing();
  const std::chrono::year_month_day now{std::chrono::year(2023), std::chrono::November,
                                        std::chrono::day(14)};
  for (auto _ : state) {
    corvane::ListingParser parser(text, now);
    int count = 0;
    for (corvane::RemoteEntry entry; parser.Next(entry); ++count) {
      benchmark::DoNotOptimize(entry.name.data());
    }
    if (count != kEntries) state.SkipWithError("entries were lost");
  }
  state.SetItemsProcessed(state.iterations() * kEntries);
  state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(text.size()));
}
std::string FactsListing() {
  std::string text;
  char line[256];
  for (int i = 0; i < kEntries; ++i) {
    const char* const type = i % 20 == 0 ? "dir" : i % 33 == 0 ? "OS.unix=symlink" : "file";
    std::snprintf(line, sizeof line,
                  "modify=202611%02d123456;perm=adfrw;size=%d;type=%s;unique=FE00U%XABCD;"
                  "UNIX.group=100;UNIX.groupname=users;UNIX.mode=0644;UNIX.owner=1000;"
                  "UNIX.ownername=joe; file-%06d.txt\n",
                  i % 28 + 1, i * 37, type, i, i);
    text += line;
  }
  return text;
}

void ParseFacts(benchmark::State& state) {
  const std::string text = FactsListing();
  for (auto _ : state) {
    corvane::ListingParser parser(text, {}, corvane::ListingParser::Form::Facts);
    int count = 0;
    for (corvane::RemoteEntry entry; parser.Next(entry); ++count) {
      benchmark::DoNotOptimize(entry.name.data());
    }
    if (count != kEntries) state.SkipWithError("entries were lost");
  }
  state.SetItemsProcessed(state.iterations() * kEntries);
  state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(text.size()));
}
BENCHMARK(ParseFacts)->Unit(benchmark::kMillisecond);

BENCHMARK(ParseListing)->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
