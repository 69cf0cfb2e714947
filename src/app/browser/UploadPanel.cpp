#include "app/browser/UploadPanel.h"

#include <QFileInfo>
#include <QLineEdit>
#include <algorithm>

namespace corvane {

// The desktop's own dialogs offer either files or folders.
UploadPanel::UploadPanel(QWidget* browser) : QFileDialog(browser, tr("Upload")) {
  setOption(QFileDialog::DontUseNativeDialog);
  setFileMode(QFileDialog::ExistingFiles);
  const auto label = [this] { setLabelText(QFileDialog::Accept, tr("Select")); };
  label();
  // Behind a click on a folder the toolkit calls the button "Open".
  connect(this, &QFileDialog::currentChanged, this, label, Qt::QueuedConnection);
}

// A path that is typed leads into the folder, as everywhere.
void UploadPanel::accept() {
  const QStringList paths = selectedFiles();
  const auto there = [](const QString& path) { return QFileInfo::exists(path); };
  const bool typed = qobject_cast<QLineEdit*>(focusWidget()) != nullptr;
  const bool folder = paths.size() == 1 && QFileInfo(paths.front()).isDir();
  if (paths.isEmpty() || !std::ranges::all_of(paths, there) || (typed && folder)) {
    return QFileDialog::accept();
  }
  done(QDialog::Accepted);
  Q_EMIT Chosen(paths);
}

}  // namespace corvane
