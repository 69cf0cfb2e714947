#include "app/desktop/DiffProgram.h"

#include <QCoreApplication>
#include <QFile>
#include <QProcess>
#include <QStandardPaths>

#include "app/shared/Alerts.h"
#include "app/shared/ScreenText.h"

namespace corvane {

std::string DiffProgram::Find() {
  for (const char* name : {"meld", "kompare", "kdiff3", "diffuse"})
    if (!QStandardPaths::findExecutable(name).isEmpty()) return name;
  return "";
}

void DiffProgram::Show(QWidget* window, const std::string& program, const std::string& one,
                       const std::string& other) {
  const QStringList files{QFile::decodeName(one.c_str()), QFile::decodeName(other.c_str())};
  if (QProcess::startDetached(QString::fromStdString(program), files)) return;
  Alerts::Show(
      window,
      {.title = QCoreApplication::translate("DiffProgram", "Compare"),
       .text =
           QCoreApplication::translate("DiffProgram", "%1 does not start.").arg(ToText(program))});
}

}  // namespace corvane
