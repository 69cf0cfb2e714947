// How many entries a second a listing in the long format becomes records.

#include <benchmark/benchmark.h>

#include <cstdio>
#include <ctime>
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
  const std::time_t seconds = 1'700'000'000;
  std::tm now{};
  localtime_r(&seconds, &now);
  for (auto _ : state) {
    corvane::EntryMaker maker(now);
    corvane::ListingParser parser(text, true);
    corvane::ListingParser::Fields fields;
    int count = 0;
    while (parser.Next(fields)) {
      benchmark::DoNotOptimize(maker.Make(fields).name.data());
      ++count;
    }
    if (count != kEntries) state.SkipWithError("entries were lost");
  }
  state.SetItemsProcessed(state.iterations() * kEntries);
  state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(text.size()));
}
BENCHMARK(ParseListing)->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
