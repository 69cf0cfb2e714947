#pragma once

#include <QString>
#include <string>
#include <string_view>

namespace corvane {

/// A server's bytes as text for the screen: hostile characters are shown as visible escapes.
[[nodiscard]] QString ToText(std::string_view raw);

/// The same for a text of several lines: line ends stay line ends, and one at the end is dropped.
[[nodiscard]] QString ToLines(std::string_view raw);

/// Typed text as the bytes that go to the server or the file system: UTF-8.
[[nodiscard]] std::string ToBytes(const QString& text);

}  // namespace corvane
