#include "app/shared/EngineTexts.h"

#include <QCoreApplication>
#include <QRegularExpression>
#include <QStringList>
#include <algorithm>
#include <string_view>
#include <vector>

namespace corvane {
namespace {

constexpr const char* kContext = "Engine";

// "%1" and so on stand for names, numbers and the server's words, in their order, which stay as
// they are. The last place may be a reason, "%9", which is looked up in turn, or an entry and its
// reason,
// "%8".
constexpr const char* kTexts[] = {
    // Status
    QT_TRANSLATE_NOOP("Engine", "Changing Dir.."),
    QT_TRANSLATE_NOOP("Engine", "Connected."),
    QT_TRANSLATE_NOOP("Engine", "Connecting to host."),
    QT_TRANSLATE_NOOP("Engine", "Connection failed."),
    QT_TRANSLATE_NOOP("Engine", "Connection lost."),
    QT_TRANSLATE_NOOP("Engine", "Deleting Directory."),
    QT_TRANSLATE_NOOP("Engine", "Deleting File."),
    QT_TRANSLATE_NOOP("Engine", "Deleting File.."),
    QT_TRANSLATE_NOOP("Engine", "Deletion Failed."),
    QT_TRANSLATE_NOOP("Engine", "Deletion Success."),
    QT_TRANSLATE_NOOP("Engine", "Dir Deleted."),
    QT_TRANSLATE_NOOP("Engine", "Downloading File."),
    QT_TRANSLATE_NOOP("Engine", "Getting Dir Listing."),
    QT_TRANSLATE_NOOP("Engine", "Login failed."),
    QT_TRANSLATE_NOOP("Engine", "Resolving address."),
    QT_TRANSLATE_NOOP("Engine", "Sending Password."),
    QT_TRANSLATE_NOOP("Engine", "Sending Username."),
    QT_TRANSLATE_NOOP("Engine", "Transfer Complete."),
    QT_TRANSLATE_NOOP("Engine", "Transfer Interupted."),
    QT_TRANSLATE_NOOP("Engine", "Uploading File."),
    // Titles
    QT_TRANSLATE_NOOP("Engine", "Listing of: %1"),
    // Login and connection
    QT_TRANSLATE_NOOP("Engine", "Active connection failed."),
    QT_TRANSLATE_NOOP("Engine", "A line of the server's reply is too long"),
    QT_TRANSLATE_NOOP("Engine", "Connection aborted"),
    QT_TRANSLATE_NOOP("Engine", "Connection to:  %1 FAILED!"),
    QT_TRANSLATE_NOOP("Engine", "Could not resolve the address for:"),
    QT_TRANSLATE_NOOP("Engine", "Invalid Username or Password."),
    QT_TRANSLATE_NOOP("Engine", "Login to: %1 as anonymous failed."),
    QT_TRANSLATE_NOOP("Engine", "Login to: %1 failed."),
    QT_TRANSLATE_NOOP("Engine", "Lookup cancelled"),
    QT_TRANSLATE_NOOP("Engine", "No data connection was set up"),
    QT_TRANSLATE_NOOP("Engine", "No data connection: %9"),
    QT_TRANSLATE_NOOP("Engine", "Out of memory"),
    QT_TRANSLATE_NOOP("Engine", "Passive connection failed."),
    QT_TRANSLATE_NOOP("Engine", "Service not available, closing control connection!"),
    QT_TRANSLATE_NOOP("Engine", "The connection is closed"),
    QT_TRANSLATE_NOOP("Engine", "The connection to %1 was lost."),
    QT_TRANSLATE_NOOP("Engine", "The connection was lost: %9"),
    QT_TRANSLATE_NOOP("Engine", "The server closed the connection"),
    QT_TRANSLATE_NOOP("Engine", "The server did not open the data connection."),
    QT_TRANSLATE_NOOP("Engine", "The server does not answer"),
    QT_TRANSLATE_NOOP("Engine", "The server does not lead back to its directory"),
    QT_TRANSLATE_NOOP("Engine", "The server does not speak FTP"),
    QT_TRANSLATE_NOOP("Engine", "The server gave no port for the data connection: %1"),
    QT_TRANSLATE_NOOP("Engine", "The server refuses active connections."),
    QT_TRANSLATE_NOOP("Engine", "The server's reply is too long"),
    QT_TRANSLATE_NOOP("Engine", "Username is invalid"),
    // Commands
    QT_TRANSLATE_NOOP("Engine", "\"%1\" cannot be shown: %9"),
    QT_TRANSLATE_NOOP("Engine", "\"%1\" was not renamed."),
    QT_TRANSLATE_NOOP("Engine", "A name or text with a line break cannot be sent to the server."),
    QT_TRANSLATE_NOOP("Engine", "Bad sequence of commands!"),
    QT_TRANSLATE_NOOP("Engine", "Command not implemented!"),
    QT_TRANSLATE_NOOP("Engine", "Entries with names longer than 4096 bytes are not shown: %1"),
    QT_TRANSLATE_NOOP("Engine", "Error in parameters"),
    QT_TRANSLATE_NOOP("Engine", "Left alone, for it is a link."),
    QT_TRANSLATE_NOOP("Engine", "Left alone, for it leads to %1"),
    QT_TRANSLATE_NOOP("Engine", "Left alone, for the name leads elsewhere."),
    QT_TRANSLATE_NOOP("Engine", "No data connection for the listing."),
    QT_TRANSLATE_NOOP("Engine", "The directories are nested too deeply."),
    QT_TRANSLATE_NOOP("Engine", "The directory \"%1\" was not created."),
    QT_TRANSLATE_NOOP("Engine", "The directory cannot be opened."),
    QT_TRANSLATE_NOOP("Engine", "The directory has changed meanwhile. Nothing was done."),
    QT_TRANSLATE_NOOP("Engine", "The file is not complete: %9"),
    QT_TRANSLATE_NOOP("Engine", "The listing could not be read."),
    QT_TRANSLATE_NOOP("Engine", "The listing could not be shown: %9"),
    QT_TRANSLATE_NOOP("Engine", "The listing did not come whole."),
    QT_TRANSLATE_NOOP("Engine", "The listing is not complete: %9"),
    QT_TRANSLATE_NOOP("Engine", "The request could not be carried out: %9"),
    QT_TRANSLATE_NOOP("Engine", "The server did not delete everything:"),
    QT_TRANSLATE_NOOP("Engine", "The server does not lead back to the directory above: %1"),
    QT_TRANSLATE_NOOP("Engine", "The server has no directory or file %1."),
    QT_TRANSLATE_NOOP("Engine", "The server lists a directory inside itself: %1"),
    QT_TRANSLATE_NOOP("Engine", "The server refused the request."),
    QT_TRANSLATE_NOOP("Engine", "The system has no thread left to fetch the listing."),
    QT_TRANSLATE_NOOP("Engine", "and %1 more"),
    QT_TRANSLATE_NOOP("Engine", "it has more than 10,000,000 entries."),
    QT_TRANSLATE_NOOP("Engine", "the listing is larger than 1 GiB."),
    // Transfers
    QT_TRANSLATE_NOOP("Engine", "  *Could not open file for reading!*"),
    QT_TRANSLATE_NOOP("Engine", "%1 of %2 entries failed."),
    QT_TRANSLATE_NOOP("Engine", "%1 of %2 entries failed; stopped at %8"),
    QT_TRANSLATE_NOOP("Engine", "%1 of %2 entries failed: %8"),
    QT_TRANSLATE_NOOP("Engine", "Another transfer is writing %1 already."),
    QT_TRANSLATE_NOOP("Engine", "Cancelled."),
    QT_TRANSLATE_NOOP("Engine", "Could not make the folder: %9"),
    QT_TRANSLATE_NOOP("Engine", "Could not open %1: %9"),
    QT_TRANSLATE_NOOP("Engine", "Could not read the file: %9"),
    QT_TRANSLATE_NOOP("Engine", "Could not read the folder: %9"),
    QT_TRANSLATE_NOOP("Engine", "Could not read %1: %9"),
    QT_TRANSLATE_NOOP("Engine", "Could not write the file: %9"),
    QT_TRANSLATE_NOOP("Engine", "Left out: %1 (%9)"),
    QT_TRANSLATE_NOOP("Engine", "Only %1 of %2 bytes came."),
    QT_TRANSLATE_NOOP("Engine", "The file became shorter while it was being sent."),
    QT_TRANSLATE_NOOP("Engine", "The folder has no name of its own."),
    QT_TRANSLATE_NOOP("Engine", "The local file is longer than the server's."),
    QT_TRANSLATE_NOOP("Engine", "The name \"%1\" cannot be a local folder's."),
    QT_TRANSLATE_NOOP("Engine", "The name \"%1\" cannot be used for a local file."),
    QT_TRANSLATE_NOOP("Engine", "The name leads elsewhere."),
    QT_TRANSLATE_NOOP("Engine", "The rest of this folder was not sent."),
    QT_TRANSLATE_NOOP("Engine", "The server does not resume."),
    QT_TRANSLATE_NOOP("Engine", "The transfer could not be carried out: %9"),
    QT_TRANSLATE_NOOP("Engine", "The window has gone to another directory meanwhile."),
    QT_TRANSLATE_NOOP("Engine", "The window is closing."),
    QT_TRANSLATE_NOOP("Engine", "What follows is not listed any more."),
    QT_TRANSLATE_NOOP("Engine", "a link or a special file"),
    QT_TRANSLATE_NOOP("Engine", "a link to a folder"),
    QT_TRANSLATE_NOOP("Engine", "a link to no file"),
    QT_TRANSLATE_NOOP("Engine", "a special file"),
    // Settings
    QT_TRANSLATE_NOOP("Engine", "Another program holds the file."),
    QT_TRANSLATE_NOOP("Engine", "The file is damaged. Move it away to begin with a new one."),
    QT_TRANSLATE_NOOP("Engine", "The list is full."),
    QT_TRANSLATE_NOOP("Engine", "The path of the file is too long."),
    QT_TRANSLATE_NOOP("Engine", "The preference store failed."),
    QT_TRANSLATE_NOOP("Engine", "There is no list of shortcuts to add it to."),
};

/// A text with places in it.
struct Pattern {
  const char* text;
  QRegularExpression form;
};

const std::vector<Pattern>& Patterns() {
  static const std::vector<Pattern> patterns = [] {
    std::vector<Pattern> all;
    for (const char* text : kTexts) {
      QString form = QRegularExpression::escape(QString::fromUtf8(text));
      if (!form.contains("\\%")) continue;
      static const QRegularExpression place(QStringLiteral("\\\\%\\d"));
      form.replace(place, QStringLiteral("(.+?)"));
      all.push_back({text, QRegularExpression(QRegularExpression::anchoredPattern(form))});
    }
    return all;
  }();
  return patterns;
}

QString Fixed(const QString& english) {
  return QCoreApplication::translate(kContext, english.toUtf8().constData());
}

/// `text` with its places filled; what fills one is not looked at again.
QString Filled(const QString& text, const QStringList& parts) {
  QString filled;
  for (qsizetype i = 0; i < text.size(); ++i) {
    const qsizetype place = text[i] == '%' && i + 1 < text.size() ? text[i + 1].digitValue() : 0;
    if (place > 0) filled += parts.value(std::min(place, parts.size() - 1));
    if (place > 0) ++i;
    if (place <= 0) filled += text[i];
  }
  return filled;
}

// Deeper than any text of ours; each step costs a search.
constexpr int kDeepest = 5;

QString Line(const QString& english, int depth);

/// "name: reason", the name as it is.
QString Entry(const QString& english, int depth) {
  const qsizetype reason = english.indexOf(": ") + 2;
  if (reason < 2 || depth == kDeepest) return english;
  return english.first(reason) + Line(english.mid(reason), depth + 1);
}

QString Line(const QString& english, int depth) {
  if (QString fixed = Fixed(english); fixed != english) return fixed;
  for (const auto& [text, form] : Patterns()) {
    const QRegularExpressionMatch match = form.match(english);
    if (!match.hasMatch()) continue;
    QStringList parts = match.capturedTexts();
    const std::string_view known = text;
    if (known.find("%9") != known.npos && depth < kDeepest) {
      parts.last() = Line(parts.last(), depth + 1);
    } else if (known.find("%8") != known.npos) {
      parts.last() = Entry(parts.last(), depth);
    }
    return Filled(QCoreApplication::translate(kContext, text), parts);
  }
  // A reason may have got its full stop later.
  if (english.endsWith('.')) {
    const QString fixed = Fixed(english.chopped(1));
    if (fixed != english.chopped(1)) return fixed + '.';
  }
  return Entry(english, depth);
}

}  // namespace

QString Translated(const QString& english) {
  constexpr qsizetype kLongest = 300;
  const QString known = QString::fromUtf8(kTexts[0]);
  if (Fixed(known) == known) return english;  // no catalogue
  QStringList lines = english.split('\n');
  if (lines.size() > kLongest) return english;
  for (QString& line : lines) {
    if (line.size() <= kLongest) line = Line(line, 0);
  }
  return lines.join('\n');
}

}  // namespace corvane
