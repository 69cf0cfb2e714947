#include "app/browser/PathField.h"

#include <QAbstractItemView>
#include <QAction>
#include <QCompleter>
#include <QDragEnterEvent>
#include <QKeyEvent>
#include <QMenu>
#include <QMimeData>
#include <QStringListModel>
#include <algorithm>
#include <utility>

#include "app/shared/ScreenText.h"
#include "app/shared/Symbols.h"

namespace corvane {
PathField::PathField(QWidget* parent)
    : QLineEdit(parent),
      names_(new QStringListModel(this)),
      arrow_(new QAction(this)),
      lock_(new QAction(this)) {
  setObjectName("Path");
  setAccessibleName(tr("Remote path"));
  arrow_->setIcon(Symbol("chevron-down"));
  arrow_->setText(tr("Directories shown before"));
  arrow_->setToolTip(arrow_->text());
  addAction(arrow_, QLineEdit::TrailingPosition);
  addAction(lock_, QLineEdit::LeadingPosition);
  lock_->setVisible(false);  // an action that is added hidden leaves its room empty
  connect(lock_, &QAction::triggered, this, &PathField::LockPressed);
  setCompleter(new QCompleter(names_, this));
  connect(arrow_, &QAction::triggered, this, &PathField::ShowRecent);
  connect(this, &QLineEdit::textEdited, this, &PathField::Complete);
  connect(this, &QLineEdit::returnPressed, this, [this] {
    completer()->popup()->hide();
    if (!text().isEmpty()) Q_EMIT Entered();
  });
}

QString PathField::Known(const std::string& path) {
  QString text = ToText(path, encoding_);
  known_[text] = path;
  return text;
}

void PathField::ShowPath(const std::string& path) {
  shown_ = path;
  known_.clear();
  const QString text = Known(path);
  if (!hasFocus() || !isModified()) setText(text);
}

std::optional<std::string> PathField::Bytes() const {
  const auto known = known_.find(text());
  return known == known_.end() ? ToServer(text(), encoding_) : known->second;
}

void PathField::OfferPaths(Paths recent, Paths below) {
  recent_ = std::move(recent);
  below_ = std::move(below);
}

void PathField::Restore() {
  setText(Known(shown_));
  setModified(false);
}

void PathField::ShowLock(const char* symbol, const QString& meaning, Tone tone) {
  lock_->setVisible(symbol != nullptr);
  update();  // the text has moved
  if (symbol == nullptr) return;
  lock_->setIcon(Symbol(symbol, tone));
  lock_->setText(meaning);
  lock_->setToolTip(meaning);
}

void PathField::ShowRecent() {
  if (!recent_) return;
  auto* menu = new QMenu(this);
  menu->setAttribute(Qt::WA_DeleteOnClose);
  constexpr std::size_t kMost = 15;
  const std::vector<std::string> paths = recent_();
  for (std::size_t i = 0; i < std::min(paths.size(), kMost); ++i) {
    const std::string& path = paths[i];
    menu->addAction(ItemText(path), this, [this, path] {
      setText(Known(path));
      setModified(true);
      Q_EMIT Entered();
    });
  }
  menu->setMinimumWidth(width());
  if (menu->isEmpty()) menu->addAction(tr("None yet"))->setEnabled(false);
  menu->popup(mapToGlobal(rect().bottomLeft()));
}

void PathField::Complete() {
  if (!recent_ || !below_) return;
  QStringList texts;
  for (const Paths& paths : {below_, recent_}) {
    for (const std::string& path : paths()) texts.append(Known(path));
  }
  texts.removeDuplicates();
  names_->setStringList(texts);
}

void PathField::keyPressEvent(QKeyEvent* event) {
  if (event->key() == Qt::Key_Escape) {
    Restore();
    Q_EMIT Left();
  } else if (event->key() == Qt::Key_Down) {
    ShowRecent();
  } else {
    QLineEdit::keyPressEvent(event);
  }
}

// It would take files as text.
void PathField::dragEnterEvent(QDragEnterEvent* event) {
  if (event->mimeData()->hasUrls()) return event->ignore();
  QLineEdit::dragEnterEvent(event);
}

void PathField::changeEvent(QEvent* event) {
  QLineEdit::changeEvent(event);
  if (event->type() == QEvent::PaletteChange) arrow_->setIcon(Symbol("chevron-down"));
}

}  // namespace corvane
