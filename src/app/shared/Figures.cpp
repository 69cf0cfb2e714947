#include "app/shared/Figures.h"

#include <QCoreApplication>
#include <QRegularExpression>
#include <array>
#include <cmath>

namespace corvane {
namespace {

struct Figures {
  Q_DECLARE_TR_FUNCTIONS(Figures)
};

constexpr std::array kUnits{"B", "kB", "MB", "GB", "TB", "PB", "EB"};
constexpr double kThousand = 1000;

// A size that would be rounded up to a thousand belongs to the next unit.
std::size_t UnitOf(double bytes) {
  constexpr double kRoundsUp = 999.95;
  std::size_t unit = 0;
  for (; bytes >= (unit == 0 ? kThousand : kRoundsUp) && unit + 1 < kUnits.size(); ++unit) {
    bytes /= kThousand;
  }
  return unit;
}

QString InUnit(double bytes, std::size_t unit) {
  const double number = bytes / std::pow(kThousand, static_cast<double>(unit));
  return FiguresLocale().toString(number, 'f', unit == 0 ? 0 : 1);
}

// The locale's own order; a month in letters where English readers disagree about the digits.
QString DateFormat(const QLocale& locale) {
  QString format = locale.dateFormat(QLocale::ShortFormat);
  if (locale.language() == QLocale::English && !format.startsWith('y')) {
    return format.startsWith('M') ? QStringLiteral("MMM dd, yyyy") : QStringLiteral("dd MMM yyyy");
  }
  static const QRegularExpression day("d+");
  static const QRegularExpression month("M{1,2}(?!M)");
  static const QRegularExpression year("y+");
  if (!format.contains("MMM")) format.replace(month, "MM");
  return format.replace(day, "dd").replace(year, "yyyy");
}

QString TimeFormat(const QLocale& locale) {
  static const QRegularExpression hour("(?<!h)h(?!h)");
  static const QRegularExpression wholeHour("(?<!H)H(?!H)");
  return locale.timeFormat(QLocale::ShortFormat).replace(hour, "hh").replace(wholeHour, "HH");
}

}  // namespace

QLocale FiguresLocale() {
  const QLocale user;
  if (user.language() != QLocale::C) return user;
  return QLocale(Figures::tr("en_GB", "the locale of figures where the system has none"));
}

QString ShortSize(std::int64_t bytes) {
  const auto size = static_cast<double>(bytes);
  const std::size_t unit = UnitOf(size);
  return InUnit(size, unit) + ' ' + kUnits.at(unit);
}

QString ShortSizeOf(std::int64_t there, std::int64_t whole) {
  const std::size_t unit = UnitOf(static_cast<double>(whole));
  return Figures::tr("%1 of %2 %3")
      .arg(InUnit(static_cast<double>(there), unit), InUnit(static_cast<double>(whole), unit),
           kUnits.at(unit));
}

QString ExactSize(std::int64_t bytes) {
  if (bytes == 1) return Figures::tr("1 byte");
  return Figures::tr("%1 bytes").arg(FiguresLocale().toString(qlonglong{bytes}));
}

QString ShortDate(const QDate& day, const std::optional<QTime>& time) {
  if (!day.isValid()) return {};
  // Asked for each cell that is painted.
  static QLocale locale;
  static QString dates;
  static QString times;
  if (const QLocale now = FiguresLocale(); dates.isEmpty() || now != locale) {
    locale = now;
    dates = DateFormat(locale);
    times = TimeFormat(locale);
  }
  const QString text = locale.toString(day, dates);
  return time.has_value() ? text + ' ' + locale.toString(*time, times) : text;
}

}  // namespace corvane
