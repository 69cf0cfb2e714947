// What a browser window asks of the transfer window, and what it settles with the user before.

#include <sys/stat.h>

#include <QFile>
#include <QFileDialog>
#include <QFileInfo>
#include <optional>
#include <utility>

#include "app/Alerts.h"
#include "app/DirListView.h"
#include "app/DownLoadWin.h"
#include "app/MWindow.h"
#include "app/TambleApp.h"
#include "app/Text.h"
#include "settings/ProcessSettings.h"
#include "util/LocalFile.h"

namespace corvane {
namespace {

std::optional<std::string> DownloadFolder() {
  const std::string folder = ProcessSettings::Get().DwnldDir;
  if (folder == "empty" || !QFileInfo::exists(QFile::decodeName(folder.c_str()))) return {};
  return folder;
}

/// The size of what stands at `path`; nothing when nothing stands there.
std::optional<std::int64_t> LocalSize(const std::string& path) {
  struct stat status {};
  if (::stat(path.c_str(), &status) != 0) return {};
  return status.st_size;
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
  const int count = listing_->SelectedCount();
  const std::optional<std::string> folder = DownloadFolder();
  if (!folder.has_value()) {
    SaveDialogBox(first, count);
  } else if (count == 1) {
    DownloadOne(*folder, listing_->Rows().At(first).Name());
  } else {
    DownloadInto(*folder);
  }
}

void MWindow::SaveDialogBox(int row, int count) {
  if (count == 1) {
    if (!savePanel_.isNull()) return;
    savePanel_ = new QFileDialog(this, tr("Save"));
    savePanel_->setAcceptMode(QFileDialog::AcceptSave);
    savePanel_->setOption(QFileDialog::DontConfirmOverwrite);
    savePanel_->selectFile(ToText(listing_->Rows().At(row).Name()));
    connect(savePanel_, &QFileDialog::fileSelected, this, [this](const QString& path) {
      const QFileInfo chosen(path);
      DownloadOne(LocalPath(chosen.path()), LocalPath(chosen.fileName()));
    });
    ShowPanel(savePanel_);
    return;
  }
  if (!openPanel_.isNull()) return;
  openPanel_ = new QFileDialog(this, tr("Download"));
  openPanel_->setFileMode(QFileDialog::Directory);
  openPanel_->setOption(QFileDialog::ShowDirsOnly);
  openPanel_->setLabelText(QFileDialog::Accept, tr("Select"));
  connect(openPanel_, &QFileDialog::fileSelected, this,
          [this](const QString& path) { DownloadInto(LocalPath(path)); });
  ShowPanel(openPanel_);
}

void MWindow::DownloadOne(const std::string& folder, const std::string& localName) {
  const int row = listing_->FirstSelected();
  if (row < 0) return;
  if (!IsSafeLocalName(localName)) {
    Warn(tr("\"%1\" cannot be the name of a local file.").arg(ToText(localName)));
    return;
  }
  DownloadRequest request;
  request.connection = connection_;
  request.remoteDirectory = currentDirectory_;
  request.where = folder;
  request.items.push_back(listing_->Rows().At(row).GetFileInfo());
  request.items.front().displayName = localName;
  request.size = request.items.front().size;
  const std::optional<std::int64_t> localSize = LocalSize(folder + "/" + localName);
  if (localSize.has_value()) {
    AskAndHandOver(std::move(request), *localSize);
  } else {
    app_.Transfers().AddDownload(std::move(request));
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

void MWindow::DownloadInto(const std::string& folder) {
  if (!QFileInfo::exists(QFile::decodeName(folder.c_str()))) return;
  DownloadRequest request;
  request.connection = connection_;
  request.remoteDirectory = currentDirectory_;
  request.where = folder;
  QStringList refused;
  for (const int row : listing_->SelectedRows()) {
    const MWListItem& item = listing_->Rows().At(row);
    if (row < 2 || item.IsDots()) continue;
    if (!IsSafeLocalName(item.Name())) {
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
  if (!request.items.empty()) app_.Transfers().AddDownload(std::move(request));
}

void MWindow::ChooseUploads() {
  if (!openPanel_.isNull()) return;
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
