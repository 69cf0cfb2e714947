#include <utility>

#include <QFile>
#include <QStandardPaths>
#include "app/desktop/DiffProgram.h"
#include "app/desktop/Reveal.h"
#include "app/desktop/TextEditor.h"
#include "app/edited/EditedWindow.h"
#include "app/entries/FindWindow.h"
#include "app/entries/PropertiesWindow.h"
#include "app/program/TambleApp.h"
#include "app/shared/Frames.h"
#include "app/shared/GuiThread.h"
#include "app/shared/Windows.h"
#include "app/transfers/DownLoadWin.h"
#include "app/transfers/TransferPane.h"
#include "kit/Background.h"
#include "settings/ProcessSettings.h"

namespace corvane {
namespace {

/// Where the copies of edited files stand; "" where the environment names no folder for them.
std::string EditedFolder() {
  const QString data = QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation);
  return data.isEmpty() ? "" : QFile::encodeName(data + "/corvane/edited").toStdString();
}
constexpr QPoint kBeside(10, 60);  // from the right corner of a browser window

}  // namespace

void TambleApp::Transfer(transferStruct description, TransferListener listener) {
  transfers_->Add(std::move(description), std::move(listener));
}

TransferView* TambleApp::MakeTransferView(QWidget* parent) {
  auto* view = new TransferPane(parent);
  connect(view, &TransferView::Settled, this, &TambleApp::TransferEnded);
  return view;
}

// A password that nobody has kept may stand in the keyring all the same; else the user is asked.
void TambleApp::CompleteSite(QWidget* window, const Site& site,
                             std::function<void(std::optional<Site>)> found) {
  Site whole = site;
  Furnish(whole);
  if (whole.user.empty() || whole.user == "anonymous") {
    whole.password = ProcessSettings::Get().DfltPass;
  } else if (whole.password.empty() && !whole.asksPassword) {
    whole.keptPassword = true;
  }
  passwords_.Find(window, whole,
                  [this, found = std::move(found)](std::optional<Site> given, bool keep) {
                    if (given.has_value() && keep)
                      passwords_.Keep(*given, [](const Text& /*word*/) {});
                    found(std::move(given));
                  });
}

void TambleApp::OpenFile(QWidget* window, const std::string& path) {
  Reveal::Open(window, path);
}

void TambleApp::NetworkReturned() {
  if (quitting_) return;
  if (workers_.endKept) workers_.endKept();
  if (transfers_ == nullptr) return;
  transfers_->TryAllNow();
  edited_->Files().TryAllNow();
}

// What was to be sent of edited files is offered in their own window.
void TambleApp::MakeEdited(std::vector<QueueStore::Row>& kept) {
  const std::string folder = EditedFolder();
  edited_ = std::make_unique<EditedWindow>(*this, folder);
  std::erase_if(kept, [this, &folder](const QueueStore::Row& row) {
    const bool theirs = !folder.empty() && row.what.targetFolder.starts_with(folder + "/");
    if (theirs) queue_->RowRemoved(row.id);
    return theirs;
  });
  edited_->Files().Restore();
}

void TambleApp::OpenRemote(std::vector<EditRequest> requests) {
  edited_->Open(std::move(requests));
}

void TambleApp::TryTransfersNow() {
  transfers_->TryAllNow();
}

void TambleApp::CancelTransfers(const std::string& folder) {
  transfers_->CancelThoseOf(folder);
}

void TambleApp::EditFile(QWidget* window, const std::string& path) {
  TextEditor::Open(window, path, ProcessSettings::Get().editor);
}

void TambleApp::FindDiffProgram(std::function<void(std::string)> found) {
  const auto look = [found] { OnGuiThread([found, name = DiffProgram::Find()] { found(name); }); };
  if (!Background::Start("look", look)) found("");
}

void TambleApp::CompareFiles(QWidget* window, const std::string& program, const std::string& one,
                             const std::string& other) {
  DiffProgram::Show(window, program, one, other);
}

void TambleApp::FollowSettings() {
  constexpr std::int64_t kKilo = 1000;
  const SettingsValues settings = ProcessSettings::Get();
  if (workers_.speed != nullptr) {
    workers_.speed->down.Set(settings.downloadLimit * kKilo);
    workers_.speed->up.Set(settings.uploadLimit * kKilo);
  }
  transfers_->FollowSettings();
}

void TambleApp::ShowProperties(EntriesHost& host, const std::string& directory,
                               std::vector<RemoteEntry> entries, QWidget* browser) {
  auto* window = new PropertiesWindow(host, directory, std::move(entries), browser);
  window->move(
      Frames::OnScreen(QRect(browser->frameGeometry().topRight() + kBeside, window->sizeHint()))
          .topLeft());
  BringForward(window);
}

void TambleApp::ShowFind(EntriesHost& host, const std::string& directory, QWidget* browser) {
  auto* window = new FindWindow(host, directory, browser);
  Frames::PutBelow(*window, *browser);
  BringForward(window);
}

void TambleApp::RevealFile(QWidget* window, const std::string& path) {
  Reveal::Show(window, path);
}

}  // namespace corvane
