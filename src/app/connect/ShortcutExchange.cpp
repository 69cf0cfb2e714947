#include "app/connect/ShortcutExchange.h"

#include <QDir>
#include <QFileDialog>
#include <QPointer>
#include <utility>

#include "app/connect/ConnectHost.h"
#include "app/connect/ImportWindow.h"
#include "app/connect/ShortCutWindow.h"
#include "app/connect/ShortcutTree.h"
#include "app/shared/Alerts.h"
#include "app/shared/GuiThread.h"
#include "app/shared/Shown.h"
#include "kit/Background.h"
#include "sites/ShortcutLines.h"

namespace corvane {

ShortcutExchange::ShortcutExchange(ShortCutWindow& list) : QObject(&list), list_(list) {}

// Most programs keep their lists in hidden folders.
void ShortcutExchange::Import() {
  auto* panel = new QFileDialog(&list_, tr("Import Shortcuts"), QDir::homePath());
  panel->setObjectName("ImportPanel");
  panel->setAttribute(Qt::WA_DeleteOnClose);
  panel->setFileMode(QFileDialog::ExistingFile);
  panel->setFilter(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot);
  connect(panel, &QFileDialog::fileSelected, this,
          [this](const QString& file) { ReadFile(QFile::encodeName(file).toStdString()); });
  panel->open();
}

void ShortcutExchange::ReadFile(const std::string& path) {
  const auto work = [self = QPointer(this), path] {
    OnGuiThread([self, import = ShortcutImport::ReadFile(path)] {
      if (self.isNull()) return;
      self->list_.Host().AskWhetherKept([self, import](bool kept) {
        if (!self.isNull()) self->ShowImport(import, kept);
      });
    });
  };
  if (!Background::Start("import", work)) list_.ShowStatus(tr("The file could not be read."));
}

void ShortcutExchange::ShowImport(ShortcutImport import, bool kept) {
  if (import.failure.IsEmpty() && import.entries.empty()) {
    import.failure = Text("The file holds no connections.");
  }
  if (!import.failure.IsEmpty()) {
    return Alerts::Show(&list_, {.title = tr("Warning!"),
                                 .text = tr("The file could not be imported."),
                                 .detail = Shown(import.failure)});
  }
  import.FitToStore(kept);
  import.MarkKnown(list_.Records());
  auto* window = new ImportWindow(std::move(import), &list_);
  connect(window, &ImportWindow::Chosen, this, [this, window] {
    const std::vector<Shortcut> shortcuts = window->Shortcuts();
    const auto count = static_cast<int>(shortcuts.size());
    list_.TakeImported(
        shortcuts, window->Folders(),
        count == 1 ? tr("1 shortcut imported") : tr("%n shortcuts imported", "", count));
  });
  window->open();
}

void ShortcutExchange::Export() {
  const auto count = static_cast<int>(list_.List().InMenuOrder().size());
  const auto passwords = std::make_shared<bool>(false);
  const QString question =
      count == 1 ? tr("Export 1 shortcut?") : tr("Export %n shortcuts?", "", count);
  const QString text = tr("They go into a file that Corvane can import again.");
  Alerts::Show(&list_,
               {.icon = QMessageBox::Question,
                .title = tr("Export"),
                .text = question,
                .detail = text,
                .buttons = {tr("E&xport…"), tr("&Cancel")},
                .heading = question,
                .advice = text,
                .tick = tr("With the &passwords"),
                .ticked = [passwords](bool ticked) { *passwords = ticked; }},
               [self = QPointer(this), passwords](int button) {
                 if (self.isNull() || button != 0) return;
                 if (*passwords) return self->WarnOfPasswords();
                 self->AskWhere(false);
               });
}

void ShortcutExchange::WarnOfPasswords() {
  const QString question = tr("Write the passwords into a file?");
  const QString text =
      tr("Nothing protects them there: who gets the file, or a copy of it, can log in as you.");
  Alerts::Show(&list_,
               {.title = tr("Warning!"),
                .text = question,
                .detail = text,
                .buttons = {tr("&Write Passwords"), tr("&Cancel")},
                .preset = 1,
                .heading = question,
                .advice = text},
               [self = QPointer(this)](int button) {
                 if (!self.isNull() && button == 0) self->AskWhere(true);
               });
}

void ShortcutExchange::AskWhere(bool passwords) {
  auto* panel = new QFileDialog(&list_, tr("Export Shortcuts"), QDir::homePath());
  panel->setObjectName("ExportPanel");
  panel->setAttribute(Qt::WA_DeleteOnClose);
  panel->setAcceptMode(QFileDialog::AcceptSave);
  panel->selectFile(QStringLiteral("corvane-shortcuts.txt"));
  connect(panel, &QFileDialog::fileSelected, this, [this, passwords](const QString& file) {
    FindAndWrite(QFile::encodeName(file).toStdString(), passwords);
  });
  panel->open();
}

void ShortcutExchange::FindAndWrite(const std::string& path, bool passwords) {
  if (!passwords) return WriteFile(path, list_.Records(), false, 0);
  list_.Host().FindPasswords(list_.Records(), [self = QPointer(this), path](
                                                  const std::vector<Shortcut>& found, int missing) {
    if (!self.isNull()) self->WriteFile(path, found, true, missing);
  });
}

void ShortcutExchange::WriteFile(const std::string& path, const std::vector<Shortcut>& shortcuts,
                                 bool passwords, int missing) {
  const std::string bytes = WrittenShortcuts(shortcuts, list_.List().Folders(), passwords);
  const auto count = static_cast<int>(shortcuts.size());
  const auto tell = [self = QPointer(this), count, missing](const Text& failure) {
    if (self.isNull()) return;
    if (!failure.IsEmpty()) {
      return Alerts::Show(&self->list_, {.title = tr("Warning!"),
                                         .text = tr("The shortcuts could not be exported."),
                                         .detail = Shown(failure)});
    }
    QString word = count == 1 ? tr("1 shortcut exported") : tr("%n shortcuts exported", "", count);
    if (missing == 1) word += tr(", 1 password not found");
    if (missing > 1) word += tr(", %n passwords not found", "", missing);
    self->list_.ShowStatus(word);
  };
  const bool started = Background::Start("export", [path, bytes, tell] {
    OnGuiThread([tell, failure = WritePrivateFile(path, bytes)] { tell(failure); });
  });
  if (!started) tell(Text("There is no thread for it."));
}

}  // namespace corvane
