#include "AppFixture.h"
#include "app/browser/BrowserSession.h"
#include "app/desktop/Reveal.h"
#include "app/shared/Figures.h"
#include "app/shared/Pace.h"
#include "app/shared/StatusLine.h"
#include "app/transfers/PaceMeter.h"
#include "app/transfers/TransferTexts.h"
#include "queue/QueueStore.h"

namespace corvane {
namespace {

class Transfers : public AppFixture {
 protected:
  Transfers() : transferWindow_(app_->Transfers()), list_(transferWindow_.List()) {
    list_.setFocus();
    PutInFront(transferWindow_);
  }

  TransferItem& Start(const std::string& host = "server.test", const std::string& name = "file") {
    transferStruct download;
    download.site.host = host;
    download.targetFolder = "/d";
    download.size = 1000;
    download.jobs.push_back({.remote = "/remote", .local = "/d/" + name});
    transferWindow_.Add(std::move(download), {});
    return list_.Items().At(list_.Items().Count() - 1);
  }
  void Select(std::initializer_list<int> rows) {
    list_.clearSelection();
    for (const int row : rows) {
      list_.selectionModel()->select(list_.Items().index(row), QItemSelectionModel::Select);
    }
  }
  void End(std::size_t transfer, TransferEnd state, const char* why = "") {
    transfers_[transfer]->row->SetEndState(state, Text::Raw(why));
    ASSERT_TRUE(Wait([&] { return !list_.Items().At(static_cast<int>(transfer)).Running(); }));
  }
  /// The colour of the last row's bar near its left end.
  QColor BarColour() {
    list_.scrollToBottom();
    const QRect area = list_.visualRect(list_.Items().index(list_.Items().Count() - 1));
    const TransferItem& item = list_.Items().At(list_.Items().Count() - 1);
    const QRect bar = TransferRow(item, area, list_.fontMetrics()).Bar();
    return list_.viewport()->grab().toImage().pixelColor(bar.left() + 4, bar.center().y());
  }

  DownLoadWin& transferWindow_;
  TransferListView& list_;
};

TEST_F(Transfers, TheDesktopIsToldOnceWhileTheUserIsElsewhere) {
  QStringList shown;
  Notifier notifier(
      {[&](const QString& summary, const QString& body) { shown << summary + "|" + body; },
       [&] { shown << "taken"; }});
  const auto end = [&](std::initializer_list<TransferEnd> ends) {
    for (const TransferEnd each : ends) {
      const TransferItem& item = Start();
      transfers_.back()->row->BeginFile("<b>file");
      End(transfers_.size() - 1, each, "550 No.");
      notifier.Ended(item.News());
    }
  };
  using enum TransferEnd;
  end({Finished});
  QWidget notTheLast;  // with which the program would end
  notTheLast.show();
  PutInFront(transferWindow_);
  for (QWidget* window : QApplication::topLevelWidgets()) {
    if (window != &notTheLast) window->hide();
  }
  end({Cancelled, Failed});
  EXPECT_TRUE(Wait([&] { return shown == QStringList("Download failed|<b>file: 550 No."); }));
  end({Finished, Cancelled, Finished});
  EXPECT_TRUE(Wait([&] { return shown.last() == "3 transfers ended|2 finished, 1 failed."; }));
  transferWindow_.show();
  Q_EMIT qGuiApp->focusWindowChanged(transferWindow_.windowHandle());
  EXPECT_EQ(shown.size(), 3);
}

TEST_F(Transfers, EveryEndShowsItsColourAndItsReason) {
  settings_.classicStyle = true;
  ProcessSettings::Set(settings_);
  const QColor good(0, 0, 154);
  const QColor bad(228, 0, 0);
  const std::tuple<TransferEnd, const char*, QColor, QString> cases[] = {
      {TransferEnd::Finished, "", good, "Finished"},
      {TransferEnd::Failed, "550 No such file.", bad, "550 No such file."},
      {TransferEnd::Failed, "", bad, "The transfer failed."},
      {TransferEnd::Cancelled, "", bad, "Cancelled."},
  };
  for (const auto& [end, why, colour, shown] : cases) {
    const TransferItem& item = Start();
    TransferProgress& progress = transfers_.back()->row->Progress();
    progress.there = 500;  // what was there before counts for the total, not for the rate
    progress.moved = 200;
    progress.elapsed = 2'000'000;
    EXPECT_EQ(TransferTexts(item).Words().figure, "100 bytes/sec");
    EXPECT_EQ(BarColour(), QColor(0, 152, 51));
    End(transfers_.size() - 1, end, why);
    EXPECT_EQ(BarColour(), colour);
    EXPECT_EQ(TransferTexts(item).Words().pace, "500/1000");
    EXPECT_TRUE(TransferTexts(item).Summary().contains(shown)) << shown.toStdString();
  }
  EXPECT_FALSE(list_.Ticking());
}

TEST_F(Transfers, CancelsWhatRunsAndRemovesWhatHasEnded) {
  for (const char* host : {"0", "1", "2", "3", "4", "5"}) Start(host);
  for (const std::size_t row : {1U, 3U, 5U}) End(row, TransferEnd::Finished);
  Select({2, 3, 4});
  QTest::keyClick(&list_, Qt::Key_Backspace);
  ASSERT_EQ(alerts_.size(), 1U);
  EXPECT_EQ(alerts_[0].text, "You need to cancel the transfer to remove this item.");
  Select({0, 1, 3, 5});
  QTest::keyClick(&transferWindow_, Qt::Key_Period, Qt::ControlModifier);
  EXPECT_TRUE(transfers_[0]->Cancelled() && list_.Items().At(0).Failed());
  EXPECT_EQ(list_.Items().RunningCount(), 2);
  ASSERT_EQ(list_.Items().Count(), 6);
  transfers_[0]->row->SetEndState(TransferEnd::Finished, {});  // the worker knows better
  EXPECT_TRUE(Wait([&] { return list_.Items().At(0).Finished(); }));
  Select({0, 1, 3});
  QTest::keyClick(&list_, Qt::Key_Backspace);
  std::string left;
  for (int row = 0; row < list_.Items().Count(); ++row) {
    left += TransferTexts(list_.Items().At(row)).ServerLine().toStdString() + " ";
  }
  EXPECT_EQ(left, "Server: 2 Server: 4 Server: 5 ");
  EXPECT_EQ(list_.SelectedRows(), std::vector<int>{1});
}

TEST_F(Transfers, NotesReachTheTooltipAndTheLogOfTheAskingWindow) {
  const auto text = [&](int role) {
    return list_.Items().data(list_.Items().index(0), role).toString();
  };
  List({File("last")});
  window_->MessageReceived(With("DWLD"_what, "FileName", "last"));
  ASSERT_TRUE(Begins());
  TransferUi& row = *transfers_[0]->row;
  row.BeginFile("last");
  for (int note = 1; note <= 25; ++note) row.NoteEntry(Text("<b>%1: left", note));
  End(0, TransferEnd::Failed, "25 entries failed.");
  EXPECT_TRUE(text(Qt::ToolTipRole).contains("25 entries failed.\n&lt;b&gt;1: left\n"));
  EXPECT_TRUE(text(Qt::ToolTipRole).contains("20: left\nand 5 more"));
  const auto* log = window_->findChild<QPlainTextEdit*>("TextLog");
  EXPECT_TRUE(Wait([&] { return log->toPlainText().count(": left") == 25; }));
  Select({0});
  transferWindow_.MessageReceived(Message("RTRY"_what));
  ASSERT_EQ(transfers_.size(), 2U);
  EXPECT_FALSE(list_.Items().At(0).HasNotes()) << "it is tried once more";
  transfers_[1]->row->NoteEntry(Text("%1: kept", "a"));
  transfers_[1]->row->SetEndState(TransferEnd::Finished, {});
  EXPECT_TRUE(Wait([&] { return text(Qt::AccessibleTextRole).contains("Done, 1 left out"); }));
  EXPECT_TRUE(Wait([&] { return log->toPlainText().contains("a: kept"); }));
}

TEST_F(Transfers, TheMenuOfARowRevealsWhatWasDownloaded) {
  Start("server.test", "a \xFC");
  transferWindow_.Add({.targetFolder = "/d", .jobs = {{"/1", "/d/1"}, {"/2", "/d/2"}}}, {});
  std::string working;
  QByteArray asked;
  Reveal::Use({[&](const QUrl& entry, const auto& then) {
                 asked = entry.toEncoded();
                 then(working == "manager");
               },
               [&](const QUrl& folder) {
                 asked += " " + folder.toEncoded();
                 return working == "folder";
               }});
  // The row, what answers, and what was asked by the last item of its menu.
  const std::tuple<int, const char*, const char*> cases[] = {
      {0, "manager", "file:///d/a%20%FC"},
      {0, "folder", "file:///d/a%20%FC file:///d"},
      {1, "", "file:///d/ file:///d"},
  };
  for (const auto& [row, answers, requests] : cases) {
    working = answers;
    QTest::mouseClick(list_.viewport(), Qt::LeftButton, {},
                      list_.visualRect(list_.Items().index(row)).center());
    list_.SetupPopUpMenu()->actions().last()->trigger();
    EXPECT_EQ(asked.toStdString(), requests);
  }
  ASSERT_EQ(alerts_.size(), 1U);
  EXPECT_EQ(alerts_[0].detail, "/d/");
  Reveal::Use(Reveal::Desktop());
}

TEST_F(Transfers, FinishedOnesLeaveByThemselvesWhereAsked) {
  settings_.removeItem = true;
  ProcessSettings::Set(settings_);
  for (int i = 0; i < 2; ++i) Start();
  End(0, TransferEnd::Failed);
  transfers_[1]->row->SetEndState(TransferEnd::Finished, {});
  EXPECT_TRUE(Wait([&] { return list_.Items().Count() == 1; }));
  EXPECT_TRUE(list_.Items().At(0).Failed());
}

TEST_F(Transfers, SizesAndTimesAreReadAsPeopleSayThem) {
  QLocale::setDefault(QLocale::c());
  const std::pair<std::int64_t, const char*> sizes[] = {{0, "0 B"},
                                                        {999, "999 B"},
                                                        {1000, "1.0 kB"},
                                                        {22'900, "22.9 kB"},
                                                        {999'949, "999.9 kB"},
                                                        {999'960, "1.0 MB"},
                                                        {209'700'000, "209.7 MB"}};
  for (const auto& [bytes, text] : sizes) EXPECT_EQ(ShortSize(bytes), text);
  EXPECT_EQ(ShortSizeOf(12'400'000, 912'000'000), "12.4 of 912.0 MB");
  const std::tuple<double, std::int64_t, const char*> paces[] = {
      {0, 10, ""},
      {1.8e6, -1, "1.8 MB/s"},
      {1e6, 25'000'000, "1.0 MB/s, 25 s left"},
      {1e6, 75'000'000, "1.0 MB/s, about 1 min left"},
      {1e6, 7'200'000'000, "1.0 MB/s, about 2 h left"}};
  for (const auto& [rate, left, text] : paces) EXPECT_EQ(PaceText(rate, left), text);
}

TEST_F(Transfers, ASecondRunGoesOnWithTheJobsThatAreLeft) {
  // How the first run ended, whether the user has it begin again, and the jobs of the second.
  const std::tuple<TransferEnd, bool, int> cases[] = {
      {TransferEnd::Failed, true, 2},
      {TransferEnd::Again, false, 1},
      {TransferEnd::Cancelled, true, 2},
  };
  for (const auto& [end, retries, jobs] : cases) {
    Anew();
    transferWindow_.Add({.site = {.host = "server.test"},
                         .jobs = {{.remote = "/a", .local = "/d/a", .size = 10},
                                  {.remote = "/b", .local = "/d/b", .size = 20},
                                  {.remote = "/c", .local = "/d/c", .size = 30}}},
                        {});
    const int row = list_.Items().Count() - 1;
    TransferItem& item = list_.Items().At(row);
    JobBoard& board = *transfers_[0]->board;
    board.Begin(false);
    for (const JobState state : {JobState::Done, JobState::Failed}) {
      (void)board.End(board.Take(kNoJob).value().id, state);
    }
    transfers_[0]->row->SetEndState(end, Text("Lost."));
    ASSERT_TRUE(Wait([&] { return !item.Running(); }));
    Select({row});
    transferWindow_.MessageReceived(Message(retries ? "RTRY"_what : "TRYN"_what));
    ASSERT_EQ(transfers_.size(), 2U);
    EXPECT_EQ(board.Ready(), jobs);
    EXPECT_EQ(TransferTexts(item).Words().figure, "10 of 60 B");
    EXPECT_EQ(transferWindow_.windowTitle(), QString::fromUtf8("Transfer List – 1 running"));
    transfers_[1]->row->SetEndState(TransferEnd::Finished, {});
    ASSERT_TRUE(Wait([&] { return item.Finished(); }));
  }
}

TEST_F(Transfers, EveryRowSaysHowItStands) {
  settings_.transfersPerServer = 2;
  settings_.firstRetry = 60;
  ProcessSettings::Set(settings_);
  for (int row = 0; row < 6; ++row) Start(row == 5 ? "other.test" : "server.test");
  ASSERT_EQ(transfers_.size(), 3U);
  const auto state = [&](int row) {
    const TransferWords words = TransferTexts(list_.Items().At(row)).Words();
    return (words.state + "|" + words.pace).toStdString();
  };
  const auto* status = transferWindow_.findChild<StatusLine*>();
  EXPECT_EQ(status->Text(), "3 running, 3 waiting");
  EXPECT_EQ(state(3), "Waiting, 1 before it|");
  Select({4});
  QTest::keyClick(&list_, Qt::Key_Up, Qt::AltModifier);
  EXPECT_EQ(state(4), "Waiting, 2 before it|");
  const Text reset("Connection reset by peer");
  transfers_[0]->row->SetEndState(TransferEnd::Again, Text("The connection was lost: %1", reset));
  EXPECT_TRUE(Wait([&] { return state(0) == "Trying again in 60 s (1 of 5): connection lost|"; }));
  EXPECT_EQ(TransferTexts(list_.Items().At(0)).Details(),
            "The connection was lost: Connection reset by peer");
  ASSERT_EQ(transfers_.size(), 4U) << "the next one has its turn";
  transferWindow_.MessageReceived(Message("PAUS"_what));
  EXPECT_EQ(state(3), "Paused|") << "the one that was moved up";
  TransferProgress& progress = transfers_[1]->row->Progress();
  progress.allFiles = 128;
  progress.files = 41;
  progress.planning = true;
  EXPECT_EQ(state(1), "From server.test, 41 of 128 files so far|");
  const auto now = std::chrono::steady_clock::now().time_since_epoch();
  progress.moved = 5000;
  progress.heard = std::chrono::duration_cast<std::chrono::milliseconds>(now).count() - 12'500;
  EXPECT_EQ(state(1), "Stalled for 12 s|");
  progress.planning = false;
  progress.proof = Proof::Sha256;
  End(1, TransferEnd::Finished);
  EXPECT_TRUE(state(1).ends_with(" files, verified (SHA-256)|")) << state(1);
  transfers_[2]->row->Progress().proof = Proof::Size;
  transfers_[2]->row->SetEndState(TransferEnd::Finished, {});
  EXPECT_TRUE(Wait([&] { return state(5) == "Done, size checked|"; }));
  app_->NetworkReturned();
  EXPECT_EQ(endedKept_, 1);
  EXPECT_EQ(transfers_[3]->checked, 1) << "it runs";
  EXPECT_EQ(transfers_[0]->checked, 0);
  EXPECT_EQ(state(0), "Waiting for its turn|");
  QTest::mouseClick(transferWindow_.findChild<QToolButton*>("pauseAll"), Qt::LeftButton);
  EXPECT_EQ(status->Text(), "4 paused");
  EXPECT_EQ(transferWindow_.findChild<QToolButton*>("pauseAll")->text(), "Resume All");
}

TEST_F(Transfers, ThePaceIsTheMeanOfTheLastThreeSeconds) {
  using std::chrono::milliseconds;
  PaceMeter meter;
  PaceMeter::Time now{};
  const auto feed = [&](std::int64_t from, std::int64_t step, int tenths) {
    for (int i = 0; i < tenths; ++i) meter.Feed(from += step, now += milliseconds(100));
    return from;
  };
  std::int64_t moved = feed(0, 0, 50);
  meter.Feed(moved += 1000, now += milliseconds(100));
  EXPECT_EQ(meter.Rate(), 0) << "too little is known";
  moved = feed(moved, 100'000, 10);
  EXPECT_NEAR(meter.Rate(), 1e6, 1) << "the time before the first byte does not count";
  moved = feed(moved, 200'000, 15);
  EXPECT_NEAR(meter.Rate(), 1.6e6, 1e3);
  moved = feed(moved, 200'000, 30);
  EXPECT_NEAR(meter.Rate(), 2e6, 1);
  moved = feed(moved, 0, 31);
  EXPECT_EQ(meter.Rate(), 0);
}

TEST_F(Transfers, WhatWasLeftComesBackPausedAndGoesOn) {
  const std::string path = config_.filePath("queue.sqlite").toStdString();
  const auto begin = [&] {
    app_.reset();
    Anew();
    app_ =
        std::make_unique<TambleApp>(factory_, nullptr, nullptr, std::make_shared<QueueStore>(path));
    app_->ReadyToRun();
    ProcessSettings::Set(settings_);
  };
  const auto rows = [&] {
    std::string text;
    const TransferModel& items = app_->Transfers().List().Items();
    for (int row = 0; row < items.Count(); ++row) {
      const TransferTexts texts(items.At(row));
      text += (texts.Name() + ": " + texts.Words().state + "\n").toStdString();
    }
    return text;
  };
  begin();
  EXPECT_FALSE(app_->Transfers().isVisible());
  const Site site{.host = "h", .user = "u", .password = "typed"};
  for (const char* name : {"one", "two", "done"}) {
    app_->Transfers().Add({.site = site,
                           .targetFolder = "/d",
                           .jobs = {{std::string("/") + name, std::string("/d/") + name,
                                     RemoteEntry::Kind::Directory}}},
                          {});
  }
  app_->Transfers().Add(
      {.site = {.host = "h", .user = "anonymous"}, .jobs = {{"/three", "/d/three"}}}, {});
  JobBoard& board = *transfers_[0]->board;
  board.Begin(false);
  board.Open(board.Take(kNoJob).value(), "/one", {{"a", "a"}, {"b", "b"}, {"c", "c"}});
  (void)board.End(board.Take(kNoJob).value().id, JobState::Done);
  transfers_[2]->row->SetEndState(TransferEnd::Finished, {});
  EXPECT_TRUE(Wait([&] { return app_->Transfers().List().Items().At(2).Finished(); }));
  button_ = 0;
  app_->QuitRequested();
  ASSERT_TRUE(Alerted(1));
  EXPECT_EQ(alerts_[0].detail, "3 transfers are paused, and can be resumed after the next start.");
  begin();
  EXPECT_EQ(rows(), "one: Paused, 1 of 3 files\ntwo: Paused\nthree: Paused\n");
  EXPECT_TRUE(app_->Transfers().isVisible());
  auto* all = app_->Transfers().findChild<QToolButton*>("pauseAll");
  const auto& given = [](const Alerts::Question& question) {
    question.entered("asked");
    return 0;
  };
  int asked = 0;
  Alerts::AnswerWith([&](const Alerts::Question& question) {
    ++asked;
    return asked == 1 ? 1 : given(question);
  });
  all->click();
  EXPECT_TRUE(Wait([&] { return asked == 1 && transfers_.size() == 1; }));
  EXPECT_EQ(transfers_[0]->description.site.host, "h") << "the anonymous one needs no password";
  EXPECT_EQ(all->text(), "Pause All");
  app_->Transfers().List().selectAll();
  app_->Transfers().MessageReceived(Message("RSUM"_what));
  EXPECT_TRUE(Wait([&] { return transfers_.size() == 3; }));
  EXPECT_EQ(asked, 2) << "once for both";
  EXPECT_EQ(transfers_[2]->description.site.password, "asked");
  EXPECT_EQ(transfers_[1]->board->Counted().done, 1);
}

TEST_F(Transfers, EverythingIsDoneByKeysAndByClicks) {
  for (int i = 0; i < 3; ++i) Start();
  transfers_[1]->row->NoteEntry(Text("%1: %2", "a", "no"));
  End(1, TransferEnd::Failed, "550 No.");
  End(2, TransferEnd::Finished);
  const auto* status = transferWindow_.findChild<StatusLine*>();
  EXPECT_EQ(status->Text(), "1 running, 1 failed");
  const auto click = [&](int row, TransferAction wanted) {
    const QRect rect = list_.visualRect(list_.Items().index(row));
    const TransferRow parts(list_.Items().At(row), rect, list_.fontMetrics());
    for (const QRect& part : {parts.Slot(0), parts.Slot(1), parts.Arrow(), parts.Link()}) {
      if (parts.ActionAt(part.center()) != wanted) continue;
      return QTest::mouseClick(list_.viewport(), Qt::LeftButton, {}, part.center());
    }
    ADD_FAILURE() << "no such part";
  };
  const int tall = list_.visualRect(list_.Items().index(1)).height();
  click(1, TransferAction::Toggle);
  EXPECT_TRUE(Wait([&] { return list_.visualRect(list_.Items().index(1)).height() < tall; }));
  Select({1});
  QTest::keyClick(&list_, Qt::Key_Space);
  EXPECT_TRUE(list_.Items().At(1).IsOpen());
  QTest::keyClick(&transferWindow_, Qt::Key_C, Qt::ControlModifier);
  EXPECT_EQ(QGuiApplication::clipboard()->text(), "ftp://server.test/remote");
  QTest::keyClick(&list_, Qt::Key_Return);
  EXPECT_EQ(list_.Items().RunningCount(), 2) << "begun again";
  click(0, TransferAction::Pause);
  EXPECT_TRUE(transfers_[0]->Cancelled());
  click(0, TransferAction::Resume);
  EXPECT_EQ(list_.Items().At(0).Stands(), RowState::Waiting) << "its worker has yet to stop";
  transfers_[0]->row->SetEndState(TransferEnd::Cancelled, {});
  EXPECT_TRUE(Wait([&] { return list_.Items().At(0).Running(); }));
  click(0, TransferAction::Cancel);
  EXPECT_TRUE(transfers_.back()->Cancelled());
  Select({0, 1});
  QTest::keyClick(&list_, Qt::Key_Delete);
  EXPECT_EQ(list_.Items().Count(), 2);
  EXPECT_TRUE(list_.Items().At(0).WasCancelled()) << "the one that ran stays";
  QTest::mouseClick(transferWindow_.findChild<QToolButton*>("removeFinished"), Qt::LeftButton);
  EXPECT_EQ(list_.Items().Count(), 1);
  click(0, TransferAction::Remove);
  EXPECT_EQ(list_.Items().Count(), 0);
  EXPECT_EQ(status->Text(), "Nothing to do");
}

TEST_F(Transfers, ClosingHidesAndARowMayGoWhileItsWorkerTalks) {
  Start();
  transferWindow_.close();
  EXPECT_FALSE(transferWindow_.isVisible());
  std::thread worker([row = transfers_[0]->row] {
    while (row->SetStatus(Text("working")) && row->BeginFile("file")) {
    }
  });
  list_.Items().At(0).Stop();
  QApplication::processEvents();
  list_.Items().Remove(0);
  worker.join();
  EXPECT_FALSE(transfers_[0]->row->SetEndState(TransferEnd::Finished, {}));
}

}  // namespace
}  // namespace corvane
