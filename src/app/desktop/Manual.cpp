#include "app/desktop/Manual.h"

#include <QCoreApplication>
#include <QDesktopServices>
#include <QDir>
#include <QFileInfo>
#include <QUrl>
#include <QWidget>

#include "app/shared/Alerts.h"

namespace corvane {

QString Manual::FirstPage() {
  const QDir program(QCoreApplication::applicationDirPath());
  for (const char* place : {"../share/doc/corvane/manual", "../../docs/manual"}) {
    const QFileInfo page(program.filePath(place + QStringLiteral("/index.html")));
    if (page.isFile()) return page.canonicalFilePath();
  }
  return {};
}

void Manual::Show(QWidget* window) {
  const QString page = FirstPage();
  if (!page.isEmpty() && QDesktopServices::openUrl(QUrl::fromLocalFile(page))) return;
  const auto text = [](const char* english) {
    return QCoreApplication::translate("Manual", english);
  };
  const QString found = text(QT_TRANSLATE_NOOP(
      "Manual", "This desktop has no program that opens pages. The manual begins here:"));
  const QString missing =
      text(QT_TRANSLATE_NOOP("Manual", "The manual was not installed with this program."));
  Alerts::Show(window, {.icon = QMessageBox::Information,
                        .title = text(QT_TRANSLATE_NOOP("Manual", "Manual")),
                        .text = page.isEmpty() ? missing : found,
                        .detail = page});
}

}  // namespace corvane
