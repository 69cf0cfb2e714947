// What it costs to show many transfers, and whether the window answers meanwhile.

#include <QApplication>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QScrollBar>
#include <QTemporaryDir>
#include <QTimer>
#include <algorithm>
#include <atomic>
#include <cstdio>
#include <ctime>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "app/program/TambleApp.h"
#include "app/transfers/DownLoadWin.h"
#include "settings/ProcessSettings.h"

namespace {

using Row = std::shared_ptr<corvane::TransferUi>;

/// Moves nothing; its row is moved from outside.
struct Idle final : corvane::MThread {
  std::int32_t Execute() override { return 0; }
};

double GuiSeconds() {
  timespec now{};
  ::clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
  return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) / 1e9;
}

void Spend(int milliseconds) {
  QEventLoop loop;
  QTimer::singleShot(milliseconds, &loop, &QEventLoop::quit);
  loop.exec();
}

void Add(corvane::DownLoadWin& window, int count) {
  for (int i = 0; i < count; ++i) {
    corvane::transferStruct download;
    download.site.host = "server.test";
    download.targetFolder = "/home/somebody/Downloads/a rather long name of a folder/and one below";
    download.jobs.push_back({.remote = "/file " + std::to_string(i),
                             .local = download.targetFolder + "/file " + std::to_string(i)});
    window.Add(std::move(download), {});
  }
}

/// What 200 buffers and 20 files a second do to each row.
void Move(const std::vector<Row>& rows, const std::atomic<bool>& stop) {
  for (int turn = 1; !stop; ++turn) {
    for (const Row& row : rows) {
      corvane::TransferProgress& progress = row->Progress();
      progress.total = 100'000'000;
      progress.there = (progress.there + 65'536) % progress.total;
      progress.elapsed += 5'000;
      progress.changed = true;
      if (turn % 10 == 0) row->BeginFile("file number " + std::to_string(turn));
    }
    std::this_thread::sleep_for(std::chrono::milliseconds(5));
  }
}

void ShowShare(const char* what, int seconds) {
  const double before = GuiSeconds();
  Spend(seconds * 1000);
  std::printf("%-28s %6.1f %% of a core\n", what, (GuiSeconds() - before) / seconds * 100);
}

double Milliseconds(const QElapsedTimer& timer) {
  return static_cast<double>(timer.nsecsElapsed()) / 1e6;
}

double WorstScrollStep(corvane::DownLoadWin& window) {
  double worst = 0;
  QScrollBar* bar = window.List().verticalScrollBar();
  for (int at = 0; at < bar->maximum(); at += std::max(1, bar->maximum() / 300)) {
    QElapsedTimer step;
    step.start();
    bar->setValue(at);
    QApplication::processEvents();
    worst = std::max(worst, Milliseconds(step));
  }
  return worst;
}

}  // namespace

int main(int argc, char** argv) {
  const QTemporaryDir config;
  qputenv("XDG_CONFIG_HOME", config.path().toUtf8());
  QApplication qt(argc, argv);
  std::vector<Row> rows;
  corvane::WorkerFactory factory;
  factory.transfer = [&rows](Row row, const corvane::transferStruct&) {
    rows.push_back(std::move(row));
    return std::make_shared<Idle>();
  };
  corvane::TambleApp app(factory);
  app.ReadyToRun();
  corvane::SettingsValues settings = corvane::ProcessSettings::Get();
  settings.showwindow = false;
  corvane::ProcessSettings::Set(settings);
  corvane::DownLoadWin& window = app.Transfers();
  window.resize(350, 900);
  ShowShare("no rows", 3);

  std::atomic<bool> stop = false;
  Add(window, 200);
  {
    std::jthread driver([&] { Move(rows, stop); });
    ShowShare("200 rows moving", 6);
    stop = true;
  }
  Add(window, 800);
  window.hide();
  Spend(200);
  stop = false;
  std::jthread driver([&] { Move(rows, stop); });
  QElapsedTimer shown;
  shown.start();
  window.show();
  QApplication::processEvents();
  std::printf("%-28s %6.1f ms\n", "1,000 rows: shown after", Milliseconds(shown));
  Spend(300);
  std::printf("%-28s %6.1f ms\n", "1,000 rows: worst scroll step", WorstScrollStep(window));
  ShowShare("1,000 rows moving", 4);
  stop = true;
}
