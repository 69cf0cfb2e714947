#include "app/connect/ShortCutWindow.h"

#include <QApplication>
#include <QClipboard>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QMenu>
#include <QMenuBar>
#include <QPointer>
#include <QTreeWidget>
#include <QVBoxLayout>
#include <algorithm>
#include <utility>

#include "app/connect/ConnectHost.h"
#include "app/connect/ShortCutDelegate.h"
#include "app/connect/ShortCutItem.h"
#include "app/shared/Alerts.h"
#include "app/shared/Frames.h"
#include "app/shared/IconButton.h"
#include "app/shared/Rule.h"
#include "app/shared/ScreenText.h"
#include "app/shared/SmallView.h"
#include "app/shared/StatusLine.h"
#include "app/shared/Style.h"
#include "app/shared/Windows.h"
#include "settings/ProcessSettings.h"
#include "sites/ParseUrl.h"
#include "sites/SecurityOf.h"
#include "sites/ShortcutStore.h"
#include "sites/SiteOf.h"

namespace corvane {
namespace {

/// The columns: title, first width and least width, in pixels.
struct Column {
  const char* title;
  int width;
  int least;
};

constexpr Column kColumns[] = {
    {QT_TRANSLATE_NOOP("corvane::ShortCutWindow", "Label"), 132, 50},
    {QT_TRANSLATE_NOOP("corvane::ShortCutWindow", "Host"), 144, 100},
    {QT_TRANSLATE_NOOP("corvane::ShortCutWindow", "Username"), 104, 60},
    {QT_TRANSLATE_NOOP("corvane::ShortCutWindow", "Path"), 96, 80},
    {QT_TRANSLATE_NOOP("corvane::ShortCutWindow", "Connection Type"), 128, 70},
    {QT_TRANSLATE_NOOP("corvane::ShortCutWindow", "Encryption"), 128, 70},
    {QT_TRANSLATE_NOOP("corvane::ShortCutWindow", "Key"), 60, 40}};

}  // namespace

ShortCutWindow::ShortCutWindow(ShortcutHost& app, const std::vector<Shortcut>& shortcuts)
    : app_(app), list_(new QTreeWidget(this)), status_(new StatusLine(this)) {
  setAttribute(Qt::WA_DeleteOnClose);
  setWindowTitle(tr("Shortcuts[*]"));
  setMinimumHeight(200);
  MakeList(shortcuts);
  auto* whole = new QWidget(this);
  auto* layout = new QVBoxLayout(whole);
  layout->setContentsMargins({});
  layout->setSpacing(0);
  layout->addWidget(MakeToolBar());
  layout->addWidget(new Rule(Qt::Horizontal, whole));
  layout->addWidget(list_);
  layout->addWidget(status_);
  setCentralWidget(whole);
  RowsChanged();
  list_->setFocus();
  // Wide enough for the columns as they are at first.
  QRect frame(QPoint(290, 110), QSize(808, 336));
  frame.setWidth(std::max(frame.width(), list_->header()->length() + 2 * list_->frameWidth()));
  setGeometry(Frames::OnScreen(frame));
  MakeMenus();
  MenusBeginning();
}

ShortCutWindow::~ShortCutWindow() {
  list_->disconnect(this);
}

void ShortCutWindow::MakeList(const std::vector<Shortcut>& shortcuts) {
  list_->setObjectName("MainShrtCtView");
  list_->setAccessibleName(tr("Shortcuts"));
  list_->setRootIsDecorated(false);
  list_->setUniformRowHeights(true);
  list_->setAllColumnsShowFocus(true);
  list_->setSelectionMode(QAbstractItemView::ExtendedSelection);
  list_->setFrameShape(QFrame::NoFrame);
  list_->setItemDelegate(new ShortCutDelegate(list_));
  list_->setContextMenuPolicy(Qt::CustomContextMenu);
  QStringList titles;
  for (const Column& column : kColumns) titles.append(tr(column.title));
  list_->setHeaderLabels(titles);
  QHeaderView* header = list_->header();
  header->setStretchLastSection(true);
  header->setSortIndicatorShown(true);  // takes room in a title
  const auto least = [header](int column) {
    return std::max(kColumns[column].least, header->sectionSizeHint(column));
  };
  for (int i = 0; i < titles.size(); ++i) {
    header->resizeSection(i, std::max(kColumns[i].width, least(i)));
  }
  connect(header, &QHeaderView::sectionResized, this, [header, least](int column, int, int width) {
    if (width < least(column)) header->resizeSection(column, least(column));
  });
  for (const Shortcut& shortcut : shortcuts) list_->addTopLevelItem(new ShortCutItem(shortcut));
  Select(Row(0));
  // In the order of the menu, until a click on a title sorts it.
  header->setSortIndicator(-1, Qt::AscendingOrder);
  list_->setSortingEnabled(true);
  connect(list_, &QTreeWidget::itemSelectionChanged, this, &ShortCutWindow::MenusBeginning);
  connect(list_, &QTreeWidget::itemActivated, this, &ShortCutWindow::EditSelected);
  connect(list_, &QTreeWidget::customContextMenuRequested, this, &ShortCutWindow::ShowContextMenu);
}

QWidget* ShortCutWindow::MakeToolBar() {
  auto* bar = new QWidget(this);
  auto* row = new QHBoxLayout(bar);
  row->setContentsMargins(4, 4, 4, 4);
  const auto add = [&](const char* symbol, const QString& text, std::uint32_t what) {
    auto* button = new IconButton(symbol, text, bar);
    button->ShowText(text);
    button->setMinimumWidth(button->sizeHint().width());
    connect(button, &IconButton::clicked, this, [this, what] { MessageReceived(Message(what)); });
    row->addWidget(button);
    return button;
  };
  add("plus", tr("New Shortcut"), "nwst"_what);
  editButton_ = add("pencil", tr("Edit"), "ITMV"_what);
  removeButton_ = add("trash", tr("Remove"), "REMI"_what);
  row->addStretch();
  add("save", tr("Save"), "SVPF"_what);
  return bar;
}

void ShortCutWindow::ShowContextMenu(const QPoint& place) {
  auto* menu = new QMenu(this);
  menu->setAttribute(Qt::WA_DeleteOnClose);
  if (list_->itemAt(place) != nullptr) {
    menu->addActions({edit_, remove_, copy_});
    menu->addSeparator();
  }
  menu->addAction(new_);
  menu->popup(list_->viewport()->mapToGlobal(place));
}

void ShortCutWindow::MakeMenus() {
  menuBar()->setObjectName("ShortcutWinMenuBar");
  const auto add = [this](QMenu* menu, const QString& text, const QKeySequence& key,
                          std::uint32_t what) {
    return menu->addAction(text, key, this, [this, what] { MessageReceived(Message(what)); });
  };
  QMenu* file = menuBar()->addMenu(tr("&File"));
  new_ = add(file, tr("&New Shortcut"), QKeySequence("Ctrl+N"), "nwst"_what);
  edit_ = add(file, tr("&Edit Shortcut"), QKeySequence("Ctrl+E"), "ITMV"_what);
  remove_ = add(file, tr("&Remove Shortcut"), {}, "REMI"_what);
  remove_->setShortcuts({QKeySequence(Qt::Key_Backspace), QKeySequence(Qt::Key_Delete)});
  add(file, tr("&Save"), QKeySequence("Ctrl+S"), "SVPF"_what);
  QMenu* edit = menuBar()->addMenu(tr("&Edit"));
  copy_ = add(edit, tr("&Copy"), QKeySequence("Ctrl+C"), "COPY"_what);
  add(edit, tr("Select &All"), QKeySequence("Ctrl+A"), "SALL"_what);
  AddCloseKey(this);
}

void ShortCutWindow::MenusBeginning() {
  const bool selected = !list_->selectedItems().isEmpty();
  for (QAction* action : {edit_, remove_, copy_}) action->setEnabled(selected);
  const QString why = selected ? QString() : tr("Select a shortcut first.");
  for (IconButton* button : {editButton_, removeButton_}) {
    button->setEnabled(selected);
    button->setToolTip(why);
  }
}

void ShortCutWindow::MessageReceived(const Message& message) {
  switch (message.what) {
    case "nwst"_what: NewShortcut(); break;
    case "ITMV"_what: EditSelected(); break;
    case "REMI"_what: RemoveSelected(); break;
    case "SVPF"_what: Save(); break;
    case "SALL"_what: list_->selectAll(); break;
    case "COPY"_what: CopySelected(); break;
    case "NWST"_what: AddRow(message); break;
    default: break;
  }
}

void ShortCutWindow::NewShortcut() {
  const Security security = SecurityOf(ProcessSettings::Get());
  app_.ShowEditor({.site = {.port = UsualPort(security), .security = security}}, *this, {});
}

void ShortCutWindow::SetChanged(bool changed) {
  changed_ = changed;
  if (changed) ++changes_;
  setWindowModified(changed);
  RowsChanged();
}

void ShortCutWindow::RowsChanged() {
  int number = 0;
  for (ShortCutItem* row : InMenuOrder()) row->ShowKey(number++);
  status_->SetText(number == 1 ? tr("1 shortcut") : tr("%n shortcuts", "", number));
  status_->Figure().SetSecondary(true);
  status_->Figure().SetText(changed_ ? tr("Changed, not saved yet") : QString());
}

std::vector<ShortCutItem*> ShortCutWindow::InMenuOrder() const {
  std::vector<ShortCutItem*> rows;
  rows.reserve(static_cast<std::size_t>(list_->topLevelItemCount()));
  for (int row = 0; row < list_->topLevelItemCount(); ++row) rows.push_back(Row(row));
  std::ranges::sort(rows, {}, &ShortCutItem::Id);
  return rows;
}

ShortCutItem* ShortCutWindow::Row(int row) const {
  return static_cast<ShortCutItem*>(list_->topLevelItem(row));
}

ShortCutItem* ShortCutWindow::FirstSelected() const {
  for (int row = 0; row < list_->topLevelItemCount(); ++row) {
    if (Row(row)->isSelected()) return Row(row);
  }
  return nullptr;
}

void ShortCutWindow::Select(ShortCutItem* item) {
  // Keys that happen to be held down make no difference.
  if (item != nullptr) {
    list_->setCurrentItem(item, 0, QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows);
  }
}

void ShortCutWindow::EditSelected() {
  const ShortCutItem* item = FirstSelected();
  if (item == nullptr) return;
  app_.ShowEditor(
      item->Record(), *this,
      [list = QPointer<ShortCutWindow>(this), id = item->Id()](const Shortcut& changed) {
        return !list.isNull() && list->TakeOver(id, changed);
      });
}

bool ShortCutWindow::TakeOver(int id, const Shortcut& changed) {
  for (int row = 0; row < list_->topLevelItemCount(); ++row) {
    if (Row(row)->Id() != id) continue;
    Row(row)->SetRecord(changed);
    SetChanged(true);
    return true;
  }
  return false;
}

void ShortCutWindow::RemoveSelected() {
  ShortCutItem* item = FirstSelected();
  if (list_->topLevelItemCount() == 1) {
    const QString text = tr("You need to have at least one remaining shortcut.");
    if (!Style::InForce().AlertsOfFaults()) return status_->SetText(text);
    return Alerts::Show(this, {.title = tr("Warning!"), .text = text});
  }
  if (item == nullptr) return;
  const int row = list_->indexOfTopLevelItem(item);
  delete item;
  list_->clearSelection();
  Select(Row(row));
  SetChanged(true);
}

void ShortCutWindow::CopySelected() {
  QString text;
  for (int row = 0; row < list_->topLevelItemCount(); ++row) {
    if (!Row(row)->isSelected()) continue;
    const Site& site = Row(row)->Record().site;
    text += QString::fromStdString(UrlOf(site, site.path).Written()) + '\n';
  }
  if (!text.isEmpty()) QApplication::clipboard()->setText(text);
}

void ShortCutWindow::AddRow(const Message& added) {
  const auto index = added.FindInt32("index");
  auto shortcut =
      index ? ShortcutStore::Read(*index) : ParseUrl(added.FindString("url").value_or(""), false);
  if (!shortcut.has_value()) return;
  auto* item = new ShortCutItem(std::move(*shortcut));
  list_->addTopLevelItem(item);
  Select(item);
  RowsChanged();
}

}  // namespace corvane
