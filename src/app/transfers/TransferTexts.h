#pragma once

#include <QString>
#include <utility>
#include <vector>

#include "app/shared/TransferWords.h"

namespace corvane {

class TransferItem;

/// The texts of one transfer, made when they are asked for. GUI thread; used at once, while the
/// transfer stands.
class TransferTexts {
 public:
  explicit TransferTexts(const TransferItem& item) : item_(item) {}

  [[nodiscard]] TransferFacts Facts() const;
  /// What its row says, in the style that is in force.
  [[nodiscard]] TransferWords Words() const;
  /// The entry that was chosen, or the first of them and how many there are.
  [[nodiscard]] QString Name() const;
  [[nodiscard]] QString ServerLine() const;
  /// The file that moves, or moved last.
  [[nodiscard]] QString FileName() const;
  /// That file, and how many are done where there are several.
  [[nodiscard]] QString FileWithCount() const;
  /// What failed, for now or for good; empty while nothing has.
  [[nodiscard]] QString FailureText() const;
  /// FailureText() in one line, with the name of the file.
  [[nodiscard]] QString FailureLine() const;
  /// The beginning of the notes: the entry and what is said of it. A last line without an entry
  /// says how many more there are.
  [[nodiscard]] std::vector<std::pair<QString, QString>> NoteLines() const;
  /// Why it failed, or where it goes, and the beginning of the notes: for a tooltip, in lines.
  [[nodiscard]] QString Details() const;
  /// The whole row as one text.
  [[nodiscard]] QString Summary() const;

  /// How many lines NoteLines() has.
  [[nodiscard]] int CountNoteLines() const;

 private:
  [[nodiscard]] QString Reason() const;
  [[nodiscard]] QString TargetLine() const;

  const TransferItem& item_;
};

}  // namespace corvane
