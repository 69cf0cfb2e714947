// What the connection window consists of: its fields and menus.

#include <QAction>
#include <QApplication>
#include <QCheckBox>
#include <QClipboard>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLayout>
#include <QLineEdit>
#include <QMenu>
#include <QMenuBar>
#include <QMimeData>
#include <QPushButton>
#include <QVBoxLayout>
#include <algorithm>

#include "app/connect/ConnectHost.h"
#include "app/connect/ConnectionForm.h"
#include "app/connect/HostField.h"
#include "app/connect/ShortcutField.h"
#include "app/connect/StartWin.h"
#include "app/shared/HintLabel.h"
#include "app/shared/LookStyle.h"
#include "app/shared/Password.h"
#include "app/shared/Windows.h"
#include "settings/StoredSettings.h"

namespace corvane {

void StartWin::MakeViews() {
  auto* main = new QWidget(this);
  main->setObjectName("StartView");
  setCentralWidget(main);
  form_ = new ConnectionForm(ConnectionForm::Label::Without, main);
  for (auto* field : form_->findChildren<QLineEdit*>()) {
    field->installEventFilter(this);
    connect(field, &QLineEdit::selectionChanged, this, &StartWin::MenusBeginning);
  }
  shortcuts_ = new ShortcutField(main);
  auto* connectButton = new QPushButton(tr("&Connect"), main);
  connectButton->setObjectName("connect");
  SetPrimary(*connectButton);
  hint_ = new HintLabel(
      tr("Grey words hold where a field stays empty. An ftp:// address can be pasted into any "
         "field."),
      main);
  hint_->setObjectName("Hint");
  hint_->hide();

  auto* buttons = new QHBoxLayout;
  buttons->addWidget(shortcuts_);
  buttons->addStretch(1);
  buttons->addWidget(connectButton);
  auto* layout = new QVBoxLayout(main);
  layout->setSpacing(16);
  layout->addWidget(form_);
  layout->addWidget(hint_);
  layout->addStretch();
  layout->addLayout(buttons);
  connect(form_, &ConnectionForm::HeightChanged, this, &StartWin::FitHeight, Qt::QueuedConnection);
  auto* host = qobject_cast<HostField*>(form_->host);
  connect(host, &HostField::Chosen, this, &StartWin::Fill);
  connect(host, &HostField::Forgotten, this, &StartWin::RecentChanged);

  connect(form_, &ConnectionForm::returnPressed, this, &StartWin::Connect);
  connect(connectButton, &QPushButton::clicked, this,
          [this] { MessageReceived(Message("CNNT"_what)); });
  connect(form_->passive, &QCheckBox::toggled, this,
          [this] { MessageReceived(Message("PASS"_what)); });
  connect(shortcuts_, &ShortcutField::Chosen, this, [this](std::int32_t index) {
    Message message("ZBOX"_what);
    message.AddInt32("index", index);
    MessageReceived(message);
  });
  form_->host->setFocus();
}

// The window is as high as what stands in it, unless the user made it higher. The layouts within
// have to know of a change by then.
void StartWin::FitHeight() {
  QLayout* contents = centralWidget()->layout();
  contents->activate();
  const int least = contents->hasHeightForWidth() ? contents->heightForWidth(width())
                                                  : contents->minimumSize().height();
  const bool fits = height() == lastHeight_;
  centralWidget()->setMinimumHeight(least);
  layout()->activate();
  lastHeight_ = least + menuBar()->sizeHint().height();
  if (fits || height() < lastHeight_) resize(width(), lastHeight_);
}

void StartWin::MakeMenus() {
  menuBar()->setObjectName("MainMenuBar");
  QMenu* file = menuBar()->addMenu(tr("&File"));
  file->addAction(tr("&About Corvane…"), this, [this] { app_.AboutRequested(); });
  file->addAction(tr("&Quit"), QKeySequence("Ctrl+Q"), this, [this] { app_.QuitRequested(); });
  MakeEditMenu();
  MakeWindowsMenu();
  MakeHelpMenu();
  connect(qApp, &QApplication::focusChanged, this,
          [this](QWidget*, QWidget* now) { FocusMoved(now); });
  MenusBeginning();
}

void StartWin::MakeEditMenu() {
  QMenu* edit = menuBar()->addMenu(tr("&Edit"));
  const auto add = [this, edit](const QString& text, const QKeySequence& key, std::uint32_t what) {
    return edit->addAction(text, key, this, [this, what] { MessageReceived(Message(what)); });
  };
  copy_ = add(tr("&Copy"), QKeySequence("Ctrl+C"), "COPY"_what);
  paste_ = add(tr("&Paste"), QKeySequence("Ctrl+V"), "PSTE"_what);
  add(tr("&Shortcuts"), {}, "SHST"_what);
  add(tr("P&references"), {}, "SHPF"_what);
  // Only an open menu looks into the clipboard, whose owner may be slow to answer; the key works
  // whenever there is a field to paste into.
  connect(edit, &QMenu::aboutToShow, this, [this] {
    const QMimeData* clipboard = QApplication::clipboard()->mimeData();
    paste_->setEnabled(!field_.isNull() && clipboard != nullptr && clipboard->hasText());
  });
  connect(edit, &QMenu::aboutToHide, this, &StartWin::MenusBeginning);
}

void StartWin::MakeWindowsMenu() {
  QMenu* windows = menuBar()->addMenu(tr("&Windows"));
  windows->addAction(tr("&Transfer List"), QKeySequence("Ctrl+X"), this,
                     [this] { app_.PostMessage(Message("SHLG"_what)); });
  connect(windows, &QMenu::aboutToShow, this,
          [this, windows] { AddWindowItems(*windows, 1, app_.BrowserWindows(), nullptr); });
}

void StartWin::MakeHelpMenu() {
  QMenu* help = menuBar()->addMenu(tr("He&lp"));
  help->addAction(tr("&Manual"), QKeySequence(Qt::Key_F1), this, [this] { app_.ShowManual(this); });
  help->addAction(tr("&About Corvane…"), this, [this] { app_.AboutRequested(); });
}

void StartWin::MenusBeginning() {
  if (copy_ == nullptr) return;
  copy_->setEnabled(!field_.isNull() && field_ != form_->password && field_->hasSelectedText());
  paste_->setEnabled(!field_.isNull());
}

// Menus and other windows take the focus without taking the field's place.
void StartWin::FocusMoved(QWidget* now) {
  if (now == nullptr || now->window() != this || now == menuBar()) return;
  field_ = qobject_cast<QLineEdit*>(now);
  MenusBeginning();
}

// A field would keep these keys from the menus. Cutting what is selected stays the field's.
bool StartWin::eventFilter(QObject* target, QEvent* event) {
  if (event->type() != QEvent::ShortcutOverride) return false;
  const auto* key = static_cast<const QKeyEvent*>(event);
  const bool cut = key->matches(QKeySequence::Cut);
  const bool menu = key->matches(QKeySequence::Copy) || key->matches(QKeySequence::Paste);
  const auto* field = qobject_cast<const QLineEdit*>(target);
  if (!menu && !(cut && (field == form_->password || !field->hasSelectedText()))) return false;
  event->ignore();
  return true;
}

}  // namespace corvane
