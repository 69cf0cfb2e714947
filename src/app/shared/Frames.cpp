#include "app/shared/Frames.h"

#include <QApplication>
#include <QScreen>
#include <QStyle>
#include <QWidget>
#include <algorithm>
#include <cmath>

namespace corvane {
namespace {

// No window gets smaller than these, whatever is stored.
constexpr QSize kLeast(270, 200);
constexpr QSize kLeastBrowser(420, 440);

// A stored frame may hold anything.
int Pixel(float edge) {
  constexpr float kFarthest = 32000;
  return std::isnan(edge) ? 0 : static_cast<int>(std::clamp(edge, -kFarthest, kFarthest));
}

QRect ToQt(const Rect& frame) {
  return {QPoint(Pixel(frame.left), Pixel(frame.top)),
          QPoint(Pixel(frame.right), Pixel(frame.bottom))};
}

Rect FromQt(const QRect& frame) {
  return {static_cast<float>(frame.left()), static_cast<float>(frame.top()),
          static_cast<float>(frame.right()), static_cast<float>(frame.bottom())};
}

// Where windows may lie: frames are kept without the title bar, which is to be in reach too.
QRect RoomOn(const QScreen& screen) {
  const int title = QApplication::style()->pixelMetric(QStyle::PM_TitleBarHeight);
  return screen.availableGeometry().adjusted(0, title, 0, 0);
}

// The room on the screen that shows most of the frame, else the main one.
QRect ScreenOf(const QRect& frame) {
  QRect best(0, 0, 1024, 768);
  if (const QScreen* main = QGuiApplication::primaryScreen()) best = RoomOn(*main);
  int most = 0;
  for (const QScreen* screen : QGuiApplication::screens()) {
    const QRect seen = screen->availableGeometry() & frame;
    if (seen.width() * seen.height() <= most) continue;
    most = seen.width() * seen.height();
    best = RoomOn(*screen);
  }
  return best;
}

}  // namespace

QRect Frames::Restored(const FrameSetting& setting) {
  QRect frame = ToQt(StoredSettings::Frame(setting));
  if (!frame.isValid()) frame = ToQt(setting.fallback);
  frame.setSize(frame.size().expandedTo(kLeast));
  return OnScreen(frame);
}

QRect Frames::OnScreen(const QRect& frame) {
  return FitInto(frame, ScreenOf(frame));
}

QRect Frames::ForBrowser() {
  QRect frame = ToQt(StoredSettings::Frame(kConnectionFrame));
  const QRect screen = ScreenOf(frame);
  frame = ToQt(FitBrowser(FromQt(frame), FromQt(screen)));
  frame.setSize(frame.size().expandedTo(kLeastBrowser));
  return FitInto(frame, screen);
}

void Frames::PutBelow(QWidget& window, const QWidget& opener) {
  // Both windows have the same frame around them.
  const QPoint place = opener.geometry().topLeft() + QPoint(-20, 40);
  window.setGeometry(OnScreen(QRect(place, window.size())));
}

void Frames::Keep(const FrameSetting& setting, const QWidget& window) {
  const bool whole = window.isMaximized() || window.isFullScreen();
  StoredSettings::SaveFrame(setting, FromQt(whole ? window.normalGeometry() : window.geometry()));
}

QRect Frames::FitInto(QRect frame, const QRect& screen) {
  frame.setSize(frame.size().boundedTo(screen.size()));
  if (frame.right() > screen.right()) frame.moveRight(screen.right());
  if (frame.bottom() > screen.bottom()) frame.moveBottom(screen.bottom());
  frame.moveLeft(std::max(frame.left(), screen.left()));
  frame.moveTop(std::max(frame.top(), screen.top()));
  return frame;
}

Rect Frames::FitBrowser(Rect frame, const Rect& screen) {
  constexpr float kGap = 3;
  constexpr float kNarrowest = 420;
  if (screen.left > frame.left) frame.left = screen.left + kGap;
  if (screen.top > frame.top) frame.top = screen.top + kGap;
  if (screen.right < frame.right) frame.right = screen.right - kGap;
  if (screen.bottom < frame.bottom) frame.bottom = screen.bottom - kGap;
  if (frame.right - frame.left < kNarrowest) {
    frame.left = 15;
    frame.right = 435;
  }
  return frame;
}

}  // namespace corvane
