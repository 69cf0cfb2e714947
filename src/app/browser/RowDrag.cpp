#include "app/browser/RowDrag.h"

#include <QApplication>
#include <QCursor>
#include <QDBusConnection>
#include <QDialog>
#include <QDrag>
#include <QIcon>
#include <QKeyEvent>
#include <QPainter>
#include <QPainterPath>
#include <QTimer>
#include <QWidget>
#include <algorithm>
#include <utility>

#include "app/browser/DirectSave.h"
#include "app/browser/DragData.h"
#include "app/browser/ExtractService.h"

namespace corvane {
namespace {

constexpr QPoint kPointer(10, 10);
constexpr int kIconSize = 16;
constexpr int kMostTextWidth = 300;
constexpr int kAnswerMilliseconds = 5000;  // for the target to tell its folder after the drop
constexpr int kLateMilliseconds = 300;     // to tell it once it says that it is done

/// Whether the pointer is on a window of this program that hears of no drag there: on its frame, or
/// on a window that an alert blocks.
bool OverDeafWindow() {
  const QPoint pointer = QCursor::pos();
  const auto deaf = [pointer](const QWidget* window) {
    if (!window->isVisible() || !window->frameGeometry().contains(pointer)) return false;
    const QList<QDialog*> dialogs = window->findChildren<QDialog*>();
    return !window->geometry().contains(pointer) ||
           std::ranges::any_of(dialogs, [](const QDialog* dialog) {
             return dialog->isVisible() && dialog->isModal();
           });
  };
  return std::ranges::any_of(QApplication::topLevelWidgets(), deaf);
}

}  // namespace

RowDrag::RowDrag(std::string name, Then then)
    : QObject(qApp), name_(std::move(name)), then_(std::move(then)) {}

RowDrag::~RowDrag() = default;

// A drag runs an event loop of its own, in which its window may be closed and deleted. It begins
// outside all calls of the window, and nothing that it needs belongs to the window.
void RowDrag::Begin(const QPixmap& picture, std::string name, Then then) {
  auto* drag = new RowDrag(std::move(name), std::move(then));
  QTimer::singleShot(0, drag, [drag, picture] { drag->Run(picture); });
}

void RowDrag::Run(const QPixmap& picture) {
  if (!QGuiApplication::mouseButtons().testFlag(Qt::LeftButton)) return deleteLater();
  const auto told = [this](const std::string& folder) { Told(folder); };
  DragData::Ways ways{.name = name_};
  if (DirectSave::Available()) ways.property = &DirectSave::Read;
  service_ = std::make_unique<ExtractService>(QDBusConnection::sessionBus(), told);
  ways.service = service_->Service();
  ways.path = service_->Path();

  auto* drag = new QDrag(this);
  auto* data = new DragData(std::move(ways), told);
  drag->setMimeData(data);
  drag->setPixmap(picture);
  drag->setHotSpot(kPointer);
  // The property's window, and the toolkit's own filter, exist once the drag runs.
  QTimer running;
  running.setSingleShot(true);
  running.callOnTimeout(this, [this] {
    DirectSave::Propose(name_);
    qApp->installEventFilter(this);
  });
  running.start(0);
  connect(data, &QObject::destroyed, this, [this] {
    QTimer::singleShot(kLateMilliseconds, this, [this] {
      Settle();
      deleteLater();
    });
  });
  dropped_ = drag->exec(Qt::CopyAction) != Qt::IgnoreAction;
  qApp->removeEventFilter(this);
  if (!dropped_) folder_.clear();
  // A drop that a window of this program took is settled there.
  if (overOwnWindow_ || (!dropped_ && (cancelled_ || OverDeafWindow()))) then_ = {};
  if (!dropped_ || overOwnWindow_ || !folder_.empty()) return Settle();
  QTimer::singleShot(kAnswerMilliseconds, this, &RowDrag::Settle);
}

// The target waits for an answer to what told the folder; the download begins behind that.
void RowDrag::Told(const std::string& folder) {
  folder_ = folder;
  if (dropped_) QTimer::singleShot(0, this, &RowDrag::Settle);
}

void RowDrag::Settle() {
  service_.reset();
  DirectSave::Remove();
  if (Then then = std::exchange(then_, {}); then != nullptr) then(folder_);
}

// Enter and leave come to the windows whether they take the drop or not. Behind the release there
// is a leave too.
bool RowDrag::eventFilter(QObject* object, QEvent* event) {
  switch (event->type()) {
    case QEvent::ShortcutOverride:
    case QEvent::KeyPress:
      if (static_cast<QKeyEvent*>(event)->key() == Qt::Key_Escape) cancelled_ = true;
      break;
    case QEvent::MouseButtonRelease: released_ = true; break;
    case QEvent::DragEnter:
    case QEvent::DragMove:
    case QEvent::DragLeave:
      if (object->isWindowType() && !released_) {
        overOwnWindow_ = event->type() != QEvent::DragLeave;
      }
      break;
    default: break;
  }
  return false;
}

QPixmap RowDrag::Picture(const QWidget& window, const QIcon& icon, const QString& text) {
  const QFontMetrics font = window.fontMetrics();
  const QString shown = font.elidedText(text, Qt::ElideMiddle, kMostTextWidth);
  const int height = std::max(kIconSize, font.height()) + 4;
  const QSize size(kIconSize + font.horizontalAdvance(shown) + 12, height);
  QPixmap picture(size * window.devicePixelRatio());
  picture.setDevicePixelRatio(window.devicePixelRatio());
  picture.fill(Qt::transparent);
  QPainter painter(&picture);
  painter.setRenderHint(QPainter::Antialiasing);
  icon.paint(&painter, 2, (height - kIconSize) / 2, kIconSize, kIconSize);
  // What lies below may be of any colour.
  QPainterPath letters;
  letters.addText(kIconSize + 7, 2 + font.ascent(), window.font(), shown);
  painter.strokePath(letters, QPen(window.palette().color(QPalette::Base), 3));
  painter.fillPath(letters, window.palette().color(QPalette::Text));
  return picture;
}

}  // namespace corvane
