#include "app/shared/Pace.h"

#include <QCoreApplication>
#include <cmath>

#include "app/shared/Figures.h"

namespace corvane {
namespace {

QString TimeLeft(double seconds) {
  constexpr double kMinute = 60;
  constexpr double kHour = 3600;
  const auto text = [](const char* english, double number) {
    return QCoreApplication::translate("Pace", english).arg(std::lround(number));
  };
  if (seconds < kMinute) return text(QT_TRANSLATE_NOOP("Pace", "%1 s left"), std::ceil(seconds));
  if (seconds < 1.5 * kHour) {
    return text(QT_TRANSLATE_NOOP("Pace", "about %1 min left"), seconds / kMinute);
  }
  return text(QT_TRANSLATE_NOOP("Pace", "about %1 h left"), seconds / kHour);
}

}  // namespace

QString PaceText(double rate, std::int64_t left) {
  constexpr double kDays = 1e6;
  if (rate < 1) return {};
  const QString speed =
      QCoreApplication::translate("Pace", "%1/s").arg(ShortSize(std::llround(rate)));
  const double seconds = static_cast<double>(left) / rate;
  return left < 0 || seconds > kDays ? speed : speed + ", " + TimeLeft(seconds);
}

}  // namespace corvane
