#pragma once

#include <QPushButton>
#include <cstdint>
#include <string>
#include <vector>

#include "sites/Shortcut.h"
#include "sites/ShortcutFolders.h"

class QActionGroup;
class QMenu;

namespace corvane {

/// The menu of saved connections, on a button that shows the one chosen last. GUI thread.
class ShortcutField : public QPushButton {
  Q_OBJECT

 public:
  explicit ShortcutField(QWidget* parent = nullptr);

  /// Shows these in place of what was there, those in folders in menus of their own; the first ten
  /// are chosen by Ctrl and a digit.
  void Fill(const std::vector<Shortcut>& shortcuts, const std::vector<ShortcutFolder>& folders);
  /// Adds the connection of the store's number `index` at the end.
  void Append(const std::string& label, std::int32_t index);
  /// How many there are.
  [[nodiscard]] qsizetype Count() const;

  /// Room for its title; a longer label is cut.
  [[nodiscard]] QSize minimumSizeHint() const override;
  [[nodiscard]] QSize sizeHint() const override { return minimumSizeHint(); }

 Q_SIGNALS:
  void Chosen(std::int32_t index);

 protected:
  void resizeEvent(QResizeEvent* event) override;

 private:
  void Add(QMenu& menu, const std::string& label, std::int32_t index, bool withKey);
  void ShowMarked();

  QMenu* cutMenu_;
  QActionGroup* items_;
};

}  // namespace corvane
