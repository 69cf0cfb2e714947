#pragma once

#include <gtest/gtest.h>

#include <QTest>
#include <QtWidgets>
#include <atomic>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "app/browser/DirListView.h"
#include "app/browser/MWindow.h"
#include "app/connect/StartWin.h"
#include "app/program/TambleApp.h"
#include "app/shared/Alerts.h"
#include "app/transfers/DownLoadWin.h"
#include "kit/Mutex.h"
#include "remote/Site.h"
#include "settings/ProcessSettings.h"

namespace corvane {

/// "CODE field=value ..." of a message's strings.
inline std::string Described(const Message& message) {
  std::string text;
  for (const int shift : {24, 16, 8, 0}) text += static_cast<char>(message.what >> shift);
  for (const std::string& name : message.Names()) {
    for (std::size_t i = 0; i < message.CountValues(name); ++i) {
      if (const auto value = message.FindString(name, i)) text += " " + name + "=" + *value;
    }
  }
  return text;
}

/// Keeps what a browser window asks of its connection, a line for each request.
class RecordingLooper : public Looper {
 public:
  explicit RecordingLooper(std::shared_ptr<BrowserUi> window)
      : Looper("recording"), window_(std::move(window)) {}
  [[nodiscard]] std::string Asked() {
    MutexLock hold(lock_);
    return asked_;
  }
  /// Tells the window that a request is carried out.
  void Finish(std::uint32_t request) {
    Message done("DONE"_what);
    done.AddInt32("request", static_cast<std::int32_t>(request));
    window_->PostMessage(std::move(done));
  }

  std::atomic<bool> busy{false};     ///< requests stay under way
  std::atomic<bool> connects{true};  ///< the server lets the user in

 protected:
  void MessageReceived(const Message& message) override {
    {
      MutexLock hold(lock_);
      asked_ += Described(message) + "\n";
    }
    if (message.what == "CNNT"_what && connects) window_->SetPath("");
    if (!busy) Finish(message.what);
  }

 private:
  const std::shared_ptr<BrowserUi> window_;
  Mutex lock_;
  std::string asked_ GUARDED_BY(lock_);
};

/// A transfer that moves nothing.
struct IdleTransfer : public MThread {
  IdleTransfer(std::shared_ptr<TransferUi> itsRow, transferStruct what,
               std::shared_ptr<JobBoard> jobs)
      : row(std::move(itsRow)), description(With(std::move(what), *jobs)), board(std::move(jobs)) {}
  std::int32_t Execute() override { return 0; }
  void CheckConnections() override { ++checked; }

  /// The jobs stand on the board alone.
  static transferStruct With(transferStruct what, const JobBoard& jobs) {
    EXPECT_TRUE(what.jobs.empty());
    for (JobBoard::Work& work : jobs.Chosen()) what.jobs.push_back(std::move(work.job));
    return what;
  }

  const std::shared_ptr<TransferUi> row;
  const transferStruct description;
  const std::shared_ptr<JobBoard> board;
  int checked = 0;  ///< how often it was told that the network may be another one
};

/// The application with one browser window open, and without servers: what its windows ask of
/// connections and transfers is recorded.
class AppFixture : public testing::Test {
 protected:
  AppFixture() {
    factory_.looper = [this](const Site& connection, std::shared_ptr<BrowserUi> window) {
      connections_.push_back(connection);
      link_ = std::move(window);
      looper_ = std::make_shared<RecordingLooper>(link_);
      looper_->busy = busy_;
      looper_->connects = connects_;
      return looper_;
    };
    factory_.transfer = [this](std::shared_ptr<TransferUi> row, transferStruct description,
                               std::shared_ptr<JobBoard> jobs) {
      transfers_.push_back(
          std::make_shared<IdleTransfer>(std::move(row), std::move(description), std::move(jobs)));
      return transfers_.back();
    };
    factory_.sameConnection = [this](const auto& looper, const auto& window, auto row,
                                     transferStruct description, auto jobs) {
      EXPECT_TRUE(looper == looper_ && window == link_);
      here_.push_back(
          std::make_shared<IdleTransfer>(std::move(row), std::move(description), std::move(jobs)));
      return here_.back();
    };
    factory_.speed = std::make_shared<TransferSpeed>();
    factory_.endKept = [this] { ++endedKept_; };
    qputenv("XDG_CONFIG_HOME", config_.path().toUtf8());
    AnswerAlerts();
    app_ = std::make_unique<TambleApp>(factory_);
    app_->ReadyToRun(With("OPNC"_what, "host", "server.test"));
    window_ = app_->WindowList().back();
    app_->Transfers().show();
    PutInFront(*window_);
    settings_.DwnldDir = folder_.path().toStdString();
    settings_.showwindow = false;  // keys go to the window in front
    settings_.transfersAtOnce = settings_.transfersPerServer = 100;
    ProcessSettings::Set(settings_);
    EXPECT_TRUE(Wait([&] { return IsReady(); }));
  }
  ~AppFixture() override {
    app_.reset();
    Alerts::AnswerWith({});
  }

  /// The described listing: "." and ".." lead it, and names are ordered by their bytes.
  void UseClassicStyle() {
    settings_.classicStyle = true;
    ProcessSettings::Set(settings_);
  }
  /// Records every alert from now on and presses `button_`.
  void AnswerAlerts() {
    Alerts::AnswerWith([this](const Alerts::Question& question) {
      alerts_.push_back(question);
      return button_;
    });
  }
  static void PutInFront(QWidget& window) {
    window.activateWindow();
    EXPECT_TRUE(QTest::qWaitForWindowActive(&window));
  }
  /// A command's key in the browser window.
  void Command(Qt::Key key) { QTest::keyClick(window_, key, Qt::ControlModifier); }
  [[nodiscard]] DirListView& View() const { return window_->Listing(); }
  /// Whether the window lets the user make requests.
  [[nodiscard]] bool IsReady() const {
    return window_->findChild<QPushButton*>("upload")->isEnabled();
  }
  /// Fills the window's listing, as its connection would.
  void List(std::vector<RemoteEntry> entries) {
    const auto* status = window_->findChild<QLabel*>("StatusString");
    const std::string mark = "listing " + std::to_string(++listings_);
    link_->BeginListing();
    const std::size_t count = entries.size();
    link_->AddEntries(std::move(entries));
    link_->EndListing(count, true);
    link_->SetStatus(Text::Raw(mark));
    ASSERT_TRUE(Wait([&] { return status->text().toStdString() == mark; }));
  }
  static bool Wait(const auto& until) { return QTest::qWaitFor(until, 5000); }
  static bool Gone(const auto& window) {
    return Wait([&] { return window.isNull(); });
  }
  /// Whether so many alerts came; the last one has been answered then.
  bool Alerted(std::size_t count) {
    const bool came = Wait([&] { return alerts_.size() == count; });
    QApplication::processEvents();
    return came && alerts_.size() == count;
  }
  /// Forgets transfers and alerts, and presses `button` on those to come.
  void Anew(int button = 0) {
    transfers_.clear();
    alerts_.clear();
    button_ = button;
  }
  /// Selects all but the dots.
  void SelectEntries() {
    View().SelectRow(View().Rows().At(0).IsDots() ? 2 : 0);
    QTest::keyClick(&View(), Qt::Key_End, Qt::ShiftModifier);
  }
  static QLineEdit& Line(const QWidget* window, const char* name) {
    return *window->findChild<QLineEdit*>(name);
  }
  /// Fills a field and presses Enter in it.
  static void Enter(QLineEdit* field, const QString& text) {
    field->setText(text);
    QTest::keyClick(field, Qt::Key_Return);
  }
  /// Whether one more transfer begins than `before`.
  bool Begins(std::size_t before = 0) {
    return Wait([&] { return transfers_.size() + here_.size() == before + 1; });
  }
  /// Whether `requests`, each on a line, are the last that the connection is asked for.
  [[nodiscard]] bool Asks(const std::string& requests) {
    return Wait([&] { return looper_->Asked().ends_with("\n" + requests + "\n"); });
  }
  static Message With(std::uint32_t what, const std::string& name, const std::string& text) {
    Message message(what);
    message.AddString(name, text);
    return message;
  }
  static RemoteEntry File(const std::string& name, std::int64_t size = 1, int day = 1) {
    constexpr std::int64_t kDay = 86'400;
    return {.name = name, .size = size, .modified = RemoteTime{.seconds = (day - 1) * kDay}};
  }
  static RemoteEntry Folder(const std::string& name) {
    return {.name = name, .kind = RemoteEntry::Kind::Directory};
  }
  static RemoteEntry Link(const std::string& name) {
    return {.name = name, .kind = RemoteEntry::Kind::Link, .mode = "lrwxrwxrwx"};
  }
  /// What a transfer moves: for each job "remote>local" of a download, "remote/>local" of a
  /// directory, "local>remote" of an upload, and its policy: + creates, ! replaces, & goes on,
  /// ? skips, ^ replaces what is older, = keeps both.
  static std::string Jobs(const transferStruct& what) {
    std::string jobs;
    for (const TransferJob& job : what.jobs) {
      jobs += jobs.empty() ? "" : " ";
      const char* to = job.kind == RemoteEntry::Kind::Directory ? "/>" : ">";
      jobs += what.download ? job.remote + to + job.local : job.local + to + job.remote;
      jobs += "+!&?^="[static_cast<std::size_t>(job.policy)];
    }
    return jobs;
  }
  /// What the only transfer moves, local names of the download folder without it; "" without one.
  [[nodiscard]] std::string Moved() const {
    EXPECT_LE(transfers_.size(), 1U);
    if (transfers_.empty()) return "";
    const auto jobs = QString::fromStdString(Jobs(transfers_[0]->description));
    return QString(jobs).remove(folder_.path()).toStdString();
  }

  QTemporaryDir config_;
  QTemporaryDir folder_;
  SettingsValues settings_;
  std::shared_ptr<RecordingLooper> looper_;
  std::shared_ptr<BrowserUi> link_;
  std::vector<std::shared_ptr<IdleTransfer>> transfers_;
  std::vector<std::shared_ptr<IdleTransfer>> here_;  // on a browser window's own connection
  bool busy_ = false;     // the requests of the next connection stay under way
  bool connects_ = true;  // the next connection comes about
  std::vector<Site> connections_;
  std::vector<Alerts::Question> alerts_;
  int button_ = 0;  // pressed on every alert
  WorkerFactory factory_;
  int endedKept_ = 0;  // how often connections that are kept were to end
  std::unique_ptr<TambleApp> app_;
  QPointer<MWindow> window_;

 private:
  int listings_ = 0;
};

}  // namespace corvane
