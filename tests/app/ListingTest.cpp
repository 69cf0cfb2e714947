#include <QApplication>
#include <QClipboard>
#include <QGroupBox>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLabel>
#include <QPushButton>
#include <thread>

#include "AppFixture.h"
#include "app/DirListView.h"
#include "app/MWindow.h"
#include "app/SmallView.h"

namespace corvane {
namespace {

class Listing : public AppFixture {
 protected:
  Listing() : window_(OpenBrowser()), view_(window_.Listing()) {}

  [[nodiscard]] std::string Names() const {
    std::string names;
    for (int row = 0; row < view_.Rows().Count(); ++row) names += view_.Rows().At(row).Name() + " ";
    return names;
  }
  void ClickHeader(int column) {
    const QHeaderView* header = view_.header();
    QTest::mouseClick(header->viewport(), Qt::LeftButton, {},
                      QPoint(header->sectionViewportPosition(column) + 5, header->height() / 2));
  }
  [[nodiscard]] std::string Selected() const {
    const int row = view_.FirstSelected();
    return row < 0 ? "" : view_.Rows().At(row).Name();
  }

  MWindow& window_;
  DirListView& view_;
};

TEST_F(Listing, SortsByAClickWithTheDotsOnTop) {
  List(WithDots(
      {File("beta", 30, 2), File("Alpha", 10, 3), Directory("dir"), File("gamma", 20, 1)}));
  EXPECT_EQ(Names(), ". .. Alpha beta dir gamma ");
  struct Case {
    int column;
    const char* names;
  };
  for (const Case& c : {
           Case{DirListModel::kName, ". .. gamma dir beta Alpha "},
           Case{DirListModel::kSize, ". .. dir Alpha gamma beta "},
           Case{DirListModel::kSize, ". .. beta gamma Alpha dir "},
           Case{DirListModel::kDate, ". .. gamma dir beta Alpha "},
           Case{DirListModel::kIcon, ". .. Alpha beta dir gamma "},
       }) {
    ClickHeader(c.column);
    EXPECT_EQ(Names(), c.names) << c.column;
  }
  EXPECT_TRUE(view_.header()->isSortIndicatorShown());
}

TEST_F(Listing, RowsOfEqualKeyKeepTheirOrderAndTheSelectionFollows) {
  List(WithDots({File("b", 7), File("c", 7), File("a", 9)}));
  view_.SelectRow(4);
  ClickHeader(DirListModel::kSize);
  EXPECT_EQ(Names(), ". .. b c a ");
  EXPECT_EQ(Selected(), "c");
  ClickHeader(DirListModel::kSize);
  EXPECT_EQ(Names(), ". .. a b c ");
  EXPECT_EQ(Selected(), "c");
}

TEST_F(Listing, TypingSelectsByTheBeginningOfTheName) {
  List(WithDots({File("Echo"), File("README"), File("rabbit"), File("reel"), File("zoo")}));
  struct Case {
    int at;  // milliseconds
    const char* key;
    const char* selected;
  };
  for (const Case& c : {
           Case{1000, "r", "rabbit"},
           Case{1949, "e", "README"},
           Case{2000, "E", "reel"},
           Case{2500, "x", ""},
           Case{3450, "r", "rabbit"},
           Case{4400, "e", "Echo"},
       }) {
    QKeyEvent event(QEvent::KeyPress, Qt::Key_A, Qt::NoModifier, QString::fromUtf8(c.key));
    event.setTimestamp(static_cast<quint64>(c.at));
    QApplication::sendEvent(&view_, &event);
    EXPECT_EQ(Selected(), c.selected) << c.at;
  }
}

TEST_F(Listing, ShowsWhatTheSelectedRowIs) {
  List(WithDots({File("file")}));
  const auto* button = window_.findChild<QPushButton*>("download");
  const auto* user = view_.InfoBox()->findChild<QLabel*>("User");
  QTest::keyClicks(&view_, "f");
  EXPECT_TRUE(button->isEnabled());
  EXPECT_EQ(user->text(), "User: joe");
  QTest::keyClick(&view_, Qt::Key_Home);
  EXPECT_EQ(Selected(), ".");
  EXPECT_FALSE(button->isEnabled());
  EXPECT_EQ(user->text(), " ");
}

TEST_F(Listing, NewNamesGoToTheirPlaceInNameOrder) {
  List(WithDots({File("b"), File("d")}));
  for (const char* name : {"A", "c", "e", ".a"}) view_.InsertItem(File(name), name);
  EXPECT_EQ(Names(), ". .. .a A b c d e ");
  EXPECT_EQ(view_.Rows().Find("a"), -1);
  EXPECT_EQ(view_.Rows().Find("A"), 3);
}

TEST_F(Listing, CountsEntriesWithoutTheDots) {
  const auto* count = window_.findChild<SmallView*>("smallview");
  List(WithDots({}));
  EXPECT_TRUE(Wait([&] { return count->text() == "0 Items"; }));
  List(WithDots({File("one")}));
  EXPECT_TRUE(Wait([&] { return count->text() == "1 Item"; }));
}

TEST_F(Listing, DoubleClickEntersADirectoryUnlessDisabled) {
  List(WithDots({Directory("pub")}));
  const QPoint row = view_.visualRect(view_.Rows().index(2, DirListModel::kName)).center();
  const auto doubleClick = [&] {
    QTest::mouseClick(view_.viewport(), Qt::LeftButton, {}, row);
    QTest::mouseDClick(view_.viewport(), Qt::LeftButton, {}, row);
  };
  view_.DisableAll();
  doubleClick();
  view_.EnableAll();
  QTest::keyClick(&window_, Qt::Key_Up, Qt::ControlModifier);
  doubleClick();
  EXPECT_TRUE(Wait([&] { return looper_->Has("PCHN"_what, "cwd", "pub"); }));
  EXPECT_EQ(looper_->Received().size(), 3U);  // with the first connect and the parent directory
  EXPECT_TRUE(looper_->Has("PCHN"_what, "cwd", ".."));
}

TEST_F(Listing, CopyPutsUrlsOnTheClipboardAndDeselects) {
  link_->SetPath("/pub");
  List(WithDots({File("a"), File("b"), File("c")}));
  ASSERT_TRUE(Wait([&] { return window_.CurrentDirectory() == "/pub"; }));
  view_.SelectRow(2);
  QTest::keyClick(&view_, Qt::Key_End, Qt::ShiftModifier);
  QTest::keyClick(&window_, Qt::Key_C, Qt::ControlModifier);
  EXPECT_EQ(QApplication::clipboard()->text(),
            "ftp://server.test/pub/a\nftp://server.test/pub/b\nftp://server.test/pub/c\n");
  EXPECT_EQ(view_.SelectedCount(), 0);
}

TEST_F(Listing, AFinishedUploadIsAddedOrRenewed) {
  link_->SetPath("/pub/");
  List(WithDots({File("b", 5)}));
  const auto uploaded = [&](const char* name, const char* path, const char* type) {
    Message message("ADDI"_what);
    message.AddString("FileName", name);
    message.AddString("Path", path);
    message.AddString("Type", type);
    message.AddInt64("fSize", 2048);
    link_->PostMessage(message);
  };
  uploaded("a", "/pub", "f");
  uploaded("b", "/pub/", "f");
  uploaded("d", "/pub", "d");
  uploaded("elsewhere", "/other", "f");
  uploaded("..", "/pub", "f");
  ASSERT_TRUE(Wait([&] { return view_.Rows().Count() == 5; }));
  QApplication::processEvents();
  EXPECT_EQ(Names(), ". .. a b d ");
  EXPECT_EQ(view_.Rows().At(3).SizeText(), " 2.00 KB");
  EXPECT_EQ(view_.Rows().At(4).SizeText(), " <dir>");
  EXPECT_EQ(view_.Rows().At(1).SizeText(), " -");
}

}  // namespace
}  // namespace corvane
