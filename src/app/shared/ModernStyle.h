#pragma once

#include "app/shared/Style.h"

namespace corvane {

/// The default: a password is edited like any other text, character by character; figures, dates
/// and order are those of the user's locale.
class ModernStyle : public Style {
 public:
  void Type(HiddenText& text, const QString& typed) const override;
  void Backspace(HiddenText& text) const override;
  void Delete(HiddenText& text) const override;
  void Lose(HiddenText& text, qsizetype stars) const override;
  [[nodiscard]] int ExtraStars() const override { return 0; }
  [[nodiscard]] const char* PopUpKey(const char* own, const char* described) const override;
  [[nodiscard]] QString TitleOf(const BrowserTitle& title) const override;
  [[nodiscard]] QString Items(int count) const override;
  [[nodiscard]] Wording Worded(const Wording& /*formal*/, const Wording& plain) const override {
    return plain;
  }
  [[nodiscard]] QString FileSize(std::int64_t bytes) const override;
  [[nodiscard]] QString EntrySize(std::int64_t size, const std::string& recorded) const override;
  [[nodiscard]] QString EntryDate(const QDate& day, const std::optional<QTime>& time,
                                  const std::string& recorded) const override;
  [[nodiscard]] bool ShowsDots() const override { return false; }
  [[nodiscard]] bool OrdersByBytes() const override { return false; }
  [[nodiscard]] bool MissDeselects() const override { return false; }
  [[nodiscard]] bool EditsInPlace() const override { return true; }
  [[nodiscard]] QFont FiguresFont(const QFont& text) const override { return text; }
  [[nodiscard]] bool FillsEmptyFields() const override { return false; }
  [[nodiscard]] bool PassiveAtFirst() const override { return true; }
  [[nodiscard]] bool AlertsOfFaults() const override { return false; }
  [[nodiscard]] bool TransfersAtStart() const override { return false; }
  [[nodiscard]] bool ClosingQuits() const override { return false; }
  [[nodiscard]] bool AsksOfEachEntry() const override { return true; }
  [[nodiscard]] bool ShowsFolders() const override { return true; }
  [[nodiscard]] QString NewShortcutTitle() const override;
  [[nodiscard]] TransferWords RowOf(const TransferFacts& transfer) const override;
  [[nodiscard]] QColor BarOf(TransferState state, const QPalette& palette) const override;
  [[nodiscard]] QString PaceOf(const TransferFacts& transfer) const override;
  [[nodiscard]] QString DirectionOf(bool download) const override;
  [[nodiscard]] QString TransferTitle(int running) const override;
  [[nodiscard]] const char* ItemText(const char* own, const char* described) const override;
  [[nodiscard]] Qt::Alignment FiguresSide() const override { return Qt::AlignRight; }
  [[nodiscard]] InfoTitles TitlesOfInfo() const override;
  [[nodiscard]] bool ShowsWholeMode() const override { return false; }
  [[nodiscard]] RowColors ColorsOfRows(const QPalette& palette) const override;
};

}  // namespace corvane
