#pragma once

#include <QString>

namespace corvane {

class TransferItem;

/// The texts of one transfer, made when they are asked for. GUI thread; used at once, while the
/// transfer stands.
class TransferTexts {
 public:
  explicit TransferTexts(const TransferItem& item) : item_(item) {}

  [[nodiscard]] QString ServerLine() const;
  /// What stands before the target path, and the path itself.
  [[nodiscard]] QString TargetTitle() const;
  [[nodiscard]] QString TargetPath() const;
  /// The file that moves, or moved last.
  [[nodiscard]] QString FileName() const;
  /// "File: name" or, while it runs, the status text that stands in its place.
  [[nodiscard]] QString Label() const;
  /// What goes behind the label: how many files of a folder are done and, at the end, how many
  /// entries were left out.
  [[nodiscard]] QString CountText() const;
  [[nodiscard]] QString RateText() const;
  /// Bytes done and in all, in digits.
  [[nodiscard]] QString TotalText() const;
  /// What failed; empty while nothing has.
  [[nodiscard]] QString FailureText() const;
  /// FailureText() in one line, with the name of the file.
  [[nodiscard]] QString FailureLine() const;
  /// Why it failed, or where it goes, and the beginning of the notes: for a tooltip, in lines.
  [[nodiscard]] QString Details() const;
  /// The whole row as one text.
  [[nodiscard]] QString Summary() const;

 private:
  const TransferItem& item_;
};

}  // namespace corvane
