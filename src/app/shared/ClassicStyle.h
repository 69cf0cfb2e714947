#pragma once

#include "app/shared/Style.h"

namespace corvane {

/// A password is edited at its end, byte by byte, wherever the cursor stands among the
/// stars; figures and dates are the texts of the records, and order goes by bytes.
class ClassicStyle : public Style {
 public:
  void Type(HiddenText& text, const QString& typed) const override;
  void Backspace(HiddenText& text) const override;
  void Delete(HiddenText& text) const override;
  void Lose(HiddenText& text, qsizetype stars) const override;
  [[nodiscard]] int ExtraStars() const override { return 1; }
  [[nodiscard]] const char* PopUpKey(const char* own, const char* described) const override;
  [[nodiscard]] QString TitleOf(const BrowserTitle& title) const override;
  [[nodiscard]] QString Items(int count) const override;
  [[nodiscard]] Wording Worded(const Wording& formal, const Wording& /*plain*/) const override {
    return formal;
  }
  [[nodiscard]] QString FileSize(std::int64_t bytes) const override;
  [[nodiscard]] QString EntrySize(std::int64_t size, const std::string& recorded) const override;
  [[nodiscard]] QString EntryDate(const QDate& day, const std::optional<QTime>& time,
                                  const std::string& recorded) const override;
  [[nodiscard]] bool ShowsDots() const override { return true; }
  [[nodiscard]] bool OrdersByBytes() const override { return true; }
  [[nodiscard]] bool MissDeselects() const override { return true; }
  [[nodiscard]] bool EditsInPlace() const override { return false; }
  [[nodiscard]] QFont FiguresFont(const QFont& text) const override;
  [[nodiscard]] bool FillsEmptyFields() const override { return true; }
  [[nodiscard]] bool PassiveAtFirst() const override { return false; }
  [[nodiscard]] bool AlertsOfFaults() const override { return true; }
  [[nodiscard]] bool TransfersAtStart() const override { return true; }
  [[nodiscard]] bool ClosingQuits() const override { return true; }
  [[nodiscard]] bool AsksOfEachEntry() const override { return false; }
  [[nodiscard]] bool ShowsFolders() const override { return false; }
  [[nodiscard]] QString NewShortcutTitle() const override;
  [[nodiscard]] TransferWords RowOf(const TransferFacts& transfer) const override;
  [[nodiscard]] QColor BarOf(TransferState state, const QPalette& palette) const override;
  [[nodiscard]] QString PaceOf(const TransferFacts& transfer) const override;
  [[nodiscard]] QString DirectionOf(bool download) const override;
  [[nodiscard]] QString TransferTitle(int running) const override;
  [[nodiscard]] const char* ItemText(const char* own, const char* described) const override;
  [[nodiscard]] Qt::Alignment FiguresSide() const override { return Qt::AlignLeft; }
  [[nodiscard]] InfoTitles TitlesOfInfo() const override;
  [[nodiscard]] bool ShowsWholeMode() const override { return true; }
  [[nodiscard]] RowColors ColorsOfRows(const QPalette& palette) const override;
};

}  // namespace corvane
