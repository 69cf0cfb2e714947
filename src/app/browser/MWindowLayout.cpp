// What a browser window consists of: its views and menus.

#include <QAction>
#include <QApplication>
#include <QCheckBox>
#include <QGridLayout>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QMenuBar>
#include <QPushButton>
#include <QVBoxLayout>
#include <algorithm>

#include "app/browser/BrowserHost.h"
#include "app/browser/BrowserLink.h"
#include "app/browser/DirListView.h"
#include "app/browser/MWindow.h"
#include "app/shared/ScreenText.h"
#include "app/shared/SmallView.h"
#include "app/shared/TransferView.h"
#include "app/shared/Windows.h"
#include "settings/ProcessSettings.h"

namespace corvane {
namespace {

Message ChangeDirectoryMessage(const char* where) {
  Message message("PCHN"_what);
  message.AddString("cwd", where);
  return message;
}

}  // namespace

void MWindow::MakeViews() {
  auto* main = new QWidget(this);
  main->setObjectName("MainWindowView");
  setCentralWidget(main);

  auto* pathLabel = new QLabel(tr("Path:"), main);
  path_ = new QLineEdit(main);
  path_->setObjectName("Path");
  path_->setAccessibleName(tr("Remote path"));
  path_->setText(ToText(connection_.path));
  pathLabel->setBuddy(path_);
  listing_ = new DirListView(main);
  count_ = new SmallView(main);
  download_ = new QPushButton(tr("&Download"), main);
  download_->setObjectName("download");
  download_->setEnabled(false);
  sameConnection_ = new QCheckBox(tr("Use &this connection."), main);
  sameConnection_->setObjectName("SameCon");
  sameConnection_->setChecked(ProcessSettings::Get().useSameConnection);
  pane_ = app_.MakeTransferView(main);
  upload_ = new QPushButton(tr("&Upload"), main);
  upload_->setObjectName("upload");

  auto* side = new QVBoxLayout;
  side->setSpacing(8);
  side->addWidget(MakeStatusBox());
  side->addWidget(listing_->InfoBox());
  side->addWidget(sameConnection_);
  side->addWidget(pane_);
  side->addStretch();
  side->addWidget(upload_);
  side->addWidget(download_);

  auto* pathRow = new QHBoxLayout;
  pathRow->setSpacing(6);
  pathRow->addWidget(pathLabel);
  pathRow->addWidget(path_);

  auto* layout = new QGridLayout(main);
  layout->setContentsMargins(10, 10, 10, 6);
  layout->setHorizontalSpacing(12);
  layout->setVerticalSpacing(6);
  layout->addLayout(pathRow, 0, 0);
  layout->addWidget(listing_, 1, 0);
  layout->addLayout(side, 1, 1);
  layout->addWidget(count_, 2, 0);
  layout->setColumnStretch(0, 1);
  layout->setColumnMinimumWidth(1, 150);

  connect(path_, &QLineEdit::returnPressed, this, &MWindow::PathEntered);
  connect(download_, &QPushButton::clicked, this,
          [this] { MessageReceived(Message("DWLD"_what)); });
  connect(upload_, &QPushButton::clicked, this, [this] { MessageReceived(Message("UPLD"_what)); });
  connect(listing_, &DirListView::Requested, this, &MWindow::MessageReceived);
  connect(listing_, &DirListView::SelectionChanged, this, [this](bool usable) {
    download_->setEnabled(usable);
    MenusBeginning();
  });
  connect(listing_, &DirListView::EnabledChanged, this, &MWindow::ListingEnabled);
  connect(listing_, &DirListView::DragBegins, this, &MWindow::DragRows);
  path_->installEventFilter(this);
  setAcceptDrops(true);
  connect(pane_, &TransferView::Settled, this, &MWindow::TransferSettled);
  connect(qApp, &QApplication::focusChanged, this, [this](QWidget*, QWidget* now) {
    if (now != path_ && now != listing_) return;
    lastFocus_ = now;
    MenusBeginning();
  });
  setTabOrder(listing_, path_);
  setTabOrder(path_, sameConnection_);
  setTabOrder(sameConnection_, pane_);
  setTabOrder(pane_, upload_);
  setTabOrder(upload_, download_);
  listing_->setFocus();
}

QWidget* MWindow::MakeStatusBox() {
  auto* box = new QGroupBox(tr("Status"), this);
  box->setObjectName("Status");
  status_ = new QLabel(box);
  status_->setObjectName("StatusString");
  status_->setTextFormat(Qt::PlainText);
  status_->setAlignment(Qt::AlignCenter);
  status_->setWordWrap(true);
  status_->setMinimumHeight(2 * status_->fontMetrics().lineSpacing());
  auto* layout = new QVBoxLayout(box);
  layout->addWidget(status_);
  return box;
}

// The height is the layout's, for a transfer that is shown may need more than this.
void MWindow::SetLeastSize() {
  auto* layout = static_cast<QGridLayout*>(centralWidget()->layout());
  const auto height = [layout](int column) {
    return layout->itemAtPosition(1, column)->minimumSize().height();
  };
  const int others = layout->minimumSize().height() - std::max(height(0), height(1));
  setMinimumWidth(420);
  layout->setRowMinimumHeight(1, 440 - menuBar()->sizeHint().height() - others);
}

QAction* MWindow::AddCommand(QMenu* menu, const QString& text, const char* key,
                             const Message& message) {
  return menu->addAction(text, QKeySequence(key), this,
                         [this, message] { MessageReceived(message); });
}

void MWindow::MakeMenus() {
  menuBar()->setObjectName("MenuBar");
  QMenu* file = menuBar()->addMenu(tr("&File"));
  AddCommand(file, tr("&Add Shortcut"), "Ctrl+S", Message("NWST"_what));
  file->addAction(tr("&New Connection"), QKeySequence("Ctrl+N"), this,
                  [this] { app_.PostMessage(Message("SHMN"_what)); });
  file->addAction(tr("&Close"), QKeySequence("Ctrl+W"), this, &QWidget::close);

  QMenu* edit = menuBar()->addMenu(tr("&Edit"));
  copy_ = AddCommand(edit, tr("&Copy"), "Ctrl+C", Message("COPY"_what));
  selectAll_ = AddCommand(edit, tr("Select &All"), "Ctrl+A", Message("SALL"_what));

  commands_ = menuBar()->addMenu(tr("&Commands"));
  downloadItem_ = AddCommand(commands_, tr("&Download File"), "Ctrl+D", Message("DWLD"_what));
  AddCommand(commands_, tr("&Upload File"), "Ctrl+U", Message("UPLD"_what));
  deleteItem_ = AddCommand(commands_, tr("De&lete File"), "Ctrl+T", Message("DELE"_what));
  rename_ = AddCommand(commands_, tr("R&ename File/Dir"), "Ctrl+E", Message("RNFW"_what));
  commands_->addSeparator();
  AddCommand(commands_, tr("&Parent Dir"), "Ctrl+Up", ChangeDirectoryMessage(".."));
  changeDir_ = AddCommand(commands_, tr("&Change Dir"), "Ctrl+Down", Message("PCHN"_what));
  AddCommand(commands_, tr("Create Di&r"), "Ctrl+M", Message("MKDR"_what));
  AddCommand(commands_, tr("Re&fresh Listing"), "Ctrl+.", ChangeDirectoryMessage("."));
  AddCommand(commands_, tr("View Dir Li&sting"), "Ctrl+F", Message("VWDR"_what));
  commands_->addSeparator();
  viewFile_ = AddCommand(commands_, tr("&View File"), "Ctrl+L", Message("VWFL"_what));
  // Keys that hands expect from elsewhere.
  deleteItem_->setShortcuts({deleteItem_->shortcut(), QKeySequence(Qt::Key_Delete)});
  rename_->setShortcuts({rename_->shortcut(), QKeySequence(Qt::Key_F2)});

  MakeWindowsMenu();
  for (QMenu* menu : {file, edit, commands_}) {
    connect(menu, &QMenu::aboutToShow, this, &MWindow::MenusBeginning);
  }
  MenusBeginning();
}

void MWindow::MakeWindowsMenu() {
  QMenu* windows = menuBar()->addMenu(tr("&Windows"));
  AddCommand(windows, tr("&Log Window"), "Ctrl+K", Message("SHLG"_what));
  windows->addAction(tr("&Transfer List"), QKeySequence("Ctrl+X"), this,
                     [this] { app_.PostMessage(Message("SHLG"_what)); });
  // The key is shown here too but belongs to "New Connection": a key of two items works for none.
  windows->addAction(
      tr("&Control Window") + '\t' + QKeySequence("Ctrl+N").toString(QKeySequence::NativeText),
      this, [this] { app_.PostMessage(Message("SHMN"_what)); });
  connect(windows, &QMenu::aboutToShow, this,
          [this, windows] { AddWindowItems(*windows, 3, app_.BrowserWindows(), this); });
}

void MWindow::MenusBeginning() {
  const int row = listing_->FirstSelected();
  const bool selected = row >= 0;
  const bool open = listing_->IsEnabled();
  const std::int32_t type = selected ? listing_->Rows().At(row).Type() : 0;
  for (QAction* item : {downloadItem_, deleteItem_, rename_}) item->setEnabled(open && selected);
  viewFile_->setEnabled(open && selected && type != kDirectory);
  changeDir_->setEnabled(open && (lastFocus_ == path_ || type == kDirectory));
  copy_->setEnabled(selected || lastFocus_ == path_);
  selectAll_->setEnabled(!lastFocus_.isNull());
}

void MWindow::ListingEnabled(bool enabled) {
  link_->SetListingEnabled(enabled);
  commands_->setEnabled(enabled);
  for (QAction* action : commands_->actions()) action->setEnabled(enabled);
  upload_->setEnabled(enabled);
  download_->setEnabled(enabled);
  path_->setEnabled(enabled);
  if (enabled) MenusBeginning();
}

}  // namespace corvane
