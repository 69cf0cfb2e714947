#pragma once

#include <functional>

#include "kit/Message.h"
#include "kit/Text.h"

namespace corvane {

/// What the window that asked for a transfer wants to hear of it. Called on the GUI thread, also
/// after that window has gone: the functions hold weak handles. Either may be empty.
struct TransferListener {
  /// An upload has brought an entry; the message is the worker's 'ADDI'.
  std::function<void(const Message& entry)> arrived;
  /// A remark on an entry that failed or was left out, for the window's log.
  std::function<void(const Text& note)> noted;
};

}  // namespace corvane
