#pragma once

#include <QString>
#include <cstdint>

#include "remote/TransferUi.h"

namespace corvane {

/// How a transfer stands, as its row shows it.
enum class TransferState : std::uint8_t {
  Waiting,  ///< for its turn
  Running,
  Paused,
  Again,  ///< it failed for now and is tried again in a while
  Failed,
  Partly,  ///< it ended, and some of its entries failed
  Cancelled,
  Done,
};

/// What is known of a transfer. A value.
struct TransferFacts {
  TransferState state = TransferState::Running;
  bool download = true;
  QString host;
  QString target;          ///< the folder that it goes to
  QString name;            ///< what the user chose
  QString file;            ///< the file that moves, or moved last
  QString status;          ///< what goes on in place of moving a file
  QString trailing;        ///< takes the place of the count of bytes
  QString failure;         ///< why it failed, for now or for good
  bool several = false;    ///< it moves more than one file
  std::int64_t there = 0;  ///< bytes that have arrived, of all files
  std::int64_t total = 0;  ///< bytes of all files; 0 when not known
  double rate = 0;         ///< bytes in a second, of late; 0 when nothing moves
  double mean = 0;         ///< bytes in a second, while bytes were moving
  int files = 0;           ///< files that are done
  int allFiles = 0;        ///< files that are known
  bool planning = false;   ///< more may be found
  int failed = 0;          ///< entries that failed
  int leftOut = 0;         ///< entries that failed or were left out
  int before = 0;          ///< transfers that have their turn before it, while it waits
  int seconds = 0;         ///< until it is tried again
  int tries = 0;           ///< which try that will be
  int most = 0;            ///< of so many
  int stalled = 0;         ///< seconds for which nothing has moved, once they are worth a word
  Proof proof = Proof::None;
};

/// What a row says: two texts above its bar and two below.
struct TransferWords {
  QString name;
  QString figure;
  QString state;
  QString pace;
};

/// How a transfer stands that waits, is paused, is tried again or hears nothing of its server, the
/// same in every style; empty for all others.
[[nodiscard]] QString StandingOf(const TransferFacts& transfer);
/// "41 of 128 files"; empty where there is nothing to count.
[[nodiscard]] QString FileCount(const TransferFacts& transfer);

}  // namespace corvane
