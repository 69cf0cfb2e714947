#include "app/browser/MViewFile.h"

#include <QAction>
#include <QComboBox>
#include <QFontDatabase>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QScrollBar>
#include <QTextCursor>
#include <QVBoxLayout>
#include <algorithm>
#include <utility>

#include "app/browser/PictureView.h"
#include "app/shared/GuiThread.h"
#include "app/shared/ScreenText.h"
#include "app/shared/Shown.h"
#include "app/shared/Windows.h"
#include "kit/Background.h"
#include "util/Encodings.h"
#include "util/PictureBytes.h"

namespace corvane {
namespace {

/// How much one turn of the event loop puts into the window: what it lays out in some milliseconds.
constexpr std::size_t kPiece = std::size_t{8} * 1024;
/// Longer lines are broken: the window lays a line out again whenever something is added to it.
constexpr qsizetype kLongestLine = 1000;

/// How many bytes at the end begin a UTF-8 character that is not complete yet.
std::size_t IncompleteTail(std::string_view bytes) {
  for (std::size_t back = 1; back <= std::min<std::size_t>(3, bytes.size()); ++back) {
    const auto byte = static_cast<unsigned char>(bytes[bytes.size() - back]);
    if ((byte & 0xC0) == 0x80) continue;
    const std::size_t length = byte >= 0xF0 ? 4 : byte >= 0xE0 ? 3 : byte >= 0xC0 ? 2 : 1;
    return length > back ? back : 0;
  }
  return 0;
}

}  // namespace

bool ViewerLink::Append(std::string_view bytes) {
  if (closing_) return false;
  bool whole = false;
  bool hop = false;
  {
    MutexLock hold(lock_);
    if (received_ == 0) picture_ = LooksLikePicture(bytes);
    const std::size_t most = picture_ ? kMostPicture : kMostBytes;
    const std::string_view taken = bytes.substr(0, most - received_);
    whole = taken.size() == bytes.size();
    received_ += taken.size();
    text_ += taken;
    cut_ = !whole;
    hop = !std::exchange(hopPending_, true);
  }
  if (hop) Hop();
  return whole;
}

void ViewerLink::End(const Text& note) {
  bool hop = false;
  {
    MutexLock hold(lock_);
    ended_ = true;
    note_ = note;
    hop = !std::exchange(hopPending_, true);
  }
  if (hop) Hop();
}

void ViewerLink::Hop() {
  OnGuiThread([self = shared_from_this()] { self->Drain(); });
}

void ViewerLink::Attach(MViewFile& window) {
  window_ = &window;
  Drain();
}

// The cut goes to a line's end where there is one; a character is not torn apart.
std::string ViewerLink::NextPiece() {
  std::string_view piece = std::string_view(text_).substr(taken_);
  const bool last = piece.size() <= kPiece;
  piece = piece.substr(0, kPiece);
  const std::size_t line = piece.rfind('\n');
  if (!last && line != std::string::npos && line != 0) {
    piece = piece.substr(0, line);
  } else if (!last || !ended_) {
    piece.remove_suffix(IncompleteTail(piece));
  }
  std::string text(piece);
  taken_ += text.size();
  return text;
}

void ViewerLink::Again() {
  {
    const MutexLock hold(lock_);
    taken_ = 0;
  }
  Drain();
}

// What the bytes hold is found out elsewhere.
void ViewerLink::ShowPicture(std::string bytes, const QString& note) {
  const auto read = [window = window_, bytes = std::move(bytes), note] {
    OnGuiThread([window, note, read = PictureView::From(bytes)] {
      if (window.isNull()) return;
      QString text = MViewFile::tr("%1 × %2 points").arg(read.size.width()).arg(read.size.height());
      if (read.picture.isNull()) text = MViewFile::tr("The picture cannot be shown.");
      if (read.tooLarge) text = MViewFile::tr("The picture has too many points to be shown.");
      window->ShowPicture(read.picture);
      window->ShowNote(note.isEmpty() ? text : note);
    });
  };
  (void)Background::Start("picture", read);
}

void ViewerLink::Drain() {
  std::string piece;
  std::string picture;
  QString note;
  bool more = false;
  {
    MutexLock hold(lock_);
    hopPending_ = false;
    if (closing_ || window_.isNull()) return;
    if (picture_) {
      if (!ended_ && !cut_) return;
      note = cut_ ? MViewFile::tr("The picture has more than %1 MiB.").arg(kMostPicture >> 20)
                  : Shown(note_);
      if (!cut_) picture = std::exchange(text_, {});
    } else {
      piece = NextPiece();
      more = hopPending_ = !piece.empty() && taken_ < text_.size();
      if (cut_) {
        note = MViewFile::tr("Only the first %1 MiB are shown.").arg(kMostBytes >> 20);
      } else if (ended_ && !more) {
        note = Shown(note_);
      }
    }
  }
  if (!picture.empty()) return ShowPicture(std::move(picture), note);
  window_->AppendText(piece);
  if (!note.isEmpty()) window_->ShowNote(note);
  if (more) Hop();
}

MViewFile::MViewFile(QWidget* browser, const QString& title, std::shared_ptr<ViewerLink> link)
    : QWidget(browser, Qt::Window),
      link_(std::move(link)),
      text_(new QPlainTextEdit(this)),
      note_(new QLabel(this)) {
  setAttribute(Qt::WA_DeleteOnClose);
  setWindowTitle(title);
  resize(640, 480);
  text_->setObjectName("TextLog");
  text_->setMinimumSize(200, 200);  // note and search come on top of it
  text_->setAccessibleName(tr("Text"));
  text_->setReadOnly(true);
  text_->setUndoRedoEnabled(false);
  text_->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
  text_->setLineWrapMode(QPlainTextEdit::NoWrap);
  text_->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
  note_->setObjectName("Note");
  note_->setTextFormat(Qt::PlainText);
  note_->setWordWrap(true);
  note_->setMargin(6);
  note_->hide();
  auto* layout = new QVBoxLayout(this);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->setSpacing(0);
  layout->addWidget(text_);
  layout->addWidget(note_);
  layout->addWidget(MakeEncodingBar());
  layout->addWidget(MakeFindBar());
  AddCloseKey(this);
  link_->Attach(*this);
}

MViewFile::~MViewFile() {
  link_->Close();
}

QWidget* MViewFile::MakeEncodingBar() {
  encodingBar_ = new QWidget(this);
  encoding_ = new QComboBox(encodingBar_);
  encoding_->setObjectName("TextEncoding");
  auto* label = new QLabel(tr("&Encoding:"), encodingBar_);
  label->setBuddy(encoding_);
  encoding_->addItem(tr("Automatic"), QByteArray());
  for (const auto& [people, name] : OfferedEncodings())
    encoding_->addItem(Shown(people), QByteArray(name));
  auto* layout = new QHBoxLayout(encodingBar_);
  layout->setContentsMargins(8, 4, 8, 4);
  layout->addWidget(label);
  layout->addWidget(encoding_);
  layout->addStretch();
  connect(encoding_, &QComboBox::currentIndexChanged, this, [this] {
    text_->clear();
    column_ = 0;
    link_->Again();
  });
  return encodingBar_;
}

void MViewFile::ShowPicture(const QImage& picture) {
  if (picture.isNull()) return;
  auto* view = new PictureView(picture, this);
  qobject_cast<QVBoxLayout*>(layout())->insertWidget(0, view, 1);
  text_->hide();
  encodingBar_->hide();
  findBar_->setEnabled(false);
  view->setFocus();
}

QWidget* MViewFile::MakeFindBar() {
  findBar_ = new QWidget(this);
  wanted_ = new QLineEdit(findBar_);
  wanted_->setObjectName("Find");
  auto* label = new QLabel(tr("Fin&d:"), findBar_);
  label->setBuddy(wanted_);
  auto* previous = new QPushButton(tr("&Previous"), findBar_);
  auto* next = new QPushButton(tr("&Next"), findBar_);
  auto* layout = new QHBoxLayout(findBar_);
  layout->setContentsMargins(6, 4, 6, 4);
  layout->addWidget(label);
  layout->addWidget(wanted_);
  layout->addWidget(previous);
  layout->addWidget(next);
  findBar_->hide();
  connect(wanted_, &QLineEdit::returnPressed, this, [this] { Find(false); });
  connect(next, &QPushButton::clicked, this, [this] { Find(false); });
  connect(previous, &QPushButton::clicked, this, [this] { Find(true); });
  const auto key = [this](QWidget* where, const QKeySequence& keys, auto action) {
    auto* item = new QAction(where);
    item->setShortcut(keys);
    item->setShortcutContext(Qt::WidgetWithChildrenShortcut);
    connect(item, &QAction::triggered, this, action);
    where->addAction(item);
  };
  key(this, QKeySequence("Ctrl+F"), [this] {
    findBar_->show();
    wanted_->setFocus();
    wanted_->selectAll();
  });
  key(this, QKeySequence("F3"), [this] { Find(false); });
  key(this, QKeySequence("Shift+F3"), [this] { Find(true); });
  key(findBar_, QKeySequence("Escape"), [this] {
    findBar_->hide();
    text_->setFocus();
  });
  return findBar_;
}

// On from the selection, and once round.
void MViewFile::Find(bool backward) {
  if (wanted_->text().isEmpty()) return;
  const QTextDocument::FindFlags flags =
      backward ? QTextDocument::FindBackward : QTextDocument::FindFlags();
  QTextCursor found = text_->document()->find(wanted_->text(), text_->textCursor(), flags);
  if (found.isNull() && (backward || text_->textCursor().position() > 0)) {
    QTextCursor start(text_->document());
    if (backward) start.movePosition(QTextCursor::End);
    found = text_->document()->find(wanted_->text(), start, flags);
  }
  QPalette colours = palette();
  if (found.isNull()) {
    colours.setColor(QPalette::Text, QColor(228, 0, 0));
  } else {
    text_->setTextCursor(found);
  }
  wanted_->setPalette(colours);
  wanted_->setToolTip(found.isNull() ? tr("Not found.") : QString());
}

void MViewFile::ShowNote(const QString& note) {
  note_->setText(note);
  note_->show();
}

void MViewFile::AppendText(std::string_view bytes) {
  if (bytes.empty()) return;
  const std::string chosen = encoding_->currentData().toByteArray().toStdString();
  const QString arrived = QString::fromStdString(Decoded(bytes, chosen));
  QString text;
  text.reserve(arrived.size());
  for (const QChar character : arrived) {
    if (character == '\n') {
      column_ = 0;
    } else if (column_++ == kLongestLine && !character.isLowSurrogate()) {
      text += '\n';
      column_ = 1;
    }
    text += character;
  }
  const int place = text_->verticalScrollBar()->value();
  const bool first = text_->document()->isEmpty();
  QTextCursor cursor(text_->document());
  cursor.movePosition(QTextCursor::End);
  cursor.insertText(text);
  // The first text takes the window's own cursor along.
  if (first) text_->moveCursor(QTextCursor::Start);
  text_->verticalScrollBar()->setValue(place);
}

}  // namespace corvane
