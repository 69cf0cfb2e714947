#include "app/connect/ShortCutEditWindow.h"

#include <QHBoxLayout>
#include <QLineEdit>
#include <QPointer>
#include <QPushButton>
#include <QVBoxLayout>
#include <utility>

#include "app/connect/ConnectHost.h"
#include "app/connect/ConnectionForm.h"
#include "app/connect/ShortCutWindow.h"
#include "app/connect/StartWin.h"
#include "app/shared/Alerts.h"
#include "app/shared/Frames.h"
#include "app/shared/HintLabel.h"
#include "app/shared/LookStyle.h"
#include "app/shared/Password.h"
#include "app/shared/ScreenText.h"
#include "app/shared/Shown.h"
#include "app/shared/Style.h"
#include "app/shared/Windows.h"
#include "sites/SecretStore.h"
#include "sites/ShortcutStore.h"

namespace corvane {

ShortCutEditWindow::ShortCutEditWindow(ShortcutHost& app)
    : QWidget(nullptr, kFixedWindow),
      app_(app),
      form_(new ConnectionForm(ConnectionForm::Label::With, this)),
      inFile_(new HintLabel(
          tr("Without a keyring, the password stands in a file that only you can read."), this)),
      ok_(new QPushButton(this)) {
  setAttribute(Qt::WA_DeleteOnClose);
  setObjectName("MainView");
  MakeViews();
  AddCloseKeys(this);
}

void ShortCutEditWindow::MakeViews() {
  constexpr int kWidth = 376;
  form_->setMinimumWidth(kWidth);
  auto* cancel = new QPushButton(tr("&Cancel"), this);
  cancel->setObjectName("cancel");
  cancel->setAutoDefault(true);
  ok_->setObjectName("ok");
  SetPrimary(*ok_);
  setTabOrder(cancel, ok_);
  auto* buttons = new QHBoxLayout;
  buttons->addStretch();
  buttons->addWidget(cancel);
  buttons->addWidget(ok_);
  auto* layout = new QVBoxLayout(this);
  layout->setSpacing(16);
  layout->setSizeConstraint(QLayout::SetFixedSize);
  layout->addWidget(form_);
  inFile_->setObjectName("InFile");
  inFile_->hide();
  layout->addWidget(inFile_);
  layout->addLayout(buttons);
  const auto save = [this] { MessageReceived(Message("SVPF"_what)); };
  connect(form_, &ConnectionForm::returnPressed, this, save);
  connect(form_->password, &QLineEdit::textChanged, this, &ShortCutEditWindow::ShowWhereKept);
  connect(ok_, &QPushButton::clicked, this, save);
  connect(cancel, &QPushButton::clicked, this, &QWidget::close);
}

void ShortCutEditWindow::MessageReceived(const Message& message) {
  if (message.what == "SVPF"_what) Save();
}

void ShortCutEditWindow::Edit(const Shortcut& record, Change change) {
  change_ = std::move(change);
  setWindowTitle(change_ ? tr("Edit Shortcut") : Style::InForce().NewShortcutTitle());
  ok_->setText(change_ ? tr("Chan&ge") : tr("&Add"));
  form_->FillTexts(record);
  form_->FillMode(record);
  folder_ = record.folder;
  form_->label->setFocus();
  form_->label->selectAll();
  filled_ = form_->Entered();
  app_.AskWhetherKept([self = QPointer(this)](bool kept) {
    if (self.isNull()) return;
    self->inKeyring_ = kept;
    self->ShowWhereKept();
  });
}

void ShortCutEditWindow::ShowWhereKept() {
  const Site site = form_->Entered().site;
  inFile_->setVisible(inKeyring_ == false && IsSecret(site) && !site.asksPassword);
}

bool ShortCutEditWindow::Busy() const {
  return asking_ || form_->Entered() != filled_;
}

void ShortCutEditWindow::PlaceBeside(const QWidget& opener) {
  adjustSize();
  const QPoint place = opener.frameGeometry().topLeft() + QPoint(60, 60);
  move(Frames::OnScreen(QRect(place, size())).topLeft());
}

Shortcut ShortCutEditWindow::Entered() const {
  Shortcut entered = form_->Entered();
  entered.folder = folder_;
  if (entered.label.empty()) entered.label = entered.site.host;
  std::string& path = entered.site.path;
  if (!path.empty() && path.front() != '/') path.insert(0, "/");
  return entered;
}

void ShortCutEditWindow::Warn(const QString& text, const QString& detail) {
  Alerts::Show(this, {.title = tr("Warning!"), .text = text, .detail = detail});
}

// The stored form has no way to write a character that it uses itself.
void ShortCutEditWindow::Save() {
  if (!form_->TakeAddress()) return;
  const Shortcut entered = Entered();
  Shortcut line = entered;
  if (IsSecret(line.site) && inKeyring_.value_or(false)) line.site.keptPassword = true;
  const auto result = ShortcutStore::ComesBack(line);
  if (result == ShortcutStore::Return::Whole) return Store(entered);
  const QString detail =
      tr("A label cannot hold a \"*\", and none of the other fields a \":\"; username, password "
         "and host hold no \"@\" or \"/\" either.");
  if (result == ShortcutStore::Return::Nothing) {
    return Warn(tr("This shortcut cannot be saved as you entered it."), detail);
  }
  asking_ = true;
  Alerts::Show(this,
               {.title = tr("Warning!"),
                .text = tr("This shortcut would not come back as you entered it."),
                .detail = detail,
                .buttons = {tr("&Save Anyway"), tr("&Go Back")},
                .preset = 1},
               [this, entered](int button) {
                 asking_ = false;
                 if (button == 0) Store(entered);
               });
}

void ShortCutEditWindow::Store(const Shortcut& entered) {
  if (!change_) return Add(entered);
  if (change_(entered)) {
    close();
  } else {
    Warn(tr("This shortcut is no longer in the list."));
  }
}

void ShortCutEditWindow::Add(const Shortcut& entered) {
  if (std::exchange(asking_, true)) return;
  app_.KeepPasswords({{entered}}, [self = QPointer(this)](const std::vector<Shortcut>& shortcuts,
                                                          const Text& word) {
    if (self.isNull()) return;
    self->asking_ = false;
    self->AddKept(shortcuts.front());
    if (word.IsEmpty() || !self->inKeyring_.value_or(false)) return;
    Alerts::Show(&self->app_.ConnectionWindow(), {.title = tr("Warning!"), .text = Shown(word)});
  });
}

void ShortCutEditWindow::AddKept(const Shortcut& entered) {
  const ShortcutStore::Added added = ShortcutStore::Add(entered);
  if (!added.failure.IsEmpty()) {
    return Warn(tr("The shortcut could not be saved."), Shown(added.failure));
  }
  if (added.within || !entered.folder.empty()) {
    app_.ConnectionWindow().MessageReceived(Message("REDO"_what));
  } else {
    Message item("NWST"_what);
    item.AddString("label", entered.label);
    item.AddInt32("index", added.index);
    app_.PostMessage(item);
  }
  if (!app_.Shortcuts().isNull()) {
    Message row("NWST"_what);
    row.AddInt32("index", added.index);
    app_.Shortcuts()->MessageReceived(row);
  }
  close();
}

}  // namespace corvane
