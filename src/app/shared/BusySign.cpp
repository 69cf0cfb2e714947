#include "app/shared/BusySign.h"

#include <QPainter>
#include <QTimerEvent>

#include "app/shared/Tones.h"

namespace corvane {
namespace {

constexpr int kSize = 16;
constexpr int kStep = 40;  // milliseconds
constexpr int kTurn = 1000;

}  // namespace

BusySign::BusySign(QWidget* parent) : QWidget(parent) {
  setFixedSize(kSize, kSize);
}

void BusySign::SetBusy(bool busy) {
  if (busy_ == busy) return;
  busy_ = busy;
  setAccessibleName(busy ? tr("Busy") : QString());
  clock_.restart();
  Turn();
  update();
}

void BusySign::Turn() {
  if (busy_ && isVisible()) {
    timer_.start(kStep, this);
  } else {
    timer_.stop();
  }
}

void BusySign::timerEvent(QTimerEvent* event) {
  if (event->timerId() == timer_.timerId()) update();
}

void BusySign::showEvent(QShowEvent* /*event*/) {
  Turn();
}

void BusySign::hideEvent(QHideEvent* /*event*/) {
  Turn();
}

void BusySign::paintEvent(QPaintEvent* /*event*/) {
  if (!busy_) return;
  constexpr int kSixteenths = 16;  // of a degree
  constexpr int kArc = 260;
  QPainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setPen(QPen(ToneOf(palette(), Tone::Running), 1.5, Qt::SolidLine, Qt::RoundCap));
  const auto turned = static_cast<int>(clock_.elapsed() % kTurn * 360 / kTurn);
  painter.drawArc(QRectF(rect()).adjusted(2, 2, -2, -2), (90 - turned) * kSixteenths,
                  -kArc * kSixteenths);
}

}  // namespace corvane
