// What a browser window asks to have moved, and where that is done.

#include <QCheckBox>
#include <QFile>
#include <QFileDialog>
#include <QFileInfo>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

#include "app/browser/DirListView.h"
#include "app/browser/MWindow.h"
#include "app/browser/UploadPanel.h"
#include "app/program/TambleApp.h"
#include "app/shared/ScreenText.h"
#include "app/shared/Windows.h"
#include "app/transfers/DownLoadWin.h"
#include "app/transfers/TransferPane.h"
#include "settings/ProcessSettings.h"
#include "util/Beneath.h"

namespace corvane {
namespace {

std::optional<std::string> DownloadFolder() {
  const std::string folder = ProcessSettings::Get().DwnldDir;
  if (folder.empty() || folder == "empty" || !QFileInfo::exists(QFile::decodeName(folder.c_str())))
    return {};
  return folder;
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
  QStringList refused;
  DownloadRequest request = RequestForSelection(refused);
  WarnOfNames(refused);
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
    DownloadSeveral(std::move(request));
  }
}

// A name that cannot be a local one may still get another in the panel where it is alone.
DownloadRequest MWindow::RequestForSelection(QStringList& refused) {
  DownloadRequest request;
  request.connection = connection_;
  request.remoteDirectory = currentDirectory_;
  request.window = this;
  const std::vector<int> rows = listing_->SelectedRows();
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
  return request;
}

void MWindow::WarnOfNames(const QStringList& refused) {
  if (refused.isEmpty()) return;
  Warn(tr("These names cannot be names of local files and are left out:") + "\n\n" +
       refused.join('\n'));
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
            DownloadSeveral(std::move(request));
          });
  ShowPanel(openPanel_);
}

void MWindow::ChooseUploads() {
  if (!openPanel_.isNull()) return BringForward(openPanel_);
  auto* panel = new UploadPanel(this);
  connect(panel, &UploadPanel::Chosen, this, qOverload<const QStringList&>(&MWindow::Upload));
  openPanel_ = panel;
  ShowPanel(panel);
}

void MWindow::Upload(const QStringList& paths) {
  std::vector<std::string> raw;
  for (const QString& path : paths) raw.push_back(LocalPath(path));
  Upload(std::move(raw));
}

void MWindow::Upload(std::vector<std::string> paths) {
  if (paths.empty()) return;
  UploadRequest request;
  request.connection = connection_;
  request.remoteDirectory = currentDirectory_;
  request.window = this;
  request.localItems = std::move(paths);
  HandOver(std::move(request));
}

void MWindow::HandOver(DownloadRequest request) {
  if (sameConnection_->isChecked()) return TransferHere(Description(std::move(request)));
  app_.Transfers().AddDownload(std::move(request));
}

void MWindow::HandOver(UploadRequest request) {
  if (sameConnection_->isChecked()) return TransferHere(Description(std::move(request)));
  app_.Transfers().AddUpload(std::move(request));
}

// The commands are disabled while a transfer runs here, but a panel may still be open.
void MWindow::TransferHere(transferStruct description) {
  if (looper_ == nullptr || pane_->Busy()) {
    return Warn(tr("This connection is busy with another transfer."));
  }
  listing_->DisableAll();
  pane_->Begin(std::make_unique<TransferItem>(connection_, std::move(description), this),
               [this](std::shared_ptr<TransferUi> row, transferStruct what) {
                 return app_.Workers().sameConnection(looper_, std::move(row), std::move(what));
               });
}

void MWindow::TransferSettled(const TransferItem& item) {
  listing_->EnableAll();
  app_.Notifications().Ended(item);
  if (item.Failed()) LogLater(item.FailureLine().toStdString() + "\n");
}

}  // namespace corvane
