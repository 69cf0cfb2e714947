#include <QFile>
#include <QFileDialog>
#include <QLineEdit>
#include <QPointer>
#include <atomic>
#include <thread>

#include "AppFixture.h"
#include "app/DirListView.h"
#include "app/DownLoadWin.h"
#include "app/MWindow.h"
#include "settings/ProcessSettings.h"

namespace corvane {
namespace {

class Browser : public AppFixture {
 protected:
  Browser() : window_(&OpenBrowser()) {}
  void MakeLocal(const QString& name, qsizetype size) {
    QFile file(folder_.filePath(name));
    ASSERT_TRUE(file.open(QFile::WriteOnly));
    file.write(QByteArray(size, 'x'));
  }
  void Download() { QTest::keyClick(window_.data(), Qt::Key_D, Qt::ControlModifier); }

  QPointer<MWindow> window_;
};

TEST_F(Browser, AsksBeforeAnExistingFileIsTouched) {
  struct Case {
    const char* name;
    qsizetype localSize;  // -1: no local file
    int button;
    bool asked;
    bool started;
    bool overwrite;
  };
  for (const Case& c : {
           Case{"new", -1, 0, false, true, true},
           Case{"same", 10, 0, true, true, true},
           Case{"samecancel", 10, 1, true, false, false},
           Case{"reget", 4, 0, true, true, false},
           Case{"longer", 40, 0, true, true, false},
           Case{"overwrite", 4, 1, true, true, true},
           Case{"partcancel", 4, 2, true, false, false},
       }) {
    transfers_.clear();
    alerts_.clear();
    if (c.localSize >= 0) MakeLocal(c.name, c.localSize);
    List(WithDots({File(c.name, 10)}));
    Press(c.button);
    window_->Listing().SelectRow(2);
    Download();
    QApplication::processEvents();
    EXPECT_EQ(alerts_.size(), c.asked ? 1U : 0U) << c.name;
    ASSERT_EQ(transfers_.size(), c.started ? 1U : 0U) << c.name;
    if (c.started) {
      EXPECT_EQ(transfers_[0].description.overwrite, c.overwrite) << c.name;
      EXPECT_EQ(transfers_[0].description.items[0].displayName, c.name);
      EXPECT_EQ(transfers_[0].description.targetFolder, folder_.path().toStdString());
    }
  }
}

TEST_F(Browser, RefusesNamesThatWouldLeaveTheFolder) {
  List(WithDots({File("../evil"), File("a/b"), File("good")}));
  window_->Listing().SelectRow(2);
  Download();
  EXPECT_EQ(alerts_.size(), 1U);
  EXPECT_TRUE(transfers_.empty());
  QTest::keyClick(&window_->Listing(), Qt::Key_End, Qt::ShiftModifier);
  Download();
  EXPECT_EQ(alerts_.size(), 2U);
  ASSERT_EQ(transfers_.size(), 1U);
  ASSERT_EQ(transfers_[0].description.items.size(), 1U);
  EXPECT_EQ(transfers_[0].description.items[0].name, "good");
}

TEST_F(Browser, NeverDownloadsTheDirectoryItself) {
  List(WithDots({}));
  window_->Listing().SelectRow(0);
  Download();
  window_->Listing().SelectRow(1);
  Download();
  EXPECT_TRUE(transfers_.empty());
  EXPECT_EQ(alerts_.size(), 1U);  // ".." is no local name
}

TEST_F(Browser, AsksForAPlaceWhereNoneIsChosen) {
  SettingsValues settings = ProcessSettings::Get();
  settings.DwnldDir = "empty";
  ProcessSettings::Set(settings);
  List(WithDots({File("song.mp3"), File("text")}));
  window_->Listing().SelectRow(2);
  Download();
  auto* panel = window_->findChild<QFileDialog*>();
  ASSERT_NE(panel, nullptr);
  EXPECT_EQ(panel->acceptMode(), QFileDialog::AcceptSave);
  EXPECT_FALSE(panel->isModal());
  panel->setDirectory(folder_.path());
  auto* name = panel->findChild<QLineEdit*>();
  name->setText("other name");
  QTest::keyClick(name, Qt::Key_Return);
  ASSERT_EQ(transfers_.size(), 1U);
  EXPECT_EQ(transfers_[0].description.items[0].name, "song.mp3");
  EXPECT_EQ(transfers_[0].description.items[0].displayName, "other name");
}

TEST_F(Browser, DownloadsTheFileThatTheConnectionNames) {
  List(WithDots({File("a"), File("b")}));
  Message message("DWLD"_what);
  message.AddString("FileName", "b");
  link_->PostMessage(message);
  ASSERT_TRUE(Wait([&] { return transfers_.size() == 1; }));
  EXPECT_EQ(transfers_[0].description.items[0].name, "b");
}

TEST_F(Browser, PathFieldSendsWhatWasTypedOrTheBytesThatCame) {
  const std::string latin = "/gr\xFC\xDF";
  link_->SetPath(latin);
  ASSERT_TRUE(Wait([&] { return window_->CurrentDirectory() == latin; }));
  auto* path = window_->findChild<QLineEdit*>("Path");
  path->setFocus();
  QTest::keyClick(path, Qt::Key_Return);
  EXPECT_TRUE(Wait([&] { return looper_->Has("PCHN"_what, "cwd", latin); }));
  path->selectAll();
  path->insert(QString::fromUtf8("/pub/\xC3\xBC"));
  QTest::keyClick(path, Qt::Key_Return);
  EXPECT_TRUE(Wait([&] { return looper_->Has("PCHN"_what, "cwd", "/pub/\xC3\xBC"); }));
  const std::size_t before = looper_->Received().size();
  path->clear();
  QTest::keyClick(path, Qt::Key_Return);
  QTest::keyClick(window_, Qt::Key_Period, Qt::ControlModifier);
  EXPECT_TRUE(Wait([&] { return looper_->Has("PCHN"_what, "cwd", "."); }));
  EXPECT_EQ(looper_->Received().size(), before + 1);
}

TEST_F(Browser, WarningsLeaveTheWindowAndFatalErrorsCloseIt) {
  Message warning("GERR"_what);
  warning.AddString("warning", "careful");
  link_->PostMessage(warning);
  Message fatal("FERR"_what);
  fatal.AddString("error", "lost.\nfor good \x1B[m");
  link_->PostMessage(fatal);
  EXPECT_TRUE(Wait([&] { return window_.isNull(); }));
  ASSERT_EQ(alerts_.size(), 2U);
  EXPECT_EQ(alerts_[0].title, "Warning");
  EXPECT_EQ(alerts_[0].text, "careful");
  EXPECT_EQ(alerts_[1].icon, QMessageBox::Critical);
  EXPECT_EQ(alerts_[1].title, "Error");
  EXPECT_EQ(alerts_[1].text, "lost.\nfor good \\x1B[m");
}

TEST_F(Browser, ATimeOutClosesWithoutAWord) {
  link_->PostMessage(Message("TMOT"_what));
  EXPECT_TRUE(Wait([&] { return window_.isNull(); }));
  EXPECT_TRUE(alerts_.empty());
}

TEST_F(Browser, ClosesWhileItsConnectionIsStillTalking) {
  std::atomic<int> stopped{0};
  std::vector<std::thread> threads;
  threads.reserve(4);
  for (int i = 0; i < 4; ++i) {
    threads.emplace_back([link = link_, &stopped] {
      const std::vector<fileStruct> batch(300, File("name"));
      while (link->SetStatus("busy") && link->AppendLog("line\n") && link->AddEntries(batch) &&
             link->SetPath("/")) {
      }
      ++stopped;
    });
  }
  EXPECT_TRUE(Wait([&] { return window_->Listing().Rows().Count() > 1000; }));
  const std::weak_ptr<RecordingLooper> looper = looper_;
  looper_.reset();
  window_->close();
  EXPECT_FALSE(window_->isVisible());
  EXPECT_TRUE(Wait([&] { return stopped == 4 && window_.isNull() && looper.expired(); }));
  for (std::thread& thread : threads) thread.join();
  EXPECT_FALSE(link_->SetStatus("late"));
  EXPECT_TRUE(app_->WindowList().empty());
}

TEST_F(Browser, AnswersAKeyWhileAHugeListingArrives) {
  std::thread connection([link = link_] {
    link->BeginListing();
    link->AddEntries(WithDots({}));
    for (int batch = 0; batch < 200; ++batch) {
      std::vector<fileStruct> entries;
      entries.reserve(500);
      for (int i = 0; i < 500; ++i)
        entries.push_back(File("file" + std::to_string(i * 200 + batch)));
      link->AddEntries(std::move(entries));
    }
    link->EndListing(100000);
  });
  QElapsedTimer turn;
  qint64 longest = 0;
  const bool whole = Wait([&] {
    if (turn.isValid()) longest = std::max(longest, turn.elapsed());
    turn.start();
    return window_->Listing().Rows().Count() == 100002;
  });
  connection.join();
  EXPECT_TRUE(whole);
  RecordProperty("longest_turn_ms", static_cast<int>(longest));
}

}  // namespace
}  // namespace corvane
