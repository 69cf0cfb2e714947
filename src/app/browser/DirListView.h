#pragma once

#include <QTreeView>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "app/browser/DirListModel.h"
#include "app/browser/ListingPlace.h"
#include "app/browser/TypeAhead.h"
#include "settings/ListingLooks.h"

class QMenu;
class QMimeData;
class QTimer;

namespace corvane {

class DirListHeader;
class NewDirectoryRow;
class RowDelegate;
class RowDrop;
struct BrowserCommand;

/// What is selected in a listing.
struct SelectionSum {
  int files = 0;  ///< with links and all that is no directory
  int directories = 0;
  std::int64_t bytes = 0;  ///< of the files, as far as their sizes are known

  [[nodiscard]] int Count() const { return files + directories; }
};

/// The remote directory of one browser window. GUI thread.
class DirListView : public QTreeView {
  Q_OBJECT

 public:
  explicit DirListView(QWidget* parent = nullptr);
  ~DirListView() override;

  [[nodiscard]] DirListModel& Rows() { return *model_; }
  [[nodiscard]] const DirListModel& Rows() const { return *model_; }

  // The selection.

  /// The first selected row from the top; -1 without a selection.
  [[nodiscard]] int FirstSelected() const;
  [[nodiscard]] int SelectedCount() const;
  /// All selected rows from the top.
  [[nodiscard]] std::vector<int> SelectedRows() const;
  /// What is selected but "." and "..".
  [[nodiscard]] SelectionSum Sum() const;
  /// Whether a row is selected that is no directory.
  [[nodiscard]] bool HasFiles() const;
  /// Selects this row alone and scrolls to it; one that is hidden stays as it is.
  void SelectRow(int row);
  /// Selects the first row whose name begins so. Without one the selection stays, or goes, as the
  /// style has it.
  void SelectName(const QString& prefix);

  // A listing comes and goes.

  /// What was selected, current and scrolled to is found again in the listing that comes next.
  void RestoreAfterListing(ListingPlace place) { kept_ = std::move(place); }
  /// In the listing that comes next the entry `name` gets selected.
  void SelectAfterListing(std::string name);
  /// Takes all rows away, before others come.
  void ClearRows();
  /// All rows have come: sorts them, and goes to where RestoreAfterListing or SelectAfterListing
  /// wants.
  void FinishListing(bool whole);

  // What is shown, and how.

  /// Hides the rows whose names do not contain `text`; what is still shown stays selected.
  void SetFilter(const QString& text);
  /// Sorts by a column; a second time by the same column turns the direction round.
  void SetSortKey(int column);
  /// Shows the listing as it was shown last for `site`, "user@host:port", and keeps from now on
  /// how the user has it.
  void Remember(const std::string& site);
  [[nodiscard]] ListingLook Look() const;
  void SetLook(const ListingLook& look);
  /// A new menu of columns and order; the caller owns it.
  [[nodiscard]] QMenu* SetupLookMenu();

  // Single rows.

  /// A link has turned out to lead to a file: its row becomes a file's.
  void ChangeValues(int row, std::int64_t size);
  /// Adds a row where it belongs.
  void InsertItem(const fileStruct& entry, const std::string& name);
  /// Opens an editor in the row; NameEntered tells what came of it.
  void EditName(int row);
  /// Opens a line for the name of a new directory; NewDirectoryEntered tells what came of it.
  void EditNewDirectory(const QString& suggestion);

  /// While disabled, rows are grey and cannot be opened.
  void DisableAll();
  void EnableAll();
  [[nodiscard]] bool IsEnabled() const { return enabled_; }

  /// Whether the connection takes requests; rows are opened only then.
  void SetReady(bool ready) { ready_ = ready; }
  /// Enabled, and the connection takes requests.
  [[nodiscard]] bool IsReady() const { return enabled_ && ready_; }

  /// A new menu for the selection; the caller owns it. Its items come back through Chosen.
  [[nodiscard]] QMenu* SetupPopUpMenu();

  [[nodiscard]] QSize sizeHint() const override;

 Q_SIGNALS:
  /// The first selected row is to be opened.
  void Invoked();
  /// A command of the pop-up menu.
  void Chosen(const corvane::BrowserCommand& command);
  void SelectionChanged();
  /// How many rows there are, or how many of them are shown.
  void CountChanged();
  void EnabledChanged(bool enabled);
  /// The selected rows are being pulled, with the pointer on `row`, which is one of them.
  void DragBegins(int row);
  /// The user wants to look for a name.
  void FilterWanted();
  /// Escape, with nothing that it would end.
  void Escaped();
  /// The mouse's buttons for back and forward.
  void BackWanted();
  void ForwardWanted();
  /// A name was typed for the entry `from`, raw bytes; another one than it has.
  void NameEntered(const std::string& from, const QString& to);
  void NewDirectoryEntered(const QString& name);
  /// These rows were dropped onto a directory of the listing.
  void MoveWanted(const std::vector<std::string>& names, const std::string& directory);
  /// Something from outside that has URLs was dropped onto a directory of the listing.
  void FilesDropped(const QMimeData& data, const std::string& directory);

 protected:
  void keyPressEvent(QKeyEvent* event) override;
  void inputMethodEvent(QInputMethodEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void mouseDoubleClickEvent(QMouseEvent* event) override;
  void startDrag(Qt::DropActions actions) override;
  void contextMenuEvent(QContextMenuEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;
  void changeEvent(QEvent* event) override;
  void showEvent(QShowEvent* event) override;
  void paintEvent(QPaintEvent* event) override;
  void drawRow(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override;
  QModelIndex moveCursor(CursorAction action, Qt::KeyboardModifiers modifiers) override;
  void updateGeometries() override;
  void selectionChanged(const QItemSelection& selected, const QItemSelection& deselected) override;

 private:
  void MakeParts();
  void MakeSignals();
  void Sort(const SortRule& rule);
  void LookChanged();
  void KeepLook();
  void ShowWhetherEmpty();
  void ShowRing(QPainter& painter, const QRect& row, int number) const;
  void TypeLetters(const QString& letters, quint64 milliseconds);
  void Invoke();
  void EndNewDirectory(bool byKey);

  DirListModel* model_;
  DirListHeader* header_;
  RowDelegate* delegate_;
  RowDrop* drop_;
  NewDirectoryRow* newDirectory_;
  TypeAhead typed_;
  std::optional<ListingPlace> kept_;  // for the listing that comes next
  std::string selectAfter_;
  std::string renaming_;   // the entry whose name is being edited
  std::string site_;       // whose look is remembered; empty for none
  QTimer* keepLook_;       // runs while a look waits to be stored
  bool complete_ = false;  // all rows of the directory have come
  bool layingOut_ = false;
  bool enabled_ = true;
  bool ready_ = false;
};

}  // namespace corvane
