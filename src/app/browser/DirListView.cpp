#include "app/browser/DirListView.h"

#include <QContextMenuEvent>
#include <QFontDatabase>
#include <QFontMetrics>
#include <QGroupBox>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLabel>
#include <QMenu>
#include <QMouseEvent>
#include <QVBoxLayout>
#include <algorithm>
#include <numeric>

#include "app/browser/BrowserCommands.h"
#include "app/browser/DirListHeader.h"
#include "app/shared/ScreenText.h"

namespace corvane {
namespace {

constexpr int kIconWidth = 24;
constexpr int kSizeWidth = 77;
constexpr int kDateWidth = 70;
constexpr quint64 kTypeAheadMilliseconds = 950;

}  // namespace

DirListView::DirListView(QWidget* parent) : QTreeView(parent), model_(new DirListModel(this)) {
  setObjectName("ListView");
  setAccessibleName(tr("Remote directory"));
  MakeInfoBox();
  setHeader(new DirListHeader(this));
  setModel(model_);
  setRootIsDecorated(false);
  setItemsExpandable(false);
  setExpandsOnDoubleClick(false);
  setUniformRowHeights(true);
  setIndentation(0);
  setIconSize({16, 16});
  setAllColumnsShowFocus(true);
  setTextElideMode(Qt::ElideMiddle);
  setSelectionMode(QAbstractItemView::ExtendedSelection);
  setSelectionBehavior(QAbstractItemView::SelectRows);
  setEditTriggers(QAbstractItemView::NoEditTriggers);
  setDragEnabled(true);
  setVerticalScrollMode(QAbstractItemView::ScrollPerItem);
  SetColumnWidths();
  // The tree would sort by the picture column too, so clicks are handled here.
  header()->setSectionsClickable(true);
  header()->setSortIndicatorShown(true);
  header()->setSortIndicator(sortColumn_, sortOrder_);
  connect(header(), &QHeaderView::sectionClicked, this, [this](int column) {
    SetSortKey(column == DirListModel::kIcon ? int{DirListModel::kName} : column);
  });
}

void DirListView::MakeInfoBox() {
  infoBox_ = new QGroupBox(tr("File Info:"));
  auto* layout = new QVBoxLayout(infoBox_);
  const QFont fixed = QFontDatabase::systemFont(QFontDatabase::FixedFont);
  const auto line = [&](const char* name, const QString& accessible) {
    auto* label = new QLabel(QStringLiteral(" "), infoBox_);
    label->setObjectName(name);
    label->setAccessibleName(accessible);
    label->setFont(fixed);
    label->setTextFormat(Qt::PlainText);
    label->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed);
    layout->addWidget(label);
    return label;
  };
  permissions_ = line("Permissions", tr("Permissions"));
  user_ = line("User", tr("Owner"));
  group_ = line("Group", tr("Group"));
}

void DirListView::SetColumnWidths() {
  const QFontMetrics fixed(QFontDatabase::systemFont(QFontDatabase::FixedFont));
  const int margins = fixed.horizontalAdvance("00");
  header()->setSectionResizeMode(QHeaderView::Interactive);
  header()->setSectionResizeMode(DirListModel::kIcon, QHeaderView::Fixed);
  header()->resizeSection(DirListModel::kIcon, kIconWidth);
  header()->resizeSection(DirListModel::kSize,
                          std::max(kSizeWidth, fixed.horizontalAdvance(" 1000.00 KB") + margins));
  header()->resizeSection(DirListModel::kDate,
                          std::max(kDateWidth, fixed.horizontalAdvance("12/31/2000") + margins));
  FitNameColumn();
}

void DirListView::FitNameColumn() {
  const int others = header()->sectionSize(DirListModel::kIcon) +
                     header()->sectionSize(DirListModel::kSize) +
                     header()->sectionSize(DirListModel::kDate);
  header()->resizeSection(DirListModel::kName, std::max(fontMetrics().averageCharWidth() * 12,
                                                        viewport()->width() - others));
}

QSize DirListView::sizeHint() const {
  const int others = header()->sectionSize(DirListModel::kSize) +
                     header()->sectionSize(DirListModel::kDate) + kIconWidth;
  return {others + fontMetrics().averageCharWidth() * 32, QTreeView::sizeHint().height()};
}

int DirListView::FirstSelected() const {
  const QItemSelection selection = selectionModel()->selection();
  int first = -1;
  for (const QItemSelectionRange& range : selection) {
    if (first < 0 || range.top() < first) first = range.top();
  }
  return first;
}

std::vector<int> DirListView::SelectedRows() const {
  std::vector<int> rows;
  const QItemSelection selection = selectionModel()->selection();
  for (const QItemSelectionRange& range : selection) {
    for (int row = range.top(); row <= range.bottom(); ++row) rows.push_back(row);
  }
  std::ranges::sort(rows);
  rows.erase(std::unique(rows.begin(), rows.end()), rows.end());
  return rows;
}

int DirListView::SelectedCount() const {
  return static_cast<int>(SelectedRows().size());
}

void DirListView::SelectRow(int row) {
  const QModelIndex index = model_->index(row, DirListModel::kName);
  selectionModel()->setCurrentIndex(
      index, QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows);
  scrollTo(index);
}

void DirListView::SelectName(std::string_view prefix) {
  const int row = model_->FindItem(prefix);
  if (row < 0) {
    clearSelection();
  } else {
    SelectRow(row);
  }
}

void DirListView::ChangeValues(int row, std::int64_t size) {
  model_->BecomeFile(row, size);
  ShowInfo();
}

void DirListView::InsertItem(const fileStruct& entry, const std::string& name) {
  model_->Insert(model_->PlaceFor(name), MWListItem(entry, name));
}

void DirListView::SetSortKey(int column) {
  const bool turn = column == sortColumn_ && sortOrder_ == Qt::AscendingOrder;
  sortColumn_ = column;
  sortOrder_ = turn ? Qt::DescendingOrder : Qt::AscendingOrder;
  header()->setSortIndicator(sortColumn_, sortOrder_);
  model_->sort(sortColumn_, sortOrder_);
}

void DirListView::SortByName() {
  sortColumn_ = DirListModel::kName;
  sortOrder_ = Qt::AscendingOrder;
  header()->setSortIndicator(sortColumn_, sortOrder_);
  model_->sort(sortColumn_, sortOrder_);
}

void DirListView::DisableAll() {
  enabled_ = false;
  model_->SetEnabledAll(false);
  Q_EMIT EnabledChanged(false);
}

void DirListView::EnableAll() {
  enabled_ = true;
  model_->SetEnabledAll(true);
  Q_EMIT EnabledChanged(true);
}

void DirListView::Invoke() {
  if (enabled_ && ready_ && FirstSelected() >= 0) Q_EMIT Invoked();
}

void DirListView::TypeAhead(char key, quint64 milliseconds) {
  const bool follows = lastKey_.has_value() && milliseconds >= *lastKey_ &&
                       milliseconds - *lastKey_ < kTypeAheadMilliseconds;
  if (!follows) typed_.clear();
  typed_ += key;
  lastKey_ = milliseconds;
  SelectName(typed_);
}

void DirListView::keyPressEvent(QKeyEvent* event) {
  const std::string key = ToBytes(event->text());
  const bool command =
      event->modifiers().testAnyFlags(Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier);
  if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) {
    Invoke();
  } else if (!command && key.size() == 1 && key[0] >= ' ' && key[0] < 127) {
    TypeAhead(key[0], event->timestamp());
  } else {
    QTreeView::keyPressEvent(event);
  }
}

void DirListView::mouseDoubleClickEvent(QMouseEvent* event) {
  if (event->button() == Qt::LeftButton && indexAt(event->position().toPoint()).isValid()) {
    Invoke();
  }
}

// The pressed row is the current one; a click with Ctrl may have deselected it.
void DirListView::startDrag(Qt::DropActions /*actions*/) {
  const QModelIndex pressed = currentIndex();
  if (!pressed.flags().testFlag(Qt::ItemIsDragEnabled) ||
      !selectionModel()->isRowSelected(pressed.row(), {})) {
    return;
  }
  Q_EMIT DragBegins(pressed.row());
}

void DirListView::contextMenuEvent(QContextMenuEvent* event) {
  const bool byKey = event->reason() == QContextMenuEvent::Keyboard;
  const QModelIndex index = byKey ? currentIndex() : indexAt(event->pos());
  if (!index.isValid() || model_->At(index.row()).IsDots() || !enabled_) return;
  if (!selectionModel()->isRowSelected(index.row(), {})) SelectRow(index.row());
  QMenu* menu = SetupPopUpMenu();
  menu->setAttribute(Qt::WA_DeleteOnClose);
  menu->popup(byKey ? viewport()->mapToGlobal(visualRect(index).center()) : event->globalPos());
}

QMenu* DirListView::SetupPopUpMenu() {
  const int first = FirstSelected();
  const CommandState state{.ready = enabled_ && ready_,
                           .selected = first < 0 ? 0 : model_->At(first).Type()};
  return BrowserCommands::MakePopUp(
      this, state, [this](const BrowserCommand& command) { Q_EMIT Chosen(command); });
}

void DirListView::resizeEvent(QResizeEvent* event) {
  QTreeView::resizeEvent(event);
  if (event->size().width() != event->oldSize().width()) FitNameColumn();
}

void DirListView::changeEvent(QEvent* event) {
  QTreeView::changeEvent(event);
  if (event->type() == QEvent::FontChange) SetColumnWidths();
}

void DirListView::selectionChanged(const QItemSelection& selected,
                                   const QItemSelection& deselected) {
  QTreeView::selectionChanged(selected, deselected);
  ShowInfo();
}

void DirListView::ShowInfo() {
  const int row = FirstSelected();
  const bool usable = row >= 0 && !model_->At(row).IsDots();
  const EntryAttributes none;
  const EntryAttributes& shown = usable ? model_->At(row).Attributes() : none;
  const auto show = [usable](QLabel* label, const QString& title, const std::string& value) {
    label->setText(usable ? title + ToText(value) : QStringLiteral(" "));
    label->setToolTip(usable ? Harmless(label->text()) : QString());
  };
  show(permissions_, tr("Perm: "), shown.permissions);
  show(user_, tr("User: "), shown.owner);
  show(group_, tr("Group: "), shown.group);
  Q_EMIT SelectionChanged();
}

}  // namespace corvane
