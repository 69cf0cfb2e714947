#pragma once

#include <QTreeView>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "app/browser/DirListModel.h"

class QGroupBox;
class QLabel;
class QMenu;

namespace corvane {

struct BrowserCommand;

/// The remote directory of one browser window. GUI thread.
class DirListView : public QTreeView {
  Q_OBJECT

 public:
  explicit DirListView(QWidget* parent = nullptr);

  [[nodiscard]] DirListModel& Rows() { return *model_; }
  [[nodiscard]] const DirListModel& Rows() const { return *model_; }
  /// The "File Info:" box; the browser window places it.
  [[nodiscard]] QGroupBox* InfoBox() const { return infoBox_; }

  /// The first selected row from the top; -1 without a selection.
  [[nodiscard]] int FirstSelected() const;
  [[nodiscard]] int SelectedCount() const;
  /// All selected rows from the top.
  [[nodiscard]] std::vector<int> SelectedRows() const;
  /// Selects this row alone and scrolls to it.
  void SelectRow(int row);
  /// Selects the first row whose name begins so; without one nothing stays selected.
  void SelectName(std::string_view prefix);

  /// A link has turned out to lead to a file: its row becomes a file's.
  void ChangeValues(int row, std::int64_t size);
  /// Adds a row in name order.
  void InsertItem(const fileStruct& entry, const std::string& name);
  /// Sorts by a column; a second time by the same column turns the direction round.
  void SetSortKey(int column);
  /// Sorts by name, ascending, as every new listing starts.
  void SortByName();

  /// While disabled, rows are grey and cannot be opened.
  void DisableAll();
  void EnableAll();
  [[nodiscard]] bool IsEnabled() const { return enabled_; }

  /// Whether the connection takes requests; rows are opened only then.
  void SetReady(bool ready) { ready_ = ready; }

  /// A new menu for the selection; the caller owns it. Its items come back through Chosen.
  [[nodiscard]] QMenu* SetupPopUpMenu();

  [[nodiscard]] QSize sizeHint() const override;

 Q_SIGNALS:
  /// The first selected row is to be opened.
  void Invoked();
  /// A command of the pop-up menu.
  void Chosen(const corvane::BrowserCommand& command);
  void SelectionChanged();
  void EnabledChanged(bool enabled);
  /// The selected rows are being pulled, with the pointer on `row`, which is one of them.
  void DragBegins(int row);

 protected:
  void keyPressEvent(QKeyEvent* event) override;
  void mouseDoubleClickEvent(QMouseEvent* event) override;
  void startDrag(Qt::DropActions actions) override;
  void contextMenuEvent(QContextMenuEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;
  void changeEvent(QEvent* event) override;
  void selectionChanged(const QItemSelection& selected, const QItemSelection& deselected) override;

 private:
  void MakeInfoBox();
  void SetColumnWidths();
  void FitNameColumn();
  void ShowInfo();
  void TypeAhead(char key, quint64 milliseconds);
  void Invoke();

  DirListModel* model_;
  QGroupBox* infoBox_ = nullptr;
  QLabel* permissions_ = nullptr;
  QLabel* user_ = nullptr;
  QLabel* group_ = nullptr;
  std::string typed_;
  std::optional<quint64> lastKey_;  // the time of the last key, in milliseconds of the desktop's
  int sortColumn_ = DirListModel::kName;
  Qt::SortOrder sortOrder_ = Qt::AscendingOrder;
  bool enabled_ = true;
  bool ready_ = false;
};

}  // namespace corvane
