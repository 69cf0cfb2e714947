#include "app/browser/DirListView.h"

#include <QEvent>
#include <QLineEdit>
#include <QMenu>
#include <QPainter>
#include <QScopedValueRollback>
#include <QTimer>
#include <algorithm>
#include <limits>
#include <utility>

#include "app/browser/DirListHeader.h"
#include "app/browser/LookMenu.h"
#include "app/browser/NewDirectoryRow.h"
#include "app/browser/RowDelegate.h"
#include "app/browser/RowDrop.h"
#include "app/shared/EmptyState.h"
#include "app/shared/ScreenText.h"
#include "app/shared/Style.h"
#include "app/shared/Tones.h"

namespace corvane {

DirListView::DirListView(QWidget* parent)
    : QTreeView(parent),
      model_(new DirListModel(this)),
      header_(new DirListHeader(this)),
      delegate_(new RowDelegate(*model_, this)),
      drop_(new RowDrop(*this)),
      newDirectory_(new NewDirectoryRow(this)),
      keepLook_(new QTimer(this)) {
  setObjectName("ListView");
  setAccessibleName(tr("Remote directory"));
  MakeParts();
  MakeSignals();
}

DirListView::~DirListView() {
  KeepLook();
}

void DirListView::MakeParts() {
  setHeader(header_);
  setModel(model_);
  setItemDelegate(delegate_);
  setFrameShape(QFrame::NoFrame);
  setRootIsDecorated(false);
  setItemsExpandable(false);
  setExpandsOnDoubleClick(false);
  setUniformRowHeights(true);
  setIndentation(0);
  setMouseTracking(true);
  setAllColumnsShowFocus(true);
  setTextElideMode(Qt::ElideMiddle);
  setSelectionMode(QAbstractItemView::ExtendedSelection);
  setSelectionBehavior(QAbstractItemView::SelectRows);
  setEditTriggers(QAbstractItemView::NoEditTriggers);
  setDragEnabled(true);
  setVerticalScrollMode(QAbstractItemView::ScrollPerItem);
  setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  header_->setSectionsClickable(true);
  header_->setSortIndicatorShown(true);
  header_->setSortIndicator(DirListModel::kName, Qt::AscendingOrder);
  header_->setContextMenuPolicy(Qt::CustomContextMenu);
  keepLook_->setSingleShot(true);
  keepLook_->setInterval(1000);
}

void DirListView::MakeSignals() {
  connect(header_, &QHeaderView::sectionClicked, this, &DirListView::SetSortKey);
  connect(header_, &DirListHeader::WidthsChanged, this, &DirListView::LookChanged);
  connect(header_, &QWidget::customContextMenuRequested, this, [this](const QPoint& place) {
    QMenu* menu = SetupLookMenu();
    menu->setAttribute(Qt::WA_DeleteOnClose);
    menu->popup(header_->mapToGlobal(place));
  });
  connect(keepLook_, &QTimer::timeout, this, &DirListView::KeepLook);
  connect(model_, &QAbstractItemModel::rowsInserted, this, &DirListView::ShowWhetherEmpty);
  connect(model_, &QAbstractItemModel::rowsRemoved, this, &DirListView::ShowWhetherEmpty);
  connect(model_, &QAbstractItemModel::modelReset, this, &DirListView::ShowWhetherEmpty);
  connect(model_, &QAbstractItemModel::rowsMoved, this, [this] { scrollTo(currentIndex()); });
  connect(delegate_, &RowDelegate::Entered, this, [this](const QString& text) {
    const std::string from = std::exchange(renaming_, {});
    const int row = model_->Find(from);
    const bool changed = row < 0 || text != model_->At(row).NameText();
    if (!from.empty() && !text.isEmpty() && changed) Q_EMIT NameEntered(from, text);
  });
  connect(newDirectory_, &NewDirectoryRow::Closed, this, &DirListView::EndNewDirectory);
  connect(newDirectory_, &NewDirectoryRow::Entered, this, &DirListView::NewDirectoryEntered);
  connect(drop_, &RowDrop::Moved, this, &DirListView::MoveWanted);
  connect(drop_, &RowDrop::Dropped, this, &DirListView::FilesDropped);
  connect(drop_, &RowDrop::RowChanged, this, [this] { viewport()->update(); });
}

QSize DirListView::sizeHint() const {
  return {fontMetrics().averageCharWidth() * 72, QTreeView::sizeHint().height()};
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

bool DirListView::HasFiles() const {
  return std::ranges::any_of(SelectedRows(),
                             [this](int row) { return model_->At(row).Type() != kDirectory; });
}

SelectionSum DirListView::Sum() const {
  SelectionSum sum;
  for (const int row : SelectedRows()) {
    const MWListItem& item = model_->At(row);
    if (item.IsDots()) continue;
    ++(item.Type() == kDirectory ? sum.directories : sum.files);
    // A server may tell any sizes.
    const std::int64_t room = std::numeric_limits<std::int64_t>::max() - sum.bytes;
    sum.bytes += std::clamp<std::int64_t>(item.Size(), 0, room);
  }
  return sum;
}

void DirListView::SelectRow(int row) {
  const QModelIndex index = model_->index(row, DirListModel::kName);
  if (!index.isValid()) return;
  selectionModel()->setCurrentIndex(
      index, QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows);
  scrollTo(index);
}

void DirListView::SelectName(const QString& prefix) {
  const int row = model_->FindItem(prefix);
  if (row >= 0) {
    SelectRow(row);
  } else if (Style::InForce().MissDeselects()) {
    clearSelection();
  }
}

void DirListView::SelectAfterListing(std::string name) {
  selectAfter_ = std::move(name);
}

void DirListView::ClearRows() {
  complete_ = false;
  clearSelection();
  model_->Clear();
}

void DirListView::FinishListing(bool whole) {
  SortRule rule = model_->Rule();
  if (Style::InForce().OrdersByBytes()) {
    rule.column = DirListModel::kName;
    rule.ascending = true;
  }
  Sort(rule);
  complete_ = whole;
  ShowWhetherEmpty();
  const auto kept = std::exchange(kept_, std::nullopt);
  const std::string name = std::exchange(selectAfter_, {});
  // What the user has selected meanwhile counts.
  if (FirstSelected() >= 0) return;
  if (kept.has_value()) kept->Restore(*this);
  if (!name.empty()) SelectRow(model_->Find(name));
}

void DirListView::SetFilter(const QString& text) {
  const ShownPlace place = ShownPlace::Of(*this);
  model_->SetFilter(text);
  place.Restore(*this);
  Q_EMIT SelectionChanged();
}

void DirListView::Sort(const SortRule& rule) {
  header_->setSortIndicator(rule.column, rule.ascending ? Qt::AscendingOrder : Qt::DescendingOrder);
  model_->Sort(rule);
}

void DirListView::SetSortKey(int column) {
  SortRule rule = model_->Rule();
  rule.ascending = column != rule.column || !rule.ascending;
  rule.column = column;
  Sort(rule);
  LookChanged();
}

ListingLook DirListView::Look() const {
  const SortRule& rule = model_->Rule();
  return {.columns = header_->Wanted(),
          .sortColumn = rule.column,
          .ascending = rule.ascending,
          .directoriesFirst = rule.directoriesFirst,
          .natural = rule.natural};
}

void DirListView::SetLook(const ListingLook& look) {
  const SortRule rule{.column = look.sortColumn,
                      .ascending = look.ascending,
                      .directoriesFirst = look.directoriesFirst,
                      .natural = look.natural};
  header_->SetWanted(look.columns);
  if (rule != model_->Rule()) Sort(rule);
  LookChanged();
}

void DirListView::Remember(const std::string& site) {
  KeepLook();
  site_ = site;
  SetLook(ListingLooks::Read(site));
}

void DirListView::LookChanged() {
  if (!site_.empty()) keepLook_->start();
}

void DirListView::KeepLook() {
  keepLook_->stop();
  if (!site_.empty()) ListingLooks::Keep(site_, Look());
}

QMenu* DirListView::SetupLookMenu() {
  return MakeLookMenu(*this);
}

void DirListView::ChangeValues(int row, std::int64_t size) {
  model_->BecomeFile(row, size);
  Q_EMIT SelectionChanged();
}

void DirListView::InsertItem(const fileStruct& entry, const std::string& name) {
  model_->Insert(MWListItem(entry, name));
}

void DirListView::EditName(int row) {
  const QModelIndex index = model_->index(row, DirListModel::kName);
  if (!index.flags().testFlag(Qt::ItemIsEditable)) return;
  SelectRow(row);
  renaming_ = model_->At(row).Name();
  edit(index);
  auto* editor = viewport()->findChild<QLineEdit*>("NameEditor");
  if (editor != nullptr) RowDelegate::SelectStem(*editor, model_->At(row));
}

void DirListView::EditNewDirectory(const QString& suggestion) {
  newDirectory_->Open(suggestion);
  scrollToTop();
  updateGeometries();
}

void DirListView::EndNewDirectory(bool byKey) {
  newDirectory_->hide();
  updateGeometries();
  if (byKey) setFocus();
}

// The line for a new directory stands between header and rows.
void DirListView::updateGeometries() {
  if (layingOut_) return;
  const QScopedValueRollback guard(layingOut_, true);
  QTreeView::updateGeometries();
  if (newDirectory_->isHidden()) return;
  const QRect rows = viewport()->geometry();
  const int height = newDirectory_->sizeHint().height();
  newDirectory_->setGeometry(rows.left(), rows.top(), rows.width(), height);
  setViewportMargins(0, viewportMargins().top() + height, 0, 0);
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

void DirListView::resizeEvent(QResizeEvent* event) {
  QTreeView::resizeEvent(event);
  header_->Fit(viewport()->width());
}

void DirListView::changeEvent(QEvent* event) {
  QTreeView::changeEvent(event);
  if (event->type() == QEvent::FontChange) header_->Fit(viewport()->width());
}

void DirListView::showEvent(QShowEvent* event) {
  QTreeView::showEvent(event);
  drop_->Watch(window());
}

// Comes with every few rows of a listing.
void DirListView::ShowWhetherEmpty() {
  const bool empty = complete_ && model_->Count() == 0;
  if (empty != header_->isHidden()) header_->setVisible(!empty);
  const bool nothing = complete_ && model_->ShownCount() == 0;
  if (nothing == accessibleDescription().isEmpty()) {
    setAccessibleDescription(!nothing ? QString()
                             : empty  ? tr("This directory is empty")
                                      : tr("Nothing matches"));
  }
  Q_EMIT CountChanged();
}

void DirListView::paintEvent(QPaintEvent* event) {
  QTreeView::paintEvent(event);
  if (!complete_ || model_->ShownCount() > 0) return;
  QPainter painter(viewport());
  const EmptyState state =
      model_->Count() == 0
          ? EmptyState{"folder-plain", tr("This directory is empty"),
                       tr("Drag files here, or press Upload.")}
          : EmptyState{"search", tr("Nothing matches"), tr("Change or close the filter.")};
  state.Paint(painter, viewport()->rect(), palette());
}

void DirListView::drawRow(QPainter* painter, const QStyleOptionViewItem& option,
                          const QModelIndex& index) const {
  QTreeView::drawRow(painter, option, index);
  ShowRing(*painter, option.rect, index.row());
}

// Around the row that a drop would go onto, and around the current one of a listing with the focus.
void DirListView::ShowRing(QPainter& painter, const QRect& row, int number) const {
  const bool target = number == drop_->Row();
  const bool current = hasFocus() && number == currentIndex().row();
  const bool selected = selectionModel()->isRowSelected(number, {});
  if (!target && !current) return;
  const bool inside = selected && !target;
  const int thick = inside ? 1 : 2;
  const RowColors colors = Style::InForce().ColorsOfRows(palette());
  painter.setPen(QPen(inside ? colors.selectedText : ToneOf(palette(), Tone::Running), thick,
                      Qt::SolidLine, Qt::SquareCap, Qt::MiterJoin));
  painter.setBrush(Qt::NoBrush);
  painter.drawRect(inside ? row.adjusted(2, 2, -3, -3) : row.adjusted(1, 1, -1, -1));
}

void DirListView::selectionChanged(const QItemSelection& selected,
                                   const QItemSelection& deselected) {
  QTreeView::selectionChanged(selected, deselected);
  Q_EMIT SelectionChanged();
}

}  // namespace corvane
