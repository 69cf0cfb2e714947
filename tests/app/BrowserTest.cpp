#include "AppFixture.h"
#include "app/browser/BrowserSession.h"
#include "app/browser/BrowserTransfers.h"
#include "app/browser/BrowserView.h"
#include "app/browser/FailurePage.h"
#include "app/browser/UploadPanel.h"
#include "remote/Outcome.h"

namespace corvane {
namespace {

class Browser : public AppFixture {
 protected:
  Browser() { UseClassicStyle(); }
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
  window_->resize(900, 500);
  List({File("beta", 30, 2), File("Alpha", 10, 3), Folder("dir"), File("gamma", 30),
        File("!", 10, 4)});
  EXPECT_EQ(Names(), ". .. ! Alpha beta dir gamma ");
  EXPECT_EQ(View().Rows().At(3).DateText() + View().Rows().At(5).DateText(), "01/03/1970-");
  QTest::keyClicks(&View(), "b");
  // Rows of equal key keep the order that they had.
  const std::pair<int, const char*> clicks[] = {
      {DirListModel::kName, ". .. gamma dir beta Alpha ! "},
      {DirListModel::kSize, ". .. dir Alpha ! gamma beta "},
      {DirListModel::kDate, ". .. dir gamma beta Alpha ! "},
      {DirListModel::kName, ". .. ! Alpha beta dir gamma "},
  };
  const QHeaderView* header = View().header();
  for (const auto& [column, names] : clicks) {
    const QPoint place(header->sectionViewportPosition(column) + 5, header->height() / 2);
    QTest::mouseClick(header->viewport(), Qt::LeftButton, {}, place);
    EXPECT_EQ(Names(), names) << column;
    EXPECT_EQ(Selected(), "beta") << column;
  }
}

// The bytes are the server's, what is seen and typed is text.
TEST_F(Browser, ShowsAndEditsNamesInTheSitesEncoding) {
  Site site = window_->Session().To();
  site.encoding = "WINDOWS-1251";
  Q_EMIT window_->View().TryAgainPressed(site);
  ASSERT_TRUE(Wait([&] { return IsReady(); }));
  List({File("\xCF\xF0"), File("z")});
  const DirListModel& rows = View().Rows();
  EXPECT_EQ(rows.data(rows.index(3, DirListModel::kName), Qt::DisplayRole), "Пр");
  EXPECT_EQ(rows.FindItem("п"), 3);
  View().SelectRow(3);
  const auto rename = [&](const QString& to) {
    Q_EMIT View().NameEntered(rows.At(3).Name(), to);
    QApplication::processEvents();
  };
  rename("Пр");
  rename("ä");
  EXPECT_TRUE(Alerted(1));
  rename("Ру");
  EXPECT_TRUE(Asks("RNFL original=\xCF\xF0 renameto=\xD0\xF3 path="));
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

// One question is asked for all that comes while another is under way.
TEST_F(Browser, AFinishedUploadIsLookedAtAnew) {
  link_->SetPath("/pub/");
  List({File("b", 5), File("e", 5)});
  looper_->busy = true;
  for (const char* name : {"C", "b", "dir", "/elsewhere"}) {
    Message message = With("ADDI"_what, "FileName", name);
    message.AddString("Path", *name == '/' ? "/other" : "/pub");
    window_->MessageReceived(message);
  }
  looper_->Finish("STAT"_what);
  EXPECT_TRUE(Wait([&] {
    return looper_->Asked().ends_with("STAT path=/pub/ name=C\nSTAT path=/pub/ name=b name=dir\n");
  }));
  for (const char* name : {"C", ".a", "b", "\xC3\xBC", ".."}) {
    link_->UpdateEntry(File(name, 2048), "/pub/");
    link_->UpdateEntry(File("other", 1), "/other");
  }
  EXPECT_TRUE(Wait([&] { return Names() == ". .. .a b C e \xC3\xBC "; })) << Names();
  std::string sizes;
  for (const int row : {3, 4}) sizes += View().Rows().At(row).SizeText();
  EXPECT_EQ(sizes, " 2.00 KB 2.00 KB");
}

TEST_F(Browser, AsksOnceBeforeWhatIsThereIsTouched) {
  link_->SetPath("/pub");
  const QDir folder(folder_.path());
  for (const auto& [name, size] : {std::pair("a", 0), {"c", 0}, {"same", 1}}) {
    QFile local(folder.filePath(name));
    ASSERT_TRUE(local.open(QFile::WriteOnly) && local.resize(size));
  }
  ASSERT_TRUE(QFile::link("/nowhere", folder.filePath("link")));
  ASSERT_TRUE(folder.mkdir("sub") && folder.mkdir("tree"));
  // The names selected, the button pressed (-1: no question), and what is downloaded.
  const std::tuple<QByteArray, int, const char*> cases[] = {
      {"new", -1, "/pub/new>/new+"},
      {"same", 0, "/pub/same>/same!"},
      {"a", 0, "/pub/a>/a&"},
      {"a", 1, "/pub/a>/a!"},
      {"a", 2, ""},
      {"tree", 0, "/pub/tree/>/tree!"},
      {"tree", 1, ""},
      {"link", 0, ""},
      {"sub", 0, ""},
      {"../evil", 0, ""},
      {"../evil a/b good", 0, "/pub/good>/good+"},
      {"b sub tree", 0, "/pub/b>/b+ /pub/sub>/sub! /pub/tree/>/tree!"},
      {"a b link", 0, "/pub/a>/a! /pub/b>/b+ /pub/link>/link!"},
      {"a b c link", 1, "/pub/b>/b+"},
      {"a b link", 2, ""},
  };
  for (const auto& [names, button, downloaded] : cases) {
    SCOPED_TRACE(names.data());
    Anew(button);
    std::vector<RemoteEntry> entries;
    for (const QByteArray& name : names.split(' ')) {
      entries.push_back(name == "tree" ? Folder("tree") : File(name.toStdString()));
    }
    List(std::move(entries));
    SelectEntries();
    Command(Qt::Key_D);
    EXPECT_TRUE(Wait([&] { return !alerts_.empty() || !transfers_.empty(); }));
    EXPECT_TRUE(*downloaded == '\0' || Begins());
    EXPECT_TRUE(Alerted(button < 0 ? 0 : 1));
    EXPECT_EQ(Moved(), downloaded) << button;
  }
}

TEST_F(Browser, AsksBeforeAnUploadReplacesWhatTheListingShows) {
  link_->SetPath("/pub");
  List({File("a"), Folder("dir")});
  // What is uploaded, the button pressed (-1: no question), and what goes.
  const std::tuple<std::vector<std::string>, int, const char*> cases[] = {
      {{"/l/new", "/l/b/"}, -1, "/l/new>/pub/new+ /l/b>/pub/b+"},
      {{"/l/new", "/l/dir/"}, 0, "/l/new>/pub/new+ /l/dir>/pub/dir!"},
      {{"/l/new", "/l/dir/"}, 1, "/l/new>/pub/new+"},
      {{"/l/a"}, 1, ""},
      {{"/l/a", "/l/new"}, 2, ""},
  };
  for (const auto& [paths, button, uploaded] : cases) {
    Anew(button);
    window_->Transfers().Upload(paths);
    EXPECT_TRUE(Wait([&] { return !alerts_.empty() || !transfers_.empty(); }));
    EXPECT_TRUE(*uploaded == '\0' || Begins());
    EXPECT_TRUE(Alerted(button < 0 ? 0 : 1));
    EXPECT_TRUE(alerts_.empty() || alerts_[0].preset == 1);
    EXPECT_EQ(Moved(), uploaded);
  }
}

TEST_F(Browser, EachPanelMovesWhatItWasOpenedFor) {
  settings_.DwnldDir = (folder_.path() + "/gone").toStdString();
  settings_.buffersize = 65'536;
  ProcessSettings::Set(settings_);
  link_->SetPath("/pub");
  List({File("song.mp3"), File("text")});
  View().SelectRow(2);
  const auto panels = [&] { return window_->findChildren<QFileDialog*>(); };
  for (const char* name : {"song.mp3", "text"}) {  // the last one counts
    window_->MessageReceived(With("DWLD"_what, "FileName", name));
    EXPECT_TRUE(
        Wait([&] { return !panels().empty() && panels()[0]->selectedFiles()[0].endsWith(name); }));
  }
  EXPECT_EQ(Selected(), "song.mp3");
  SelectEntries();
  window_->MessageReceived(Message("DWLD"_what));
  EXPECT_TRUE(Wait([&] { return panels().size() == 2; }));
  QFileDialog* save = panels()[0];
  QFileDialog* folder = panels()[1];
  window_->MessageReceived(Message("UPLD"_what));
  EXPECT_EQ(panels().size(), 3);
  for (const QFileDialog* panel : panels()) EXPECT_FALSE(panel->isModal());
  link_->SetPath("/elsewhere");  // too late to change where anything goes
  List({File("up")});
  Q_EMIT window_->findChild<UploadPanel*>()->Chosen({"/l/up"});
  ASSERT_TRUE(Begins());
  EXPECT_EQ(transfers_[0]->description.remoteDirectory, "/pub");
  EXPECT_EQ(Moved(), "/l/up>/pub/up+");
  Anew();
  save->setDirectory(folder_.path());
  Enter(save->findChild<QLineEdit*>(), "other name");
  ASSERT_TRUE(Begins());
  const transferStruct& description = transfers_[0]->description;
  EXPECT_EQ(description.remoteDirectory, "/pub");
  EXPECT_EQ(description.targetFolder, folder_.path().toStdString());
  EXPECT_EQ(description.site, connections_[0]);
  EXPECT_EQ(description.bufferSize + description.jobs[0].size, 65'537);
  EXPECT_EQ(Moved(), "/pub/text>/other name+");
  Anew();
  Q_EMIT folder->fileSelected(folder_.path());
  ASSERT_TRUE(Begins());
  EXPECT_EQ(Moved(), "/pub/song.mp3>/song.mp3+ /pub/text>/text+");
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
  link_->EndListing(0, true);
  EXPECT_TRUE(Wait([&] { return IsReady(); }));
  Command(Qt::Key_Up);
  EXPECT_TRUE(Asks("PCHN cwd=.. path=/pub/src")) << looper_->Asked();
}

TEST_F(Browser, BeforeTheFirstListingNothingIsAskedOfTheWrongDirectory) {
  busy_ = true;
  app_->PostMessage(With("OPNC"_what, "host", "second.test"));
  MWindow& second = *app_->WindowList().back();
  EXPECT_FALSE(second.findChild<QPushButton*>("upload")->isEnabled());
  QMimeData data;
  data.setData("text/uri-list", "file:///a");
  QDropEvent drop({5, 5}, Qt::CopyAction, &data, Qt::LeftButton, {});
  QApplication::sendEvent(&second, &drop);
  EXPECT_FALSE(drop.isAccepted() || !transfers_.empty());
}

TEST_F(Browser, PathFieldSendsWhatWasTypedOrTheBytesThatCame) {
  const std::string latin = "/gr\xFC\xDF";
  link_->SetPath(latin);
  ASSERT_TRUE(Wait([&] { return window_->Session().CurrentDirectory() == latin; }));
  QLineEdit& path = Line(window_, "Path");
  path.setFocus();
  for (const QString& text : {path.text(), QString("/pub/\u00FC"), QString()}) Enter(&path, text);
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
  ASSERT_TRUE(Alerted(3));
  EXPECT_EQ(alerts_[1].preset + alerts_[2].preset, 2);
  EXPECT_EQ(alerts_[2].detail, "Entries on server.test are still being deleted.");
  ASSERT_FALSE(window_.isNull() || app_->Quitting());
  looper_->Finish("DELE"_what);
  EXPECT_TRUE(Wait([&] { return window_->WouldEnd().isEmpty(); }));
  window_->close();
  EXPECT_TRUE(Gone(window_));
  EXPECT_EQ(alerts_.size(), 3U);
}

// The window stays, says what is wrong, and takes the field that is to be mended.
TEST_F(Browser, AFailedFirstConnectionIsMendedWhereItFailed) {
  connects_ = false;
  app_->PostMessage(With("OPNC"_what, "host", "second.test"));
  const QPointer<MWindow> second = app_->WindowList().back();
  const auto* page = second->findChild<FailurePage*>();
  const auto text = [page](const char* name) { return page->findChild<QLabel*>(name)->text(); };
  const auto fail = [&](Outcome::Trouble kind) {
    Message failure = With("FERR"_what, "server", "530 \x1B[mNo.");
    failure.AddText("error", Text("no"));
    failure.AddInt32("kind", static_cast<std::int32_t>(kind));
    link_->PostMessage(failure);
    return Wait([&] { return page->isVisible(); });
  };
  ASSERT_TRUE(fail(Outcome::Trouble::RefusedLogin));
  EXPECT_EQ(text("Heading"), "The server refused the login.");
  EXPECT_EQ(text("Server"), "530 \\x1B[mNo.");
  EXPECT_EQ(second->windowTitle(), "Connected To: second.test");
  QLineEdit& password = Line(page, "Password");
  EXPECT_TRUE(password.isVisible() && !Line(page, "Host").isVisible());
  password.clear();
  QTest::keyClicks(&password, "right");
  QTest::keyClick(&password, Qt::Key_Return);
  ASSERT_EQ(connections_.size(), 3U);
  EXPECT_EQ(connections_[2].password, "right");
  EXPECT_FALSE(page->isVisible());

  connects_ = true;
  ASSERT_TRUE(fail(Outcome::Trouble::RefusedPort));
  Enter(&Line(page, "Port"), "0");
  EXPECT_EQ(connections_.size(), 3U) << "no such port";
  Enter(&Line(page, "Port"), "2121");
  ASSERT_EQ(connections_.size(), 4U);
  EXPECT_EQ(connections_[3].port, 2121);
  EXPECT_TRUE(Wait([&] { return second->findChild<QPushButton*>("upload")->isEnabled(); }));
}

// Whoever stops connecting can begin anew, and no listing that broke off is called empty.
TEST_F(Browser, WhatWasStoppedIsNotTakenForDone) {
  link_->BeginListing();
  link_->EndListing(0, false);
  EXPECT_TRUE(Wait([&] { return IsReady(); }));
  EXPECT_EQ(View().accessibleDescription(), "");
  Message stopped("DONE"_what);
  stopped.AddBool("stopped", true);
  link_->PostMessage(With("LOST"_what, "reason", "gone"));
  auto* again = window_->findChild<QPushButton*>("ConnectAgain");
  ASSERT_TRUE(Wait([&] { return again->isVisible(); }));
  again->click();
  EXPECT_FALSE(again->isVisible());
  Message reconnecting = stopped;
  reconnecting.AddInt32("request", static_cast<std::int32_t>("RCNN"_what));
  link_->PostMessage(reconnecting);
  EXPECT_TRUE(Wait([&] { return again->isVisible(); }));

  connects_ = false;
  app_->PostMessage(With("OPNC"_what, "host", "second.test"));
  const QPointer<MWindow> second = app_->WindowList().back();
  stopped.AddInt32("request", static_cast<std::int32_t>("CNNT"_what));
  link_->PostMessage(stopped);
  const auto* page = second->findChild<FailurePage*>();
  EXPECT_TRUE(Wait([&] { return page->isVisible(); }));
  EXPECT_TRUE(page->findChild<QPushButton*>("TryAgain")->isVisible());
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
  EXPECT_TRUE(Wait([&] { return stopped == 4 && window_.isNull() && looper.expired(); }));
  EXPECT_TRUE(app_->WindowList().empty());
}

TEST_F(Browser, AnswersAKeyWhileAHugeListingArrives) {
  constexpr int kRows = 100'000;
  for (int row = 0; row < kRows; ++row) link_->AddEntries({File("file")});
  link_->EndListing(kRows, true);
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
  EXPECT_TRUE(rowsAtKey > 0 && rowsAtKey < kRows) << rowsAtKey;
}

}  // namespace
}  // namespace corvane
