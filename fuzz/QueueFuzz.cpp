// Whatever bytes change in the queue's file: it is read or put aside, and what is read can be
// carried out to its end and kept. Three bytes of input are one change: its place and the byte.
#include <unistd.h>

#include <cstdint>
#include <cstdlib>
#include <filesystem>

#include "queue/JobBoard.h"
#include "queue/QueueStore.h"
#include "support/Files.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace corvane;
  static const std::filesystem::path folder =
      std::filesystem::temp_directory_path() / ("queue-fuzz-" + std::to_string(::getpid()));
  static const std::string whole = [] {
    const std::string path = folder / "whole.sqlite";
    std::filesystem::create_directory(folder);
    {
      QueueStore store(path);
      for (const RowId row : {1, 2}) {
        store.RowAdded(row, {.jobs = {{.remote = "/d"}, {.remote = "/f", .local = "f"}}});
        store.DirectoryOpened(row, 0, "/d", {{2, 0, {.remote = "a"}}, {4, 0, {.remote = "b"}}});
        store.JobChanged(row, 2, JobState::Moved);
      }
    }
    return Contents(path);
  }();
  const std::string path = folder / "queue.sqlite";
  for (const char* part : {"", "-wal", "-journal", ".damaged", ".damaged-wal"})
    std::filesystem::remove(path + part);
  std::string bytes = whole;
  for (; size >= 3; size -= 3, data += 3)
    bytes[(data[0] * 256U + data[1]) % bytes.size()] = static_cast<char>(data[2]);
  Write(path, bytes);
  const auto store = std::make_shared<QueueStore>(path);
  for (const QueueStore::Row& row : store->Load()) {
    JobBoard board(row.what, row.jobs, row.id, store);
    board.Begin(true);
    while (const auto work = board.Take(kNoJob)) {
      for (auto above = board.End(work->id, JobState::Done); above;)
        above = board.End(above->id, JobState::Done);
    }
    if (!board.AllEnded()) std::abort();
  }
  return 0;
}
