#pragma once

#include <QString>

namespace corvane {

/// How a transfer has ended, in words for the user.
struct TransferNews {
  bool download = true;
  bool finished = false;
  bool cancelled = false;  ///< by the user
  QString file;            ///< the file that moved last
  QString server;          ///< "Server: name"
  QString failure;         ///< what failed, in one line; empty when nothing did
};

}  // namespace corvane
