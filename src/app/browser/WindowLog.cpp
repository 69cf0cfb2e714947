#include "app/browser/WindowLog.h"

#include <QFontDatabase>
#include <QPlainTextEdit>
#include <QVBoxLayout>

#include "app/shared/Frames.h"
#include "app/shared/ScreenText.h"
#include "app/shared/Windows.h"

namespace corvane {
namespace {

constexpr int kMostLines = 10000;

}  // namespace

WindowLog::WindowLog(QWidget* browser, const QString& title)
    : QWidget(browser, Qt::Window), text_(new QPlainTextEdit(this)) {
  setWindowTitle(title);
  setMinimumSize(200, 200);
  resize(480, 400);
  text_->setObjectName("TextLog");
  text_->setAccessibleName(tr("Log"));
  text_->setReadOnly(true);
  text_->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
  text_->setMaximumBlockCount(kMostLines);
  text_->setLineWrapMode(QPlainTextEdit::NoWrap);
  text_->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
  text_->setFrameShape(QFrame::NoFrame);
  auto* layout = new QVBoxLayout(this);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->addWidget(text_);
  AddCloseKey(this);
}

void WindowLog::Append(std::string_view text) {
  if (!text.empty()) text_->appendPlainText(ToLines(text));
}

void WindowLog::BringForward() {
  if (!isVisible() && parentWidget() != nullptr) {
    Frames::PutBelow(*this, *parentWidget());
  }
  corvane::BringForward(this);
}

}  // namespace corvane
