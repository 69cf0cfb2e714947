// Makes the manual's page of keys out of its template and the tables of commands:
// keys TEMPLATE PAGE writes the page; "keys check TEMPLATE PAGE" fails where it would change.

#include <QFile>
#include <QKeySequence>
#include <QStringList>
#include <QTextStream>
#include <span>

#include "app/browser/BrowserCommands.h"
#include "app/transfers/TransferCommands.h"

namespace {

using namespace corvane;

/// The keys as the manual writes them: those of one name once.
QString KeyNames(const char* keys) {
  QStringList names;
  for (QString name : QString(keys).split("; ")) {
    names << name.replace(QStringLiteral("Return"), QStringLiteral("Enter"));
  }
  names.removeDuplicates();
  return names.join(QStringLiteral(", "));
}

/// A row of the page for each command that has a key.
template <typename Command>
QString RowsOf(std::span<const Command> commands) {
  QString rows;
  for (const Command& command : commands) {
    const QString help(command.help);
    if (*command.keys == '\0') continue;
    rows += QStringLiteral("| %1 | %2 |\n")
                .arg(KeyNames(command.keys), help.left(1).toLower() + help.mid(1));
  }
  return rows;
}

QString Read(const QString& path) {
  QFile file(path);
  return file.open(QFile::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
}

bool Write(const QString& path, const QString& text) {
  QFile file(path);
  return file.open(QFile::WriteOnly) && file.write(text.toUtf8()) >= 0 && file.flush();
}

}  // namespace

int main(int count, char** words) {
  QStringList arguments;
  for (char* word : std::span(words, static_cast<std::size_t>(count)).subspan(1)) {
    arguments << QFile::decodeName(word);
  }
  const bool check = arguments.value(0) == QStringLiteral("check");
  if (check) arguments.removeFirst();
  QTextStream complaints(stderr);
  QString page = arguments.size() == 2 ? Read(arguments[0]) : QString();
  if (page.isEmpty()) {
    complaints << "usage: keys [check] TEMPLATE PAGE\n";
    return 2;
  }
  page.replace(QStringLiteral("@browser@\n"), RowsOf(BrowserCommands::All()));
  page.replace(QStringLiteral("@transfers@\n"), RowsOf(TransferCommands::All()));
  if (!check) return Write(arguments[1], page) ? 0 : 1;
  if (Read(arguments[1]) == page) return 0;
  complaints << arguments[1] << " is not up to date: build the target \"keys\"\n";
  return 1;
}
