#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "kit/Text.h"
#include "remote/Outcome.h"
#include "remote/RemoteEntry.h"

namespace corvane {

/// How far a walk through a server's directories has come. The walk adds; any thread reads.
struct WalkProgress {
  std::atomic<std::int64_t> directories{0};  ///< looked at
  std::atomic<std::int64_t> files{0};        ///< seen in them; all entries that are no directories
  std::atomic<std::int64_t> folders{0};      ///< directories seen in them
  std::atomic<std::int64_t> bytes{0};        ///< of the files
  std::atomic<std::int64_t> found{0};
  std::atomic<std::int64_t> changed{0};
  std::atomic<std::int64_t> failed{0};  ///< what was refused
};

/// An entry and the directory in which it stands; raw bytes.
struct FoundEntry {
  std::string directory;
  RemoteEntry entry;
};

/// How a walk has ended.
struct WalkEnd {
  Outcome outcome{};        ///< Done where nothing ended it before its time
  Text bound{};             ///< why it did not look further; empty where it looked everywhere
  std::size_t refused = 0;  ///< so many directories and entries
  Text refusals{};          ///< a line for each of the first of them
};

/// What the owner of a walk offers it. Any thread; every call returns at once.
class WalkUi {
 public:
  virtual ~WalkUi() = default;

  WalkProgress progress;

  /// Hands over what was found; false to hear no more.
  virtual bool Found(std::vector<FoundEntry> entries) = 0;
  /// The walk is over; nothing else comes.
  virtual void Ended(const WalkEnd& end) = 0;
};

}  // namespace corvane
