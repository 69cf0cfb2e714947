#include <QDir>
#include <QFile>
#include <QFileDialog>
#include <QHeaderView>
#include <QKeyEvent>
#include <QTimer>
#include <atomic>
#include <thread>

#include "AppFixture.h"

namespace corvane {
namespace {

class Browser : public AppFixture {
 protected:
  [[nodiscard]] std::string Names() const {
    std::string names;
    for (int row = 0; row < View().Rows().Count(); ++row) {
      names += View().Rows().At(row).Name() + " ";
    }
    return names;
  }
  [[nodiscard]] std::string Selected() const {
    const int row = View().FirstSelected();
    return row < 0 ? "" : View().Rows().At(row).Name();
  }
};

TEST_F(Browser, SortsByAClickWithTheDotsOnTop) {
  List({File("beta", 30, 2), File("Alpha", 10, 3), File("dir", kDirectorySize), File("gamma", 30),
        File("!", 10, 4)});
  EXPECT_EQ(Names(), ". .. ! Alpha beta dir gamma ");
  EXPECT_EQ(View().Rows().At(3).DateText(), "01/03/1900");
  QTest::keyClicks(&View(), "b");
  // Rows of equal key keep the order that they had.
  const std::pair<int, const char*> clicks[] = {
      {DirListModel::kName, ". .. gamma dir beta Alpha ! "},
      {DirListModel::kSize, ". .. dir Alpha ! gamma beta "},
      {DirListModel::kSize, ". .. gamma beta Alpha ! dir "},
      {DirListModel::kDate, ". .. gamma dir beta Alpha ! "},
      {DirListModel::kIcon, ". .. ! Alpha beta dir gamma "},
  };
  const QHeaderView* header = View().header();
  for (const auto& [column, names] : clicks) {
    const QPoint place(header->sectionViewportPosition(column) + 5, header->height() / 2);
    QTest::mouseClick(header->viewport(), Qt::LeftButton, {}, place);
    EXPECT_EQ(Names(), names) << column;
    EXPECT_EQ(Selected(), "beta") << column;
  }
}

TEST_F(Browser, TypingSelectsByTheBeginningOfTheName) {
  List({File("Echo"), File("README"), File("rabbit"), File("reel"), File("zoo")});
  const std::tuple<quint64, const char*, const char*> keys[] = {
      {1000, "r", "rabbit"}, {1949, "e", "README"}, {2000, "E", "reel"},
      {2500, "x", ""},       {3450, "r", "rabbit"}, {4400, "e", "Echo"},
  };
  for (const auto& [milliseconds, key, selected] : keys) {
    QKeyEvent event(QEvent::KeyPress, Qt::Key_A, Qt::NoModifier, key);
    event.setTimestamp(milliseconds);
    QApplication::sendEvent(&View(), &event);
    EXPECT_EQ(Selected(), selected) << milliseconds;
  }
}

TEST_F(Browser, CopyPutsUrlsOnTheClipboardAndDeselects) {
  link_->SetPath("/pub");
  List({File("a"), File("b")});
  View().SelectRow(3);
  Command(Qt::Key_C);
  EXPECT_EQ(QApplication::clipboard()->text(), "ftp://server.test/pub/b\n");
  EXPECT_EQ(View().SelectedCount(), 0);
}

TEST_F(Browser, AFinishedUploadIsRenewedOrAddedInNameOrder) {
  link_->SetPath("/pub/");
  List({File("b", 5), File("e", 5)});
  const auto uploaded = [&](const char* name, const char* path, const char* type) {
    Message message = With("ADDI"_what, "FileName", name);
    message.AddString("Path", path);
    message.AddString("Type", type);
    message.AddInt64("fSize", 2048);
    window_->MessageReceived(message);
  };
  for (const char* name : {"C", ".a", "b", "\xC3\xBC", ".."}) uploaded(name, "/pub", "f");
  uploaded("d", "/pub/", "d");
  uploaded("elsewhere", "/other", "f");
  EXPECT_EQ(Names(), ". .. .a b C d e \xC3\xBC ");
  std::string sizes;
  for (const int row : {1, 3, 4, 5}) sizes += View().Rows().At(row).SizeText();
  EXPECT_EQ(sizes, " <dir> 2.00 KB 2.00 KB <dir>");
}

TEST_F(Browser, AsksOnceBeforeExistingFilesAreTouched) {
  const QDir folder(folder_.path());
  for (const auto& [name, size] : {std::pair("a", 0), {"c", 0}, {"same", 1}, {"longer", 2}}) {
    QFile local(folder.filePath(name));
    ASSERT_TRUE(local.open(QFile::WriteOnly) && local.resize(size));
  }
  ASSERT_TRUE(QFile::link("/nowhere", folder.filePath("link")));
  ASSERT_TRUE(folder.mkdir("sub") && folder.mkdir("tree"));
  // The names selected, the button pressed (-1: no question), what is downloaded, and whether that
  // overwrites what is there.
  const std::tuple<QByteArray, int, QByteArray, bool> cases[] = {
      {"new", -1, "new", true},
      {"same", 0, "same", true},
      {"same", 1, "", {}},
      {"a", 0, "a", false},
      {"longer", 0, "longer", false},
      {"a", 1, "a", true},
      {"a", 2, "", {}},
      {"tree", 0, "tree", true},
      {"tree", 1, "", {}},
      {"link", 0, "", {}},
      {"../evil", 0, "", {}},
      {"../evil a/b good", 0, "good", true},
      {"b sub tree", -1, "b sub tree", true},
      {"a b c link", 0, "a b c link", true},
      {"a b c link", 1, "b", true},
      {"a b c link", 2, "", {}},
      {"a c", 1, "", {}},
  };
  for (const auto& [names, button, downloaded, overwrite] : cases) {
    transfers_.clear();
    alerts_.clear();
    button_ = button;
    std::vector<fileStruct> entries;
    for (const QByteArray& name : names.split(' ')) {
      entries.push_back(File(name.toStdString(), name == "tree" ? kDirectorySize : 1));
    }
    List(std::move(entries));
    View().SelectRow(2);
    QTest::keyClick(&View(), Qt::Key_End, Qt::ShiftModifier);
    Command(Qt::Key_D);
    QApplication::processEvents();
    EXPECT_EQ(alerts_.size(), button < 0 ? 0U : 1U) << names.data();
    QByteArrayList taken;
    ASSERT_EQ(transfers_.size(), downloaded.isEmpty() ? 0U : 1U) << names.data();
    for (const auto& transfer : transfers_) {
      EXPECT_EQ(transfer->description.overwrite, overwrite) << names.data();
      for (const fileStruct& item : transfer->description.items) taken << item.name.c_str();
    }
    EXPECT_EQ(taken.join(' '), downloaded) << button;
  }
}

TEST_F(Browser, AsksForAPlaceWhereNoneIsChosen) {
  settings_.DwnldDir = "empty";
  ProcessSettings::Set(settings_);
  List({File("song.mp3"), File("text")});
  window_->MessageReceived(With("DWLD"_what, "FileName", "text"));
  auto* panel = window_->findChild<QFileDialog*>();
  ASSERT_NE(panel, nullptr);
  EXPECT_FALSE(panel->isModal());
  panel->setDirectory(folder_.path());
  auto* name = panel->findChild<QLineEdit*>();
  name->setText("other name");
  QTest::keyClick(name, Qt::Key_Return);
  ASSERT_EQ(transfers_.size(), 1U);
  const transferStruct& description = transfers_[0]->description;
  EXPECT_EQ(description.targetFolder, folder_.path().toStdString());
  EXPECT_EQ(description.items[0].name, "text");
  EXPECT_EQ(description.items[0].displayName, "other name");
}

TEST_F(Browser, DoubleClickEntersADirectoryUnlessDisabled) {
  List({File("pub", kDirectorySize)});
  const QPoint row = View().visualRect(View().Rows().index(2, DirListModel::kName)).center();
  const auto doubleClick = [&] {
    QTest::mouseClick(View().viewport(), Qt::LeftButton, {}, row);
    QTest::mouseDClick(View().viewport(), Qt::LeftButton, {}, row);
  };
  View().SelectRow(2);
  View().DisableAll();
  doubleClick();
  View().EnableAll();
  Command(Qt::Key_Up);
  doubleClick();
  EXPECT_TRUE(Asks("PCHN cwd=..\nPCHN cwd=pub")) << looper_->Asked();
}

TEST_F(Browser, PathFieldSendsWhatWasTypedOrTheBytesThatCame) {
  const std::string latin = "/gr\xFC\xDF";
  link_->SetPath(latin);
  ASSERT_TRUE(Wait([&] { return window_->CurrentDirectory() == latin; }));
  auto* path = window_->findChild<QLineEdit*>("Path");
  path->setFocus();
  QTest::keyClick(path, Qt::Key_Return);
  path->setText("/pub/\u00FC");
  QTest::keyClick(path, Qt::Key_Return);
  path->clear();
  QTest::keyClick(path, Qt::Key_Return);
  Command(Qt::Key_Period);
  EXPECT_TRUE(Asks("PCHN cwd=" + latin + "\nPCHN cwd=/pub/\xC3\xBC\nPCHN cwd=."))
      << looper_->Asked();
}

TEST_F(Browser, WarningsLeaveTheWindowAndFatalErrorsCloseIt) {
  link_->PostMessage(With("GERR"_what, "warning", "careful"));
  EXPECT_TRUE(Wait([&] { return alerts_.size() == 1; }));
  ASSERT_FALSE(window_.isNull());
  link_->PostMessage(With("FERR"_what, "error", "lost.\nfor good \x1B[m"));
  EXPECT_TRUE(Wait([&] { return window_.isNull(); }));
  ASSERT_EQ(alerts_.size(), 2U);
  EXPECT_EQ(alerts_[0].text, "careful");
  EXPECT_EQ(alerts_[1].icon, QMessageBox::Critical);
  EXPECT_EQ(alerts_[1].text, "lost.\nfor good \\x1B[m");
}

TEST_F(Browser, ClosesWhileItsConnectionIsStillTalking) {
  std::atomic<int> stopped{0};
  std::vector<std::jthread> threads;
  for (int i = 0; i < 4; ++i) {
    threads.emplace_back([link = link_, &stopped] {
      const std::vector<fileStruct> batch(300, File("name"));
      while (link->SetStatus("busy") && link->AppendLog("line\n") && link->AddEntries(batch) &&
             link->SetPath("/")) {
      }
      ++stopped;
    });
  }
  EXPECT_TRUE(Wait([&] { return View().Rows().Count() > 1000; }));
  const std::weak_ptr<RecordingLooper> looper = looper_;
  looper_.reset();
  window_->close();
  EXPECT_FALSE(window_->isVisible());
  EXPECT_TRUE(Wait([&] { return stopped == 4 && window_.isNull() && looper.expired(); }));
  EXPECT_FALSE(link_->SetStatus("late"));
  EXPECT_TRUE(app_->WindowList().empty());
}

TEST_F(Browser, AnswersAKeyWhileAHugeListingArrives) {
  constexpr int kRows = 100'000;
  for (int row = 0; row < kRows; ++row) link_->AddEntries({File("file")});
  link_->EndListing(kRows);
  int rowsAtKey = 0;
  QTimer typist;
  typist.callOnTimeout([&] {
    if (View().Rows().Count() == 0) return;
    typist.stop();
    rowsAtKey = View().Rows().Count();
    QTest::keyClicks(&View(), "f");
    EXPECT_EQ(View().FirstSelected(), 0);
  });
  typist.start(1);
  EXPECT_TRUE(QTest::qWaitFor([&] { return View().Rows().Count() == kRows; }, 60'000));
  EXPECT_GT(rowsAtKey, 0);
  EXPECT_LT(rowsAtKey, kRows);
}

}  // namespace
}  // namespace corvane
