#pragma once

#include <QIcon>
#include <QString>
#include <cstdint>
#include <string_view>

class QPalette;

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

/// Whether these colours are a dark theme.
[[nodiscard]] bool IsDark(const QPalette& palette);

/// The file of a bundled picture, in its variant for dark themes where that is asked for and there
/// is one.
[[nodiscard]] QString PictureFile(const QString& name, bool dark);

/// The face of the program; its smallest size is a drawing of its own. GUI thread.
[[nodiscard]] QIcon ProgramIcon();

}  // namespace corvane
