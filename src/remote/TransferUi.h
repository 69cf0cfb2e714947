#pragma once

#include <atomic>
#include <cstdint>
#include <string_view>

#include "remote/OwnerUi.h"

namespace corvane {

/// How far a transfer is. The worker writes after every buffer, the window reads when it draws.
struct TransferProgress {
  std::atomic<std::int64_t> start{0};    ///< bytes of the current file that were there before
  std::atomic<std::int64_t> done{0};     ///< bytes of the current file moved since
  std::atomic<std::int64_t> total{0};    ///< the current file's size; 0 when unknown
  std::atomic<std::int64_t> elapsed{0};  ///< microseconds since the current file's first byte
  std::atomic<std::int64_t> files{0};    ///< files that are done; counted in folders only
  std::atomic<bool> changed{false};      ///< set by the worker, cleared by the window
};

enum class TransferEnd { Finished, Failed, Cancelled };

/// What a transfer row offers its transfer; a status stands in place of the file's label. Any
/// thread may call; every call returns at once and returns false once the row is closing: the
/// caller then stops.
class TransferUi : public OwnerUi {
 public:
  /// Lives as long as the object.
  [[nodiscard]] virtual TransferProgress& Progress() = 0;

  /// A new file begins: `name` is raw bytes. The row labels its bar with it.
  virtual bool BeginFile(std::string_view name) = 0;
  /// The text behind the bar, such as a failure that needs naming.
  virtual bool SetTrailing(const Text& text) = 0;
  /// A line about an entry that failed or was left out, for the list that the row keeps.
  virtual bool NoteEntry(const Text& text) = 0;
  /// The transfer has ended; `why` says what failed, for the row's tooltip.
  virtual bool SetEndState(TransferEnd state, const Text& why) = 0;
};

}  // namespace corvane
