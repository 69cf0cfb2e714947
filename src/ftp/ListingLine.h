#pragma once

#include <chrono>
#include <cstdint>
#include <string_view>

#include "remote/RemoteEntry.h"

namespace corvane {

/// The columns that a heading of a listing has announced, where lines mean nothing without it.
enum class ListingColumns : std::uint8_t { None, DataSets, Members, Modules };

/// One line of a listing and what it stands in.
struct ListingLine {
  std::string_view text;              ///< without its end; not blank
  std::string_view following;         ///< the text behind it
  std::chrono::year_month_day now{};  ///< today where the user is
  ListingColumns columns = ListingColumns::None;
  bool takesNext = false;  ///< set where the entry goes on in the next line
};

/// Reads a line of one dialect into `entry`, every field of it; false where the line is not of that
/// form, and then `entry` may hold anything. Times are taken as they stand, for a server does not
/// tell its zone.
using ReadListingLine = bool (*)(ListingLine& line, RemoteEntry& entry);

}  // namespace corvane
