#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>

namespace corvane {

/// The names that are taken in one folder, and free ones beside them: "table (2).csv" for
/// "table.csv". Names are raw bytes. One thread at a time.
class FreeNames {
 public:
  void Take(std::string name) { taken_.insert(std::move(name)); }
  /// Takes every name in an open directory; what cannot be read is not told.
  void TakeIn(int directory);
  [[nodiscard]] bool IsTaken(const std::string& name) const { return taken_.contains(name); }

  /// A name like `name` that is not taken, and takes it. A number that `name` ends with is counted
  /// on. A file keeps its extension, that of a packed archive whole: "logs (2).tar.gz". The name
  /// gets no longer than file systems allow.
  [[nodiscard]] std::string Next(std::string_view name, bool folder);

 private:
  std::unordered_set<std::string> taken_;
  std::unordered_map<std::string, std::int64_t> next_;  // the next number of each name without one
};

}  // namespace corvane
