#pragma once

#include <QStringList>
#include <string>
#include <string_view>
#include <vector>

namespace corvane {

/// What a list of URLs (RFC 2483) that was dropped on a window means.
struct LocalDrop {
  std::vector<std::string> paths;  ///< of this machine, raw bytes
  QStringList foreign;             ///< the addresses that lead elsewhere

  [[nodiscard]] static LocalDrop Read(std::string_view list);
  /// What the user is told of the foreign ones; empty without any.
  [[nodiscard]] QString Complaint() const;
};

}  // namespace corvane
