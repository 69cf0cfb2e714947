#pragma once

#include <functional>

#include "kit/Message.h"
#include "kit/Text.h"
#include "queue/QueueJournal.h"

namespace corvane {

/// What the window that asked for a transfer wants to hear of it. Called on the GUI thread, also
/// after that window has gone: the functions hold weak handles. Either may be empty.
struct TransferListener {
  /// An upload has brought an entry; the message is the worker's 'ADDI'.
  std::function<void(const Message& entry)> arrived{};
  /// A remark on an entry that failed or was left out, for the window's log.
  std::function<void(const Text& note)> noted{};
  /// Which state of its file stands on the server; the message is the worker's 'VRSN'.
  std::function<void(const Message& version)> versioned{};
  /// The server has refused the user or the password; the row ends next.
  std::function<void()> loginRefused{};
  /// The row stands otherwise than before, and why where it failed, for now or for good. A row that
  /// is taken off the list is Cancelled.
  std::function<void(RowState state, const Text& why)> restated{};
  /// The transfer is part of other work: its row does not bring the window forward, no notification
  /// tells of its end, and it goes once it has ended.
  bool quiet = false;
};

}  // namespace corvane
