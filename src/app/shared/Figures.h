#pragma once

#include <QDate>
#include <QLocale>
#include <QString>
#include <QTime>
#include <cstdint>
#include <optional>

namespace corvane {

/// The locale of figures, dates and order: the user's, or where the system has none that of the
/// texts.
[[nodiscard]] QLocale FiguresLocale();

/// Bytes in the unit that leaves one to three digits before the decimal sign, in steps of a
/// thousand: "14 B", "22.9 kB", "209.7 MB".
[[nodiscard]] QString ShortSize(std::int64_t bytes);
/// "164.7 of 209.7 MB", both in the unit of the whole.
[[nodiscard]] QString ShortSizeOf(std::int64_t there, std::int64_t whole);

/// All digits of a size: "209,715,200 bytes".
[[nodiscard]] QString ExactSize(std::int64_t bytes);

/// A date with two digits for the day, in the locale's order, and the time where there is one:
/// "14 Mar 2026 09:26", "14.03.2026".
[[nodiscard]] QString ShortDate(const QDate& day, const std::optional<QTime>& time);

}  // namespace corvane
