#include "AppFixture.h"
#include "app/entries/FindModel.h"
#include "app/entries/FindWindow.h"
#include "app/entries/PropertiesWindow.h"
#include "app/shared/StatusLine.h"

namespace corvane {
namespace {

using Below = RightsOrder::Below;

struct IdleWalk : MThread {
  std::int32_t Execute() override { return 0; }
};

/// The windows about entries, in either style; what they want walked is recorded.
class Entries : public AppFixture, public testing::WithParamInterface<bool> {
 protected:
  Entries() {
    if (GetParam()) UseClassicStyle();
    factory_.walk = [this](const auto& looper, const auto& window, const Site&, int connections,
                           const WalkOrder& order, std::shared_ptr<WalkUi> ui) {
      EXPECT_TRUE(looper == looper_ && window == link_ && connections > 0);
      orders_.push_back(order);
      ui_ = std::move(ui);
      walk_ = std::make_shared<IdleWalk>();
      return walk_;
    };
  }
  // The program took the factory before this class could fill it.
  void SetUp() override {
    app_.reset();
    app_ = std::make_unique<TambleApp>(factory_);
    app_->ReadyToRun(With("OPNC"_what, "host", "server.test"));
    window_ = app_->WindowList().back();
    PutInFront(*window_);
    ProcessSettings::Set(settings_);
    ASSERT_TRUE(Wait([&] { return IsReady(); }));
    link_->SetPath("/pub");
    RemoteEntry folder = Folder("dir");
    folder.mode = "drwxr-sr-x";
    folder.owner = "anna";
    RemoteEntry file = File("f.txt", 209'715'200);
    file.mode = "-rw-r--r--";
    RemoteEntry broken = File("a\nDELE b");
    broken.mode = "-rw-r--r--";
    List({folder, file, Link("link"), broken});
  }
  /// The window that opens of the entries of those names.
  template <typename Window>
  Window* Opened(const std::vector<const char*>& names, const QKeySequence& key) {
    View().clearSelection();
    for (const char* name : names)
      View().selectionModel()->select(View().Rows().index(View().Rows().Find(name), 0),
                                      QItemSelectionModel::Select | QItemSelectionModel::Rows);
    PutInFront(*window_);
    const QKeyCombination keys = key[0];
    QTest::keyClick(&View(), keys.key(), keys.keyboardModifiers());
    Window* opened = nullptr;
    EXPECT_TRUE(Wait([&] {
      const auto all = window_->findChildren<Window*>();
      return (opened = all.isEmpty() ? nullptr : all.last()) != nullptr;
    }));
    return opened;
  }
  PropertiesWindow* Properties(const std::vector<const char*>& names) {
    return Opened<PropertiesWindow>(names, QKeySequence("Alt+Return"));
  }
  static QCheckBox& Box(const QWidget* window, const QString& bit) {
    return *window->findChild<QCheckBox*>("Right" + bit);
  }
  static QString Fact(const QWidget* window, const char* name) {
    return window->findChild<QLabel*>(name)->text();
  }
  static void Press(const QWidget* window, const char* name) {
    window->findChild<QAbstractButton*>(name)->click();
  }
  void End(const WalkEnd& end) { ui_->Ended(end); }

  std::vector<WalkOrder> orders_;
  std::shared_ptr<WalkUi> ui_;
  std::shared_ptr<IdleWalk> walk_;
};

INSTANTIATE_TEST_SUITE_P(Styles, Entries, testing::Bool());

TEST_P(Entries, PropertiesKeepBoxesAndNumberEqual) {
  auto* window = Properties({"dir"});
  EXPECT_EQ(window->windowTitle(), QString::fromUtf8("Properties – dir"));
  EXPECT_EQ(Fact(window, "PlaceFact"), "Directory in /pub on server.test");
  EXPECT_EQ(Fact(window, "OwnerFact"), "anna");
  auto* change = window->findChild<QPushButton*>("change");
  QLineEdit& number = Line(window, "Octal");
  EXPECT_EQ(number.text(), "2755");
  EXPECT_EQ(Box(window, "20").accessibleName(), "Group: Write");
  EXPECT_EQ(Box(window, "1").accessibleName(), "Others: Enter");
  EXPECT_FALSE(change->isEnabled());
  EXPECT_FALSE(change->toolTip().isEmpty());
  Box(window, "20").click();
  EXPECT_EQ(number.text(), "2775");
  EXPECT_TRUE(change->isEnabled());
  number.selectAll();
  QTest::keyClicks(&number, "9");
  EXPECT_EQ(number.text(), "2775");
  QTest::keyClicks(&number, "64");
  EXPECT_FALSE(change->isEnabled());
  QTest::keyClicks(&number, "0");
  EXPECT_TRUE(Box(window, "40").isChecked() && !Box(window, "100").isChecked());
  change->click();
  const auto& order = std::get<RightsOrder>(orders_.at(0));
  // Three digits say nothing of the special bits.
  EXPECT_EQ(order.rights->mask, 0777U);
  EXPECT_EQ(order.rights->bits, 0640U);
  EXPECT_EQ(order.directory + "/" + order.entries.at(0).name, "/pub/dir");
  EXPECT_TRUE(order.below == Below::Nothing && !order.time);
  const QPointer open(window);
  End({});
  EXPECT_TRUE(Gone(open));
  EXPECT_TRUE(Asks("PCHN cwd=. path=/pub")) << looper_->Asked();
}

TEST_P(Entries, PropertiesOfSeveralLeaveWhatDiffers) {
  auto* window = Properties({"dir", "f.txt", "link"});
  EXPECT_EQ(Box(window, "1").checkState(), Qt::PartiallyChecked);
  EXPECT_EQ(Box(window, "400").checkState(), Qt::Checked);
  EXPECT_EQ(Line(window, "Octal").text(), "");
  EXPECT_EQ(Fact(window, "Hint"), "Links among them are left alone.");
  Box(window, "4").click();
  Box(window, "1").click();
  Box(window, "1").click();
  EXPECT_EQ(Box(window, "1").checkState(), Qt::Unchecked);
  Press(window, "Inside");
  auto* below = window->findChild<QComboBox*>("Below");
  below->setCurrentIndex(2);
  Press(window, "change");
  const auto& order = std::get<RightsOrder>(orders_.at(0));
  EXPECT_EQ(order.rights->mask, 0667U);
  EXPECT_EQ(order.rights->bits, 0640U);
  EXPECT_EQ(order.below, Below::Directories);
  // What was refused stays to be read, and Stop stops.
  Press(window, "cancel");
  EXPECT_TRUE(walk_->Cancelled());
  WalkEnd end;
  end.refused = 1;
  end.refusals = Text::Raw("dir/x: Not yours");
  End(end);
  EXPECT_TRUE(Wait([&] { return Fact(window, "Told").contains("dir/x: Not yours"); }));
  EXPECT_TRUE(window->isVisible());
  below->setCurrentIndex(1);
  EXPECT_EQ(Box(window, "100").checkState(), Qt::PartiallyChecked);
}

TEST_P(Entries, PropertiesCountAndSetTimes) {
  Message caps("CAPS"_what);
  caps.AddInt32("times", 1);
  const QPointer first(Properties({"f.txt"}));
  EXPECT_FALSE(first->findChild<QAbstractButton*>("SetTime")->isEnabled());
  first->close();
  ASSERT_TRUE(Gone(first));
  link_->PostMessage(std::move(caps));
  link_->SetStatus(Text::Raw("told"));
  ASSERT_TRUE(Wait([&] { return window_->findChild<QLabel*>("StatusString")->text() == "told"; }));
  auto* window = Properties({"f.txt"});
  EXPECT_TRUE(Fact(window, "SizeFact").startsWith("209,715,200 bytes (2"));
  ASSERT_TRUE(window->findChild<QAbstractButton*>("SetTime")->isEnabled());
  Press(window, "SetTime");
  window->findChild<QDateTimeEdit*>("Time")->setDateTime(
      QDateTime::fromSecsSinceEpoch(1'000'000'000));
  Press(window, "change");
  const auto& order = std::get<RightsOrder>(orders_.at(0));
  EXPECT_TRUE(!order.rights && order.time == 1'000'000'000);
  End({});
  EXPECT_TRUE(Asks("STAT path=/pub name=f.txt")) << looper_->Asked();
  window = Properties({"dir"});
  EXPECT_EQ(Fact(window, "SizeFact"), "not counted yet");
  Press(window, "Count");
  EXPECT_EQ(std::get<CountOrder>(orders_.at(1)).names, std::vector<std::string>{"dir"});
  ui_->progress.files = 2;
  ui_->progress.folders = 1;
  ui_->progress.bytes = 1'000;
  EXPECT_TRUE(Wait([&] { return Fact(window, "SizeFact").endsWith("so far"); }));
  End({});
  EXPECT_TRUE(Wait([&] { return Fact(window, "SizeFact").startsWith("1,000 bytes ("); }));
  EXPECT_TRUE(Fact(window, "SizeFact").endsWith("2 files, 1 directory"));
}

TEST_P(Entries, PropertiesSayWhatCannotBeChanged) {
  auto* window = Properties({"link"});
  EXPECT_TRUE(Fact(window, "Hint").startsWith("A link has no permissions"));
  EXPECT_FALSE(Box(window, "400").isEnabled());
  window = Properties({"a\nDELE b"});
  EXPECT_TRUE(Fact(window, "Hint").startsWith("A name with a line break"));
  EXPECT_FALSE(Box(window, "400").isEnabled());
  EXPECT_TRUE(orders_.empty());
}

TEST_P(Entries, FindsAndDoesSomethingWithIt) {
  auto* window = Opened<FindWindow>({}, QKeySequence("Ctrl+Shift+F"));
  EXPECT_EQ(Fact(window, "Where"), "Below /pub on server.test");
  QTest::keyClicks(&Line(window, "FindName"), "*.txt");
  window->findChild<QComboBox*>("SizeIs")->setCurrentIndex(1);
  window->findChild<QComboBox*>("FindKind")->setCurrentIndex(1);
  QTest::keyClick(&Line(window, "FindName"), Qt::Key_Return);
  const auto& order = std::get<FindOrder>(orders_.at(0));
  EXPECT_EQ(order.directory, "/pub");
  EXPECT_TRUE(order.rule.name.Fits("A.TXT") && !order.rule.name.Fits("a.txt.old"));
  EXPECT_EQ(order.rule.least, 1'000'000);
  EXPECT_EQ(order.rule.kind, RemoteEntry::Kind::File);
  RemoteEntry deep = Folder("deep");
  EXPECT_TRUE(ui_->Found({{"/pub", File("a.txt")}, {"/pub/deep", File("b.txt")}}));
  EXPECT_TRUE(ui_->Found({{"/pub", deep}, {"/pub/other", File("a.txt")}}));
  auto* rows = window->findChild<FindModel*>();
  ASSERT_TRUE(Wait([&] { return rows->rowCount() == 4; }));
  ui_->progress.found = 4;
  ui_->progress.directories = 3;
  WalkEnd end;
  end.refused = 2;
  end.refusals = Text::Raw("closed: Not yours");
  end.bound = Text("It stopped after %1 entries, in %2.", 1000, "/d");
  End(end);
  const auto* status = window->findChild<StatusLine*>();
  EXPECT_TRUE(Wait([&] {
    return status->Text() ==
           "3 directories looked at, 4 found. It stopped after 1000 entries, in /d.";
  })) << status->Text().toStdString();
  Q_EMIT window->findChild<StatusLine*>()->SignPressed();
  EXPECT_TRUE(Alerted(1) && alerts_[0].detail == "closed: Not yours");
  auto* list = window->findChild<QTreeView*>("Results");
  list->selectAll();
  Press(window, "find");
  list->selectAll();
  EXPECT_EQ(orders_.size(), 2U);
  ui_->Found({{"/pub", File("a.txt")},
              {"/pub/deep", File("b.txt")},
              {"/pub", deep},
              {"/pub/other", File("a.txt")}});
  ASSERT_TRUE(Wait([&] { return rows->rowCount() == 4; }));
  list->selectAll();
  const auto run = [&](const char* name) { window->findChild<QAction*>(name)->trigger(); };
  run("CopyFound");
  EXPECT_EQ(QApplication::clipboard()->text().count("ftp://server.test/pub/"), 4);
  run("DownloadFound");
  ASSERT_TRUE(Begins());
  EXPECT_EQ(transfers_[0]->description.jobs.size(), 4U);
  EXPECT_EQ(transfers_[0]->description.jobs[1].remote, "/pub/deep/b.txt");
  // Two of one name do not take each other's place.
  EXPECT_NE(transfers_[0]->description.jobs[0].local, transfers_[0]->description.jobs[3].local);
  Anew(0);
  run("DeleteFound");
  EXPECT_TRUE(Asks("DELE path=/ name=pub/a.txt name=pub/deep name=pub/other/a.txt"))
      << looper_->Asked();
  link_->RemoveEntry("pub/other/a.txt", "/");
  ASSERT_TRUE(Wait([&] { return rows->rowCount() == 3; }));
  list->selectionModel()->select(rows->index(1, 0),
                                 QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows);
  run("ShowInDirectory");
  EXPECT_TRUE(Asks("PCHN cwd=/pub/deep path=/pub")) << looper_->Asked();
}

TEST_P(Entries, ManyThatAreFoundKeepTheWindowAnswering) {
  auto* window = Opened<FindWindow>({}, QKeySequence("Ctrl+Shift+F"));
  Press(window, "find");
  for (int batch = 0; batch < 300; ++batch) {
    std::vector<FoundEntry> found;
    for (int i = 0; i < 300; ++i) found.push_back({"/pub", File(std::to_string(i))});
    EXPECT_TRUE(ui_->Found(std::move(found)));
  }
  End({});
  auto* rows = window->findChild<FindModel*>();
  QElapsedTimer turn;
  qint64 longest = 0;
  for (turn.start(); rows->rowCount() < 90'000 && longest < 2'000;) {
    turn.restart();
    QApplication::processEvents();
    longest = std::max(longest, turn.elapsed());
  }
  EXPECT_EQ(rows->rowCount(), 90'000);
  EXPECT_LT(longest, 1'000);
}

}  // namespace
}  // namespace corvane
