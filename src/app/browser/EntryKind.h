#pragma once

#include <QString>
#include <cstdint>
#include <string_view>

namespace corvane {

/// What an entry is, as far as its type and its name tell.
enum class EntryKind : std::uint8_t {
  Directory,
  Link,
  Text,
  Binary,
  Archive,
  Sound,
  Package,
  WebPage,
  Picture,
  Device,
  Unclear,  ///< the listing does not tell its name
};

/// `type` is an EntryType, `name` raw bytes.
[[nodiscard]] EntryKind KindOf(std::int32_t type, std::string_view name);

/// The name of its symbol.
[[nodiscard]] const char* SymbolOf(EntryKind kind);

/// What it is called: "Text file".
[[nodiscard]] QString NameOf(EntryKind kind);

}  // namespace corvane
