#include <utility>

#include "app/desktop/Reveal.h"
#include "app/program/TambleApp.h"
#include "app/transfers/DownLoadWin.h"
#include "app/transfers/TransferPane.h"
#include "settings/ProcessSettings.h"

namespace corvane {

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
  if (transfers_ != nullptr && !quitting_) transfers_->TryAllNow();
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

void TambleApp::RevealFile(QWidget* window, const std::string& path) {
  Reveal::Show(window, path);
}

}  // namespace corvane
