#include "app/connect/HostField.h"

#include <QAbstractItemView>
#include <QAction>
#include <QCompleter>
#include <QKeyEvent>
#include <QStandardItemModel>

#include "app/connect/RecentList.h"
#include "app/shared/LookStyle.h"
#include "app/shared/ScreenText.h"
#include "app/shared/Symbols.h"
#include "sites/RecentStore.h"

namespace corvane {
namespace {

enum Role { kHost = Qt::UserRole, kNumber };

}  // namespace

HostField::HostField(QWidget* parent)
    : QLineEdit(parent), completions_(new QStandardItemModel(this)) {
  auto* arrow = new QAction(Symbol("chevron-down"), tr("Recent Connections"), this);
  addAction(arrow, QLineEdit::TrailingPosition);
  connect(arrow, &QAction::triggered, this, &HostField::OpenRecent);
  MakeCompleter();
  // What became known since then is completed too. While the list of completions is open it stays.
  connect(this, &QLineEdit::textEdited, this, [this](const QString& text) {
    if (known_.empty() || (text.size() == 1 && !completer()->popup()->isVisible())) ReadKnown();
  });
}

void HostField::MakeCompleter() {
  auto* completer = new QCompleter(completions_, this);
  completer->setCompletionRole(kHost);
  completer->setCaseSensitivity(Qt::CaseInsensitive);
  setCompleter(completer);
  const auto chosen = qOverload<const QModelIndex&>(&QCompleter::activated);
  // A field drops its completer's connections to itself with the focus.
  connect(completer, chosen, completions_, [this](const QModelIndex& index) {
    const auto number = static_cast<std::size_t>(index.data(kNumber).toInt());
    if (number < known_.size()) Q_EMIT Chosen(Shortcut(known_[number].connection));
  });
}

void HostField::ReadKnown() {
  known_ = KnownConnections();
  completions_->clear();
  int number = 0;
  for (const KnownConnection& one : known_) {
    auto* item = new QStandardItem(ToText(PlaceOf(one.connection.site)));
    item->setData(ToText(one.connection.site.host), kHost);
    item->setData(number++, kNumber);
    item->setSizeHint({0, LookStyle::kRowHeight});
    completions_->appendRow(item);
  }
}

void HostField::OpenRecent() {
  ReadKnown();
  auto* list = new RecentList(known_, this);
  connect(list, &RecentList::Chosen, this, &HostField::Chosen);
  connect(list, &RecentList::ForgetAsked, this, [this] {
    RecentStore::Forget();
    ReadKnown();
    Q_EMIT Forgotten();
  });
  list->OpenAt(*this);
}

void HostField::keyPressEvent(QKeyEvent* event) {
  const bool down =
      event->key() == Qt::Key_Down && !event->modifiers().testFlag(Qt::ControlModifier);
  const QAbstractItemView* popup = completer()->popup();
  if (down && !popup->isVisible()) return OpenRecent();
  // What is chosen in the list fills the fields; it does not connect yet.
  const bool enter = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
  if (enter && popup->isVisible() && popup->currentIndex().isValid()) return event->ignore();
  QLineEdit::keyPressEvent(event);
}

}  // namespace corvane
