#include "app/MViewFile.h"

#include <QFontDatabase>
#include <QPlainTextEdit>
#include <QScrollBar>
#include <QTextCursor>
#include <QVBoxLayout>
#include <utility>

#include "app/GuiThread.h"
#include "app/Windows.h"
#include "util/Encodings.h"

namespace corvane {
namespace {

/// How much one turn of the event loop puts into the window.
constexpr std::size_t kPiece = std::size_t{32} * 1024;

}  // namespace

bool ViewerLink::Append(std::string_view bytes) {
  if (closing_) return false;
  bool hop = false;
  {
    MutexLock hold(lock_);
    if (bytes.size() > kMostBytes - received_) return false;
    received_ += bytes.size();
    text_ += bytes;
    hop = !std::exchange(hopPending_, true);
  }
  if (hop) OnGuiThread([self = shared_from_this()] { self->Drain(); });
  return true;
}

void ViewerLink::Attach(MViewFile& window) {
  window_ = &window;
  Drain();
}

void ViewerLink::Drain() {
  std::string piece;
  bool more = false;
  {
    MutexLock hold(lock_);
    hopPending_ = false;
    if (closing_ || window_.isNull()) return;
    std::size_t length = std::min(text_.size(), kPiece);
    // A character is not torn apart: the cut goes back to the last line's end where there is one.
    if (const std::size_t end = text_.rfind('\n', length);
        length < text_.size() && end != 0 && end != std::string::npos) {
      length = end;
    }
    piece = text_.substr(0, length);
    text_.erase(0, length);
    more = hopPending_ = !text_.empty();
  }
  window_->AppendText(piece);
  if (more) OnGuiThread([self = shared_from_this()] { self->Drain(); });
}

MViewFile::MViewFile(QWidget* browser, const QString& title, std::shared_ptr<ViewerLink> link)
    : QWidget(browser, Qt::Window), link_(std::move(link)), text_(new QPlainTextEdit(this)) {
  setAttribute(Qt::WA_DeleteOnClose);
  setWindowTitle(title);
  setMinimumSize(200, 200);
  resize(640, 480);
  text_->setObjectName("TextLog");
  text_->setAccessibleName(tr("Text"));
  text_->setReadOnly(true);
  text_->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
  text_->setLineWrapMode(QPlainTextEdit::NoWrap);
  text_->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
  auto* layout = new QVBoxLayout(this);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->addWidget(text_);
  AddCloseKey(this);
  link_->Attach(*this);
}

MViewFile::~MViewFile() {
  link_->Close();
}

void MViewFile::AppendText(std::string_view bytes) {
  const QString text = IsUtf8(bytes) ? QString::fromUtf8(bytes) : QString::fromLatin1(bytes);
  const int place = text_->verticalScrollBar()->value();
  QTextCursor cursor(text_->document());
  cursor.movePosition(QTextCursor::End);
  cursor.insertText(text);
  text_->verticalScrollBar()->setValue(place);
}

}  // namespace corvane
