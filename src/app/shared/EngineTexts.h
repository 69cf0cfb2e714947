#pragma once

#include <QString>

namespace corvane {

/// What the connection, a transfer or the settings say, in the user's language. They know English
/// alone; of the text that arrives each line is recognised by what it says. Names and the server's
/// own words stay as they are, and so does what is not known.
[[nodiscard]] QString Translated(const QString& english);

}  // namespace corvane
