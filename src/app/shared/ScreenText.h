#pragma once

#include <QString>
#include <optional>
#include <string>
#include <string_view>

class QWidget;

namespace corvane {

/// A server's bytes as text for the screen: hostile characters are shown as visible escapes. What
/// is no UTF-8 is read in `encoding`, that of the site, where there is one.
[[nodiscard]] QString ToText(std::string_view raw, const std::string& encoding = {});

/// ToText for a text of several lines: line ends stay line ends, and one at the end is dropped.
[[nodiscard]] QString ToLines(std::string_view raw);

/// Typed text as the bytes that go to the server or the file system: UTF-8.
[[nodiscard]] std::string ToBytes(const QString& text);

/// The bytes of a field that was filled with ToText(shown): those very bytes while nobody has
/// changed the text, else what was typed.
[[nodiscard]] std::string EditedBytes(const QString& text, const std::string& shown);

/// Typed text as the bytes of a server with that encoding; nothing where the encoding lacks one of
/// its characters. `shown`, where it was not changed, stays as it is.
[[nodiscard]] std::optional<std::string> ToServer(const QString& text, const std::string& encoding,
                                                  const std::string& shown = {});

/// A text for tooltips and other places that would take it for markup: shown as it is, lines and
/// all. A server's markup could otherwise make the window open files.
[[nodiscard]] QString Harmless(const QString& text);
/// A tooltip of plain text, which screen readers get without the markup.
void SetTip(QWidget& widget, const QString& text);

/// A text as the label of a menu item or button, in which "&" marks no key.
[[nodiscard]] QString Label(const QString& text);

/// What stands in a menu for a connection of that label, raw bytes; a long one is cut.
[[nodiscard]] QString ItemText(const std::string& label);

}  // namespace corvane
