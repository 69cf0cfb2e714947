#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>

namespace corvane {

/// How a listing is shown: its columns, and its order.
struct ListingLook {
  static constexpr std::size_t kColumns = 7;  ///< the first is always shown

  struct Column {
    bool shown = false;
    std::int32_t width = 0;  ///< pixels; 0 where the user has chosen none

    friend bool operator==(const Column&, const Column&) = default;
  };

  std::array<Column, kColumns> columns{{{true}, {true}, {true}}};
  std::int32_t sortColumn = 0;
  bool ascending = true;
  bool directoriesFirst = true;
  bool natural = true;

  friend bool operator==(const ListingLook&, const ListingLook&) = default;
};

/// The looks of the listings of the sites that were visited last, on the disk: the set "listings".
/// GUI thread.
class ListingLooks {
 public:
  static constexpr std::size_t kMost = 200;  ///< of sites; the one not visited for longest goes

  /// What was kept for `site`, "user@host:port" in raw bytes, or how listings are shown at first.
  [[nodiscard]] static ListingLook Read(const std::string& site);
  static void Keep(const std::string& site, const ListingLook& look);
};

}  // namespace corvane
