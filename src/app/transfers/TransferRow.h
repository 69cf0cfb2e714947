#pragma once

#include <QFontMetrics>
#include <QRect>
#include <cstdint>

namespace corvane {

class TransferItem;

/// What can be done with a row by a click on a part of it.
enum class TransferAction : std::uint8_t {
  None,
  Cancel,
  Remove,
  Reveal,
  Pause,
  Resume,
  Retry,
  TryNow,
  Toggle,
};

/// Where the parts of a row stand: a sign, two lines of text with a bar between them, two places
/// for actions, and a line for each note where it is open. A value; used at once.
class TransferRow {
 public:
  TransferRow(const TransferItem& item, const QRect& rect, const QFontMetrics& metrics);

  [[nodiscard]] static int HeightOf(const TransferItem& item, const QFontMetrics& metrics);
  /// What the cross of the row does.
  [[nodiscard]] static TransferAction CrossOf(const TransferItem& item);
  /// What stands beside the cross.
  [[nodiscard]] static TransferAction BesideOf(const TransferItem& item);
  /// What the words at the end of the second line do.
  [[nodiscard]] static TransferAction LinkOf(const TransferItem& item);
  /// What Enter does.
  [[nodiscard]] static TransferAction MainOf(const TransferItem& item);

  [[nodiscard]] QRect Sign() const;
  [[nodiscard]] QRect Bar() const;
  /// The line above the bar, and the one below.
  [[nodiscard]] QRect First() const { return Line(bar_ ? 8 : 12); }
  [[nodiscard]] QRect Second() const;
  /// The arrow that opens the notes stands at the beginning of the second line.
  [[nodiscard]] QRect Arrow() const;
  [[nodiscard]] QRect Note(int line) const;
  /// "Retry" or "Try Now" at the end of the second line.
  [[nodiscard]] QRect Link() const;
  /// The places for actions, the outer one first.
  [[nodiscard]] QRect Slot(int place) const;

  [[nodiscard]] TransferAction ActionAt(const QPoint& point) const;
  [[nodiscard]] QString LinkText() const;

 private:
  [[nodiscard]] QRect Line(int y) const;

  const TransferItem& item_;
  QRect rect_;
  QFontMetrics metrics_;
  bool bar_;
};

}  // namespace corvane
