// What a browser window asks of the transfer window, and what it settles with the user before.

#include <sys/stat.h>

#include <QFile>
#include <QFileDialog>
#include <QFileInfo>
#include <optional>
#include <utility>
#include <vector>

#include "app/Alerts.h"
#include "app/DirListView.h"
#include "app/DownLoadWin.h"
#include "app/MWindow.h"
#include "app/TambleApp.h"
#include "app/Text.h"
#include "app/Windows.h"
#include "settings/ProcessSettings.h"
#include "util/LocalFile.h"

namespace corvane {
namespace {

std::optional<std::string> DownloadFolder() {
  const std::string folder = ProcessSettings::Get().DwnldDir;
  if (folder.empty() || folder == "empty" || !QFileInfo::exists(QFile::decodeName(folder.c_str())))
    return {};
  return folder;
}

/// What stands at `path`, a link itself and not where it leads; nothing when nothing does.
std::optional<struct stat> LocalEntry(const std::string& path) {
  struct stat status {};
  if (::lstat(path.c_str(), &status) != 0) return {};
  return status;
}

std::string LocalPath(const QString& path) {
  return QFile::encodeName(path).toStdString();
}

void ShowPanel(QFileDialog* panel) {
  panel->setAttribute(Qt::WA_DeleteOnClose);
  panel->setModal(false);
  panel->show();
}

}  // namespace

void MWindow::DownloadRequested(const Message& message) {
  if (const auto name = message.FindString("FileName"); name.has_value()) {
    const int row = listing_->Rows().Find(*name);
    if (row < 0) return;
    listing_->SelectRow(row);
  }
  const int first = listing_->FirstSelected();
  if (first <= 0) return;
  DownloadRequest request = RequestForSelection();
  if (request.items.empty()) return;
  const std::optional<std::string> folder = DownloadFolder();
  if (!folder.has_value()) {
    SaveDialogBox(std::move(request));
    return;
  }
  request.where = *folder;
  if (request.items.size() == 1) {
    const std::string name = request.items.front().name;
    DownloadOne(std::move(request), name);
  } else {
    app_.Transfers().AddDownload(std::move(request));
  }
}

// Names that cannot be local ones are left out here, and the user told. One alone may still get
// another name in the panel.
DownloadRequest MWindow::RequestForSelection() {
  DownloadRequest request;
  request.connection = connection_;
  request.remoteDirectory = currentDirectory_;
  const std::vector<int> rows = listing_->SelectedRows();
  QStringList refused;
  for (const int row : rows) {
    const MWListItem& item = listing_->Rows().At(row);
    if (rows.size() > 1 && (row < 2 || item.IsDots())) continue;
    if (rows.size() > 1 && !IsSafeLocalName(item.Name())) {
      refused.append(ToText(item.Name()));
      continue;
    }
    request.items.push_back(item.GetFileInfo());
    request.size = item.Size();
  }
  if (!refused.isEmpty()) {
    Warn(tr("These names cannot be names of local files and are left out:") + "\n\n" +
         refused.join('\n'));
  }
  return request;
}

// The panels do not block the window: what they are about is settled when they open.
void MWindow::SaveDialogBox(DownloadRequest request) {
  if (request.items.size() == 1) {
    if (!savePanel_.isNull()) return BringForward(savePanel_);
    savePanel_ = new QFileDialog(this, tr("Save"));
    savePanel_->setAcceptMode(QFileDialog::AcceptSave);
    savePanel_->setOption(QFileDialog::DontConfirmOverwrite);
    savePanel_->selectFile(ToText(request.items.front().name));
    connect(savePanel_, &QFileDialog::fileSelected, this,
            [this, request = std::move(request)](const QString& path) mutable {
              const QFileInfo chosen(path);
              request.where = LocalPath(chosen.path());
              DownloadOne(std::move(request), LocalPath(chosen.fileName()));
            });
    ShowPanel(savePanel_);
    return;
  }
  if (!openPanel_.isNull()) return BringForward(openPanel_);
  openPanel_ = new QFileDialog(this, tr("Download"));
  openPanel_->setFileMode(QFileDialog::Directory);
  openPanel_->setOption(QFileDialog::ShowDirsOnly);
  openPanel_->setLabelText(QFileDialog::Accept, tr("Select"));
  connect(openPanel_, &QFileDialog::fileSelected, this,
          [this, request = std::move(request)](const QString& path) mutable {
            request.where = LocalPath(path);
            app_.Transfers().AddDownload(std::move(request));
          });
  ShowPanel(openPanel_);
}

void MWindow::DownloadOne(DownloadRequest request, const std::string& localName) {
  if (!IsSafeLocalName(localName)) {
    Warn(tr("\"%1\" cannot be the name of a local file.").arg(ToText(localName)));
    return;
  }
  request.items.front().displayName = localName;
  const std::optional<struct stat> there = LocalEntry(request.where + "/" + localName);
  if (!there.has_value()) {
    app_.Transfers().AddDownload(std::move(request));
  } else if (S_ISREG(there->st_mode)) {
    AskAndHandOver(std::move(request), there->st_size);
  } else {
    const QString kind = S_ISDIR(there->st_mode)   ? tr("a folder")
                         : S_ISLNK(there->st_mode) ? tr("a link")
                                                   : tr("no plain file");
    Warn(tr("\"%1\" in the download folder is %2 and is left alone.").arg(ToText(localName), kind));
  }
}

void MWindow::AskAndHandOver(DownloadRequest request, std::int64_t localSize) {
  const QString name = ToText(request.items.front().name);
  Alerts::Question question;
  question.title = tr("Alert!");
  const bool whole = localSize == request.size;
  if (whole) {
    question.text = tr("You have already downloaded the file ") + name + ".\n\n" +
                    tr("Would you like to download the file again?");
    question.buttons = {tr("&Download"), tr("Cancel")};
  } else {
    question.text = tr("Part of the file ") + name + tr(" already exists.\n\n") +
                    tr("Would you like to overwrite or reget the file?");
    question.buttons = {tr("&Reget"), tr("&Overwrite"), tr("Cancel")};
  }
  const auto cancel = static_cast<int>(question.buttons.size()) - 1;
  Alerts::Show(this, question, [this, whole, cancel, request](int button) mutable {
    if (button == cancel) return;
    request.overwrite = whole || button == 1;
    app_.Transfers().AddDownload(std::move(request));
  });
}

void MWindow::ChooseUploads() {
  if (!openPanel_.isNull()) return BringForward(openPanel_);
  openPanel_ = new QFileDialog(this, tr("Upload"));
  openPanel_->setFileMode(QFileDialog::ExistingFiles);
  openPanel_->setLabelText(QFileDialog::Accept, tr("Select"));
  connect(openPanel_, &QFileDialog::filesSelected, this, &MWindow::Upload);
  ShowPanel(openPanel_);
}

void MWindow::Upload(const QStringList& paths) {
  UploadRequest request;
  request.connection = connection_;
  request.remoteDirectory = currentDirectory_;
  request.window = this;
  for (const QString& path : paths) request.localItems.push_back(LocalPath(path));
  if (!request.localItems.empty()) app_.Transfers().AddUpload(std::move(request));
}

}  // namespace corvane
