#include <QDir>
#include <QDropEvent>
#include <QFile>
#include <QFileDialog>
#include <QHeaderView>
#include <QKeyEvent>
#include <QMimeData>
#include <QScreen>
#include <QTimer>
#include <atomic>
#include <thread>

#include "AppFixture.h"
#include "app/browser/BrowserSession.h"
#include "app/browser/BrowserTransfers.h"
#include "app/browser/MViewFile.h"
#include "app/browser/UploadPanel.h"
#include "app/browser/WindowLog.h"
#include "app/connect/ShortCutEditWindow.h"

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
  List({File("beta", 30, 2), File("Alpha", 10, 3), Folder("dir"), File("gamma", 30),
        File("!", 10, 4)});
  EXPECT_EQ(Names(), ". .. ! Alpha beta dir gamma ");
  EXPECT_EQ(View().Rows().At(3).DateText() + View().Rows().At(5).DateText(), "01/03/1970-");
  QTest::keyClicks(&View(), "b");
  // Rows of equal key keep the order that they had.
  const std::pair<int, const char*> clicks[] = {
      {DirListModel::kName, ". .. gamma dir beta Alpha ! "},
      {DirListModel::kSize, ". .. dir Alpha ! gamma beta "},
      {DirListModel::kSize, ". .. gamma beta Alpha ! dir "},
      {DirListModel::kDate, ". .. dir gamma beta Alpha ! "},
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
  EXPECT_EQ(sizes, " - 2.00 KB 2.00 KB <dir>");
}

TEST_F(Browser, AsksOnceBeforeWhatIsThereIsTouched) {
  link_->SetPath("/pub");
  const QDir folder(folder_.path());
  for (const auto& [name, size] : {std::pair("a", 0), {"c", 0}, {"same", 1}, {"longer", 2}}) {
    QFile local(folder.filePath(name));
    ASSERT_TRUE(local.open(QFile::WriteOnly) && local.resize(size));
  }
  ASSERT_TRUE(QFile::link("/nowhere", folder.filePath("link")));
  ASSERT_TRUE(folder.mkdir("sub") && folder.mkdir("tree"));
  // The names selected, the button pressed (-1: no question), what is downloaded, and its policy.
  const std::tuple<QByteArray, int, QByteArray> cases[] = {
      {"new", -1, "new+"},
      {"same", 0, "same!"},
      {"same", 1, ""},
      {"a", 0, "a&"},
      {"longer", 0, "longer&"},
      {"a", 1, "a!"},
      {"a", 2, ""},
      {"tree", 0, "tree!"},
      {"tree", 1, ""},
      {"link", 0, ""},
      {"sub", 0, ""},
      {"../evil", 0, ""},
      {"../evil a/b good", 0, "good+"},
      {"b sub tree", 0, "b+ sub! tree!"},
      {"b sub tree", 1, "b+"},
      {"b tree", 2, ""},
      {"a b c link", 0, "a! b+ c! link!"},
      {"a b c link", 1, "b+"},
      {"a b c link", 2, ""},
      {"a c", 1, ""},
  };
  for (const auto& [names, button, downloaded] : cases) {
    transfers_.clear();
    alerts_.clear();
    button_ = button;
    std::vector<RemoteEntry> entries;
    for (const QByteArray& name : names.split(' ')) {
      entries.push_back(name == "tree" ? Folder("tree") : File(name.toStdString()));
    }
    List(std::move(entries));
    View().SelectRow(2);
    QTest::keyClick(&View(), Qt::Key_End, Qt::ShiftModifier);
    Command(Qt::Key_D);
    EXPECT_TRUE(Wait([&, asks = button >= 0] { return !asks || !alerts_.empty(); }))
        << names.data();
    EXPECT_TRUE(downloaded.isEmpty() || Begins()) << names.data();
    QApplication::processEvents();
    EXPECT_EQ(alerts_.size(), button < 0 ? 0U : 1U) << names.data();
    ASSERT_EQ(transfers_.size(), downloaded.isEmpty() ? 0U : 1U) << names.data();
    if (downloaded.isEmpty()) continue;
    std::string jobs;
    for (const QByteArray& job : downloaded.split(' ')) {
      jobs += (jobs.empty() ? "/pub/" : " /pub/") + job.chopped(1).toStdString() + ">" +
              folder.filePath(job).toStdString();
    }
    EXPECT_EQ(Jobs(transfers_[0]->description), jobs) << button;
    EXPECT_EQ(transfers_[0]->description.targetFolder, folder.path().toStdString());
    for (const TransferJob& job : transfers_[0]->description.jobs) {
      const bool tree = job.local.ends_with("/tree");
      EXPECT_EQ(job.kind, tree ? RemoteEntry::Kind::Directory : RemoteEntry::Kind::File);
      EXPECT_EQ(job.size, tree ? -1 : 1);
    }
  }
}

TEST_F(Browser, AsksBeforeAnUploadReplacesWhatTheListingShows) {
  link_->SetPath("/pub");
  List({File("a"), Folder("dir")});
  // What is uploaded, the button pressed (-1: no question), and what goes.
  const std::tuple<std::vector<std::string>, int, std::string> cases[] = {
      {{"/l/new", "/l/b/"}, -1, "/l/new>/pub/new+ /l/b>/pub/b+"},
      {{"/l/new", "/l/dir/"}, 0, "/l/new>/pub/new+ /l/dir>/pub/dir!"},
      {{"/l/new", "/l/dir/"}, 1, "/l/new>/pub/new+"},
      {{"/l/a"}, 1, ""},
      {{"/l/a", "/l/new"}, 2, ""},
  };
  for (const auto& [paths, button, uploaded] : cases) {
    transfers_.clear();
    alerts_.clear();
    button_ = button;
    window_->Transfers().Upload(paths);
    QApplication::processEvents();
    EXPECT_EQ(alerts_.size(), button < 0 ? 0U : 1U);
    EXPECT_TRUE(alerts_.empty() || alerts_[0].preset == 1);
    EXPECT_EQ(transfers_.empty() ? "" : Jobs(transfers_[0]->description), uploaded);
  }
}

TEST_F(Browser, EachPanelMovesWhatItWasOpenedFor) {
  settings_.DwnldDir = (folder_.path() + "/gone").toStdString();
  settings_.buffersize = 65'536;
  ProcessSettings::Set(settings_);
  link_->SetPath("/pub");
  List({File("song.mp3"), File("text")});
  window_->MessageReceived(With("DWLD"_what, "FileName", "song.mp3"));
  const auto panels = [&] { return window_->findChildren<QFileDialog*>(); };
  EXPECT_TRUE(Wait([&] { return panels().size() == 1; }));
  window_->MessageReceived(With("DWLD"_what, "FileName", "text"));  // counts instead
  EXPECT_TRUE(Wait([&] { return panels()[0]->selectedFiles()[0].endsWith("text"); }));
  View().SelectRow(2);
  QTest::keyClick(&View(), Qt::Key_End, Qt::ShiftModifier);
  window_->MessageReceived(Message("DWLD"_what));
  EXPECT_TRUE(Wait([&] { return panels().size() == 2; }));
  QFileDialog* save = panels()[0];
  QFileDialog* folder = panels()[1];
  window_->MessageReceived(Message("UPLD"_what));
  EXPECT_EQ(panels().size(), 3);
  for (const QFileDialog* panel : panels()) EXPECT_FALSE(panel->isModal());
  auto* upload = window_->findChild<UploadPanel*>();
  link_->SetPath("/elsewhere");  // too late to change where it goes
  List({File("up")});
  Q_EMIT upload->Chosen({"/l/up"});
  ASSERT_TRUE(Begins());
  EXPECT_EQ(transfers_[0]->description.remoteDirectory, "/pub");
  EXPECT_EQ(Jobs(transfers_[0]->description), "/l/up>/pub/up+");
  save->setDirectory(folder_.path());
  auto* name = save->findChild<QLineEdit*>();
  name->setText("other name");
  QTest::keyClick(name, Qt::Key_Return);
  ASSERT_TRUE(Begins(1));
  const transferStruct& description = transfers_[1]->description;
  EXPECT_EQ(description.remoteDirectory, "/pub");
  EXPECT_EQ(description.targetFolder, folder_.path().toStdString());
  EXPECT_EQ(description.site, connections_[0]);
  EXPECT_EQ(description.bufferSize, 65'536);
  EXPECT_EQ(Jobs(description), "/pub/text>" + description.targetFolder + "/other name+");
  Q_EMIT folder->fileSelected(folder_.path());
  ASSERT_TRUE(Begins(2));
  EXPECT_EQ(transfers_[2]->description.jobs.size(), 2U);
}

// A double click that comes twice must not enter the directory of that name in the new one too.
TEST_F(Browser, RequestsWaitForTheListingAndCarryTheirDirectory) {
  link_->SetPath("/pub");
  List({Folder("src")});
  const QPoint row = View().visualRect(View().Rows().index(2, DirListModel::kName)).center();
  const auto doubleClick = [&] {
    QTest::mouseClick(View().viewport(), Qt::LeftButton, {}, row);
    QTest::mouseDClick(View().viewport(), Qt::LeftButton, {}, row);
  };
  View().DisableAll();
  doubleClick();
  View().EnableAll();
  looper_->busy = true;
  doubleClick();
  doubleClick();
  QTest::keyClick(&View(), Qt::Key_Return);
  for (const Qt::Key key : {Qt::Key_Up, Qt::Key_Period, Qt::Key_F, Qt::Key_T, Qt::Key_U}) {
    Command(key);
  }
  EXPECT_TRUE(Asks("PCHN cwd=src path=/pub")) << looper_->Asked();
  EXPECT_TRUE(alerts_.empty() && !IsReady() && window_->findChild<QFileDialog*>() == nullptr);
  link_->BeginListing();
  link_->SetPath("/pub/src");
  looper_->Finish("PCHN"_what);
  QApplication::processEvents();
  EXPECT_FALSE(IsReady()) << "the listing has not ended";
  link_->EndListing(0);
  EXPECT_TRUE(Wait([&] { return IsReady(); }));
  looper_->busy = false;
  Command(Qt::Key_F);
  EXPECT_TRUE(Asks("VWDR path=/pub/src")) << looper_->Asked();
  Command(Qt::Key_Up);
  EXPECT_TRUE(Asks("PCHN cwd=.. path=/pub/src")) << looper_->Asked();
}

TEST_F(Browser, BeforeTheFirstListingNothingIsAskedOfTheWrongDirectory) {
  busy_ = true;
  Message open = With("OPNC"_what, "host", "second.test");
  open.AddString("path", "/start");
  app_->PostMessage(open);
  MWindow& second = *app_->WindowList().back();
  EXPECT_FALSE(second.findChild<QPushButton*>("upload")->isEnabled());
  QMimeData data;
  data.setData("text/uri-list", "file:///a");
  QDropEvent drop({5, 5}, Qt::CopyAction, &data, Qt::LeftButton, {});
  QApplication::sendEvent(&second, &drop);
  EXPECT_FALSE(drop.isAccepted() || !transfers_.empty());
  second.MessageReceived(Message("NWST"_what));
  EXPECT_EQ(app_->Editor()->findChild<QLineEdit*>("Path")->text(), "/start");
}

TEST_F(Browser, ALateAnswerLeavesTheSelectionAlone) {
  List({File("asked"), File("chosen")});
  View().SelectRow(3);
  window_->MessageReceived(With("DWLD"_what, "FileName", "asked"));
  ASSERT_TRUE(Begins());
  EXPECT_EQ(transfers_[0]->description.jobs.at(0).remote, "asked");
  EXPECT_EQ(Selected(), "chosen");
}

TEST_F(Browser, PathFieldSendsWhatWasTypedOrTheBytesThatCame) {
  const std::string latin = "/gr\xFC\xDF";
  link_->SetPath(latin);
  ASSERT_TRUE(Wait([&] { return window_->Session().CurrentDirectory() == latin; }));
  auto* path = window_->findChild<QLineEdit*>("Path");
  path->setFocus();
  QTest::keyClick(path, Qt::Key_Return);
  path->setText("/pub/\u00FC");
  QTest::keyClick(path, Qt::Key_Return);
  path->clear();
  QTest::keyClick(path, Qt::Key_Return);
  const std::string from = " path=" + latin;
  EXPECT_TRUE(Asks("PCHN cwd=" + latin + from + "\nPCHN cwd=/pub/\xC3\xBC" + from))
      << looper_->Asked();
}

// Asked of the window: what runs, and whether that makes it ask before it closes.
TEST_F(Browser, ClosingAsksBeforeItEndsADeletion) {
  List({File("a")});
  View().SelectRow(2);
  looper_->busy = true;
  Command(Qt::Key_T);
  EXPECT_TRUE(Asks("DELE path= name=a")) << looper_->Asked();
  button_ = 1;
  window_->close();
  app_->QuitRequested();
  QApplication::processEvents();
  ASSERT_EQ(alerts_.size(), 3U);
  EXPECT_EQ(alerts_[1].preset + alerts_[2].preset, 2);
  EXPECT_EQ(alerts_[2].detail, "Entries on server.test are still being deleted.");
  ASSERT_FALSE(window_.isNull() || app_->Quitting());
  looper_->Finish("DELE"_what);
  EXPECT_TRUE(Wait([&] { return window_->WouldEnd().isEmpty(); }));
  window_->close();
  EXPECT_TRUE(Wait([&] { return window_.isNull(); }));
  EXPECT_EQ(alerts_.size(), 3U);
}

TEST_F(Browser, WindowsOfItsOwnStandOnTheScreen) {
  const QRect screen = QGuiApplication::primaryScreen()->availableGeometry();
  window_->setGeometry(screen.right() - 500, screen.bottom() - 460, 480, 450);
  window_->MessageReceived(Message("SHLG"_what));
  const auto viewer = link_->OpenViewer(Text::Raw("v"));
  EXPECT_TRUE(Wait([&] { return window_->findChild<MViewFile*>() != nullptr; }));
  for (const QWidget* each : std::initializer_list<QWidget*>{window_->findChild<MViewFile*>(),
                                                             window_->findChild<WindowLog*>()}) {
    const QRect place = each->geometry();
    EXPECT_TRUE(screen.contains(place)) << place.right() << " " << place.bottom();
  }
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
      const std::vector<RemoteEntry> batch(300, File("name"));
      while (link->SetStatus(Text("busy")) && link->AppendLog("line\n") &&
             link->AddEntries(batch) && link->SetPath("/")) {
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
  EXPECT_FALSE(link_->SetStatus(Text("late")));
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
