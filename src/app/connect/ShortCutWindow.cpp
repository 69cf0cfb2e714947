#include "app/connect/ShortCutWindow.h"

#include <QHBoxLayout>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLineEdit>
#include <QStyle>
#include <QVBoxLayout>
#include <algorithm>
#include <utility>

#include "app/connect/ConnectHost.h"
#include "app/connect/ShortCutItem.h"
#include "app/connect/ShortcutTree.h"
#include "app/shared/Frames.h"
#include "app/shared/IconButton.h"
#include "app/shared/Rule.h"
#include "app/shared/SmallView.h"
#include "app/shared/StatusLine.h"
#include "app/shared/Symbols.h"
#include "sites/ShortcutStore.h"

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

ShortCutWindow::ShortCutWindow(ShortcutHost& app, const std::vector<Shortcut>& shortcuts,
                               const std::vector<ShortcutFolder>& folders)
    : app_(app), list_(new ShortcutTree(this)), status_(new StatusLine(this)) {
  setAttribute(Qt::WA_DeleteOnClose);
  setWindowTitle(tr("Shortcuts[*]"));
  setMinimumHeight(200);
  MakeList();
  list_->Add(shortcuts, folders);
  list_->Select(list_->topLevelItem(0));
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
  const int bar = style()->pixelMetric(QStyle::PM_ScrollBarExtent);
  frame.setWidth(std::max(frame.width(), list_->header()->length() + bar));
  setGeometry(Frames::OnScreen(frame));
  MakeMenus();
  MenusBeginning();
}

ShortCutWindow::~ShortCutWindow() {
  list_->disconnect(this);
  ShortcutStore::KeepOpen(list_->Folders());
}

void ShortCutWindow::MakeList() {
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
  // In the order of the menu, until a click on a title sorts it.
  header->setSortIndicator(-1, Qt::AscendingOrder);
  connect(list_, &QTreeWidget::itemSelectionChanged, this, &ShortCutWindow::MenusBeginning);
  connect(list_, &QTreeWidget::itemActivated, this, &ShortCutWindow::Activate);
  connect(list_, &QTreeWidget::customContextMenuRequested, this, &ShortCutWindow::ShowContextMenu);
  connect(list_, &ShortcutTree::Rearranged, this, [this] { SetChanged(true); });
  connect(list_, &ShortcutTree::NameRefused, this, &ShortCutWindow::ShowStatus);
  connect(list_, &ShortcutTree::Escaped, this, [this] { search_->clear(); });
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
  row->addWidget(MakeSearch(bar));
  row->addSpacing(8);
  add("save", tr("Save"), "SVPF"_what);
  return bar;
}

QWidget* ShortCutWindow::MakeSearch(QWidget* bar) {
  constexpr int kWidth = 200;
  search_ = new QLineEdit(bar);
  search_->setObjectName("Search");
  search_->setAccessibleName(tr("Search the shortcuts"));
  search_->setPlaceholderText(tr("Search"));
  search_->setFixedWidth(kWidth);
  search_->addAction(Symbol("search"), QLineEdit::LeadingPosition)
      ->setText(search_->accessibleName());
  search_->installEventFilter(this);
  connect(search_, &QLineEdit::textChanged, this, &ShortCutWindow::Search);
  return search_;
}

// From the field the keys lead on into the list.
bool ShortCutWindow::eventFilter(QObject* search, QEvent* event) {
  if (event->type() != QEvent::KeyPress || search != search_) return false;
  switch (const int key = static_cast<QKeyEvent*>(event)->key(); key) {
    case Qt::Key_Return:
    case Qt::Key_Enter: Connect(); return true;
    case Qt::Key_Escape:
      if (search_->text().isEmpty()) list_->setFocus();
      search_->clear();
      return true;
    case Qt::Key_Up:
    case Qt::Key_Down:
    case Qt::Key_PageUp:
    case Qt::Key_PageDown:
      list_->setFocus();
      if (list_->currentItem() == nullptr) list_->Select(list_->topLevelItem(0));
      return true;
    default: return false;
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

void ShortCutWindow::SetChanged(bool changed) {
  changed_ = changed;
  if (changed) ++changes_;
  setWindowModified(changed);
  RowsChanged();
  MenusBeginning();
}

void ShortCutWindow::ShowStatus(const QString& text) {
  status_->SetText(text);
}

void ShortCutWindow::RowsChanged() {
  int number = 0;
  for (ShortCutItem* row : list_->InMenuOrder()) row->ShowKey(number++);
  const QString all = number == 1 ? tr("1 shortcut") : tr("%n shortcuts", "", number);
  status_->SetText(list_->IsFiltered() ? tr("%1 of %2").arg(list_->ShownCount()).arg(all) : all);
  status_->Figure().SetSecondary(true);
  status_->Figure().SetText(changed_ ? tr("Changed, not saved yet") : QString());
}

void ShortCutWindow::TakeImported(const std::vector<Shortcut>& shortcuts,
                                  const std::vector<ShortcutFolder>& folders, const QString& word) {
  search_->clear();
  const std::size_t before = list_->InMenuOrder().size();
  list_->Add(shortcuts, folders);
  SetChanged(true);
  if (before < list_->InMenuOrder().size()) {
    list_->Select(list_->InMenuOrder()[before]);
    list_->scrollToItem(list_->currentItem());
  }
  ShowStatus(word);
}

std::vector<Shortcut> ShortCutWindow::Records() const {
  std::vector<Shortcut> records;
  records.reserve(list_->InMenuOrder().size());
  for (const ShortCutItem* row : list_->InMenuOrder()) records.push_back(row->Record());
  return records;
}

}  // namespace corvane
