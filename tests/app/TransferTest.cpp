#include <QAccessible>
#include <QPointer>
#include <thread>

#include "AppFixture.h"
#include "app/DownLoadWin.h"
#include "app/TransferDelegate.h"
#include "settings/ProcessSettings.h"

namespace corvane {
namespace {

class Transfers : public AppFixture {
 protected:
  Transfers() : window_(app_->Transfers()), list_(window_.List()) {
    window_.activateWindow();
    list_.setFocus();
    EXPECT_TRUE(QTest::qWaitForWindowActive(&window_));
  }

  TransferItem& Start(const std::string& host = "server.test") {
    DownloadRequest request;
    request.connection.host = host;
    request.where = folder_.path().toStdString();
    request.size = 1000;
    request.items.push_back(File("file", 1000));
    window_.AddDownload(std::move(request));
    return list_.Items().At(list_.Items().Count() - 1);
  }
  void Select(int row) {
    list_.selectionModel()->setCurrentIndex(list_.Items().index(row),
                                            QItemSelectionModel::ClearAndSelect);
  }
  void End(std::size_t transfer, TransferEnd state, const char* why = "") {
    transfers_[transfer].row->SetEndState(state, why);
    ASSERT_TRUE(Wait([&] { return !list_.Items().At(static_cast<int>(transfer)).Running(); }));
  }
  QColor BarPixel(int row) {
    const QImage image = list_.viewport()->grab().toImage();
    const QRect area = list_.visualRect(list_.Items().index(row));
    return image.pixelColor(area.left() + 9, area.bottom() - 9);
  }

  DownLoadWin& window_;
  TransferListView& list_;
};

TEST_F(Transfers, EveryEndShowsItsColourAndItsReason) {
  struct Case {
    TransferEnd end;
    const char* why;
    QColor colour;
    const char* shown;
  };
  for (const Case& c : {
           Case{TransferEnd::Finished, "", QColor(0, 0, 154), ""},
           Case{TransferEnd::Failed, "550 No such file.", QColor(228, 0, 0), "550 No such file."},
           Case{TransferEnd::Failed, "", QColor(228, 0, 0), "The transfer failed."},
           Case{TransferEnd::Cancelled, "", QColor(228, 0, 0), "Cancelled."},
       }) {
    const TransferItem& item = Start();
    const int row = list_.Items().Count() - 1;
    transfers_.back().row->BeginFile("file");
    transfers_.back().row->Progress().done = 500;
    list_.scrollToBottom();
    EXPECT_EQ(BarPixel(row), QColor(0, 152, 51));
    End(static_cast<std::size_t>(row), c.end, c.why);
    EXPECT_EQ(BarPixel(row), c.colour);
    EXPECT_EQ(item.FailureText(), c.shown);
    EXPECT_EQ(item.Label(), "File: file");
    EXPECT_EQ(item.TotalText(), "500/1000");
    EXPECT_TRUE(list_.Items()
                    .data(list_.Items().index(row), Qt::AccessibleTextRole)
                    .toString()
                    .contains(*c.shown == '\0' ? "Finished" : c.shown));
  }
  EXPECT_FALSE(list_.Ticking());
}

TEST_F(Transfers, AnErrorMessageBecomesTheReason) {
  const TransferItem& item = Start();
  Message error("FERR"_what);
  error.AddString("error", "Could not connect.");
  transfers_[0].row->PostMessage(error);
  End(0, TransferEnd::Failed);
  EXPECT_EQ(item.FailureText(), "Could not connect.");
}

TEST_F(Transfers, RateIsBytesOverTime) {
  const TransferItem& item = Start();
  EXPECT_EQ(item.RateText(), "0 bytes/sec");
  TransferProgress& progress = transfers_[0].row->Progress();
  progress.start = 300;
  progress.done = 600;
  progress.elapsed = 2'000'000;
  EXPECT_EQ(item.RateText(), "300 bytes/sec");
  EXPECT_EQ(item.TotalText(), "900/1000");
  EXPECT_DOUBLE_EQ(item.Fraction(), 0.9);
}

TEST_F(Transfers, CancelStopsTheWorkerAndDeselects) {
  const TransferItem& item = Start();
  Select(0);
  QTest::keyClick(&window_, Qt::Key_Period, Qt::ControlModifier);
  EXPECT_TRUE(transfers_[0].worker->Cancelled());
  EXPECT_TRUE(item.Failed());
  EXPECT_TRUE(list_.SelectedRows().empty());
  End(0, TransferEnd::Finished);  // the worker knows better: everything had arrived
  EXPECT_TRUE(Wait([&] { return item.Finished(); }));
}

TEST_F(Transfers, RemovesWhatHasEndedAndRefusesWhatRuns) {
  for (int i = 0; i < 3; ++i) Start(std::to_string(i));
  End(1, TransferEnd::Finished);
  Select(0);
  QTest::keyClick(&list_, Qt::Key_Backspace);
  ASSERT_EQ(alerts_.size(), 1U);
  EXPECT_EQ(alerts_[0].text, "You need to cancel the transfer to remove this item.");
  EXPECT_EQ(list_.Items().Count(), 3);
  Select(1);
  QTest::keyClick(&list_, Qt::Key_Backspace);
  ASSERT_EQ(list_.Items().Count(), 2);
  EXPECT_EQ(list_.Items().At(1).ServerLine(), "Server: 2");
  EXPECT_EQ(list_.SelectedRows(), std::vector<int>{1});
}

TEST_F(Transfers, FinishedOnesLeaveByThemselvesWhereAsked) {
  SettingsValues settings = ProcessSettings::Get();
  settings.removeItem = true;
  ProcessSettings::Set(settings);
  Start();
  Start();
  transfers_[0].row->SetEndState(TransferEnd::Failed, "no");
  transfers_[1].row->SetEndState(TransferEnd::Finished, "");
  EXPECT_TRUE(Wait([&] { return list_.Items().Count() == 1; }));
  EXPECT_TRUE(Wait([&] { return list_.Items().At(0).Failed(); }));
}

TEST_F(Transfers, ClosingHidesAndARowMayGoWhileItsWorkerTalks) {
  Start();
  window_.close();
  EXPECT_FALSE(window_.isVisible());
  EXPECT_EQ(list_.Items().Count(), 1);
  std::thread worker([row = transfers_[0].row] {
    while (row->SetLabel("working") && row->BeginFile("file")) {
    }
  });
  list_.Items().At(0).Cancel();
  QApplication::processEvents();
  list_.Items().Remove(0);
  worker.join();
  EXPECT_FALSE(transfers_[0].row->SetEndState(TransferEnd::Finished, ""));
}

}  // namespace
}  // namespace corvane
