#pragma once

#include <QIcon>
#include <cstdint>
#include <string_view>

namespace corvane {

/// The kinds of rows that have a picture of their own.
enum class IconKind : std::uint8_t {
  Directory,
  Link,
  Paper,
  Archive,
  Audio,
  Package,
  Html,
  Graphic
};

/// The picture for an entry of that type (EntryType); files are told apart by their extension, a
/// name of fewer than four bytes being all extension. `name` is raw bytes.
[[nodiscard]] IconKind IconFor(std::int32_t type, std::string_view name);

/// The bundled pictures. GUI thread.
[[nodiscard]] const QIcon& ListIcon(IconKind kind);
[[nodiscard]] const QIcon& AlertIcon();
[[nodiscard]] const QIcon& ProgramIcon();

}  // namespace corvane
