#pragma once

#include <QString>
#include <cstdint>

namespace corvane {

/// How a transfer stands, as its row shows it.
enum class TransferState : std::uint8_t {
  Running,
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
  QString failure;         ///< why it failed
  bool several = false;    ///< it moves more than one file
  std::int64_t there = 0;  ///< bytes of the file that have arrived
  std::int64_t total = 0;  ///< bytes of the file; 0 when not known
  double rate = 0;         ///< bytes in a second
  int files = 0;           ///< files that are done; counted where there are several
  int leftOut = 0;         ///< entries that failed or were left out
};

/// What a row says: two texts above its bar and two below.
struct TransferWords {
  QString name;
  QString figure;
  QString state;
  QString pace;
};

}  // namespace corvane
