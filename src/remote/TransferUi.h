#pragma once

#include <atomic>
#include <cstdint>
#include <string_view>

#include "remote/OwnerUi.h"

namespace corvane {

/// How it was made sure that what arrived is what was sent, for the file of which least is known.
enum class Proof : std::uint8_t { None, Size, Crc32, Md5, Sha1, Sha256, Sha512 };

/// How far a transfer is, of one file or of a tree. The workers add after every buffer, the window
/// reads when it draws.
struct TransferProgress {
  std::atomic<std::int64_t> moved{0};     ///< bytes that have come or gone; never shrinks
  std::atomic<std::int64_t> there{0};     ///< bytes that stand where they belong, old ones included
  std::atomic<std::int64_t> total{0};     ///< of all files that are known; 0 when unknown
  std::atomic<std::int64_t> files{0};     ///< files that are done
  std::atomic<std::int64_t> allFiles{0};  ///< files that are known
  std::atomic<bool> planning{false};      ///< more files may be found
  std::atomic<std::int64_t> heard{0};     ///< when the last byte moved: steady milliseconds; or 0
  std::atomic<std::int64_t> elapsed{0};   ///< microseconds for which bytes have been moving
  std::atomic<int> connections{0};        ///< that work now
  std::atomic<Proof> proof{Proof::None};  ///< of what is done
  std::atomic<bool> advanced{false};      ///< at the end: it got further than it was before
  std::atomic<bool> changed{false};       ///< set by a worker, cleared by the window
};

/// How a transfer has ended for now. Again: for a reason that may pass, so that it is worth another
/// try.
enum class TransferEnd { Finished, Failed, Cancelled, Again };

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
