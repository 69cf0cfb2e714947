#include "AppFixture.h"

#include <QLabel>

#include "app/DirListView.h"
#include "app/MWindow.h"
#include "settings/ProcessSettings.h"

namespace corvane {

AppFixture::AppFixture() {
  WorkerFactory factory;
  factory.looper = [this](const Connection&, std::shared_ptr<BrowserUi> window) {
    link_ = std::move(window);
    looper_ = std::make_shared<RecordingLooper>();
    return looper_;
  };
  factory.transfer = [this](const Connection& to, std::shared_ptr<TransferUi> row,
                            transferStruct description) {
    auto worker = std::make_shared<IdleWorker>();
    transfers_.push_back({to, std::move(row), std::move(description), worker});
    return worker;
  };
  SettingsValues settings;
  settings.DwnldDir = folder_.path().toStdString();
  settings.showwindow = false;  // keys go to the window in front
  ProcessSettings::Set(settings);
  Press(0);
  app_ = std::make_unique<TambleApp>(std::move(factory));
  app_->ReadyToRun();
}

AppFixture::~AppFixture() {
  app_.reset();
  Alerts::AnswerWith({});
  ProcessSettings::Set({});
}

MWindow& AppFixture::OpenBrowser() {
  Message open("OPNC"_what);
  open.AddString("host", "server.test");
  app_->PostMessage(open);
  return *app_->WindowList().back();
}

void AppFixture::List(const std::vector<fileStruct>& entries) {
  const auto* status = app_->WindowList().back()->findChild<QLabel*>("StatusString");
  const std::string mark = "listing " + std::to_string(++listings_);
  link_->BeginListing();
  link_->AddEntries(entries);
  link_->EndListing(entries.size() - 2);
  link_->SetStatus(mark);
  ASSERT_TRUE(Wait([&] { return status->text().toStdString() == mark; }));
}

void AppFixture::Press(int button) {
  Alerts::AnswerWith([this, button](const Alerts::Question& question) {
    alerts_.push_back(question);
    return button;
  });
}

fileStruct AppFixture::File(const std::string& name, std::int64_t size, int day) {
  fileStruct entry;
  entry.name = name;
  entry.type = kFile;
  entry.size = size;
  entry.time.tm_year = 99;
  entry.time.tm_mday = day;
  entry.permissions = "-rw-r--r--";
  entry.owner = "joe";
  entry.group = "users";
  return entry;
}

fileStruct AppFixture::Directory(const std::string& name) {
  fileStruct entry = File(name, kDirectorySize);
  entry.type = kDirectory;
  return entry;
}

std::vector<fileStruct> AppFixture::WithDots(std::vector<fileStruct> entries) {
  for (const char* name : {"..", "."}) {
    fileStruct entry;
    entry.name = name;
    entries.insert(entries.begin(), entry);
  }
  return entries;
}

}  // namespace corvane
