#include <QSignalSpy>

#include "AppFixture.h"
#include "app/browser/BrowserTransfers.h"
#include "app/browser/DragData.h"
#include "app/shared/Figures.h"

namespace corvane {
namespace {

class Listing : public AppFixture {
 protected:
  Listing() {
    window_->resize(900, 600);
    link_->SetPath("/pub");
  }
  /// The rows that are shown.
  [[nodiscard]] std::string Names() const {
    std::string names;
    for (int row = 0; row < View().Rows().ShownCount(); ++row) {
      names += View().Rows().At(row).Name() + " ";
    }
    return names;
  }
  [[nodiscard]] std::string Selected() const {
    std::string names;
    for (const int row : View().SelectedRows()) names += View().Rows().At(row).Name() + " ";
    return names;
  }
  void Select(const char* name) const { View().SelectRow(View().Rows().Find(name)); }
  void Click(int column) const {
    const QHeaderView* header = View().header();
    const QPoint place(header->sectionViewportPosition(column) + 15, header->height() / 2);
    QTest::mouseClick(header->viewport(), Qt::LeftButton, {}, place);
  }
  void Type(const char* letter, quint64 milliseconds, int key = Qt::Key_A) const {
    QKeyEvent event(QEvent::KeyPress, key, Qt::NoModifier, QString::fromUtf8(letter));
    event.setTimestamp(milliseconds);
    QApplication::sendEvent(&View(), &event);
  }
  /// The middle of a row, in the window.
  [[nodiscard]] QPoint Middle(const char* name) const {
    const int row = View().Rows().Find(name);
    const QModelIndex index = View().Rows().index(row, DirListModel::kName);
    return View().viewport()->mapTo(window_, View().visualRect(index).center());
  }
  [[nodiscard]] QString Text(const char* name) const {
    const auto* label = window_->findChild<QLabel*>(name);
    return label->isVisibleTo(window_) ? label->text() : QString();
  }
};

TEST_F(Listing, OrdersAsReadersExpect) {
  List({File("file10", 5, 2), File("File2", 7, 3), Folder("b dir"), File("\xC3\xA4", 1, 4),
        File("zoo", 5, 5), Folder("Alpha"), File("_x", 5, 1)});
  EXPECT_EQ(Names(), "Alpha b dir _x \xC3\xA4 File2 file10 zoo ");
  Select("zoo");
  const std::pair<int, const char*> clicks[] = {
      {DirListModel::kName, "b dir Alpha zoo file10 File2 \xC3\xA4 _x "},
      {DirListModel::kSize, "Alpha b dir \xC3\xA4 _x file10 zoo File2 "},
      {DirListModel::kSize, "Alpha b dir File2 _x file10 zoo \xC3\xA4 "},
      {DirListModel::kDate, "Alpha b dir _x file10 File2 \xC3\xA4 zoo "},
  };
  for (const auto& [column, names] : clicks) {
    Click(column);
    EXPECT_EQ(Names(), names) << column;
    EXPECT_EQ(Selected(), "zoo ");
  }
  ListingLook look = View().Look();
  look.sortColumn = DirListModel::kName;
  look.directoriesFirst = look.natural = false;
  View().SetLook(look);
  EXPECT_EQ(Names(), "_x \xC3\xA4 Alpha b dir file10 File2 zoo ");
  List({File("b", 1), File("a", 2)});
  EXPECT_EQ(Names(), "a b ") << "the next listing has the order that the user chose";
}

TEST_F(Listing, ChangesKeepThePlaceAndTheOrder) {
  List({File("a2"), File("a10"), File("m"), Folder("dir")});
  Click(DirListModel::kName);
  Select("m");
  fileStruct added;
  added.type = kFile;
  View().InsertItem(added, "a9");
  EXPECT_EQ(Names(), "dir m a10 a9 a2 ");
  View().Rows().Rename(View().Rows().Find("m"), "a3");
  EXPECT_EQ(Names() + Selected(), "dir a10 a9 a3 a2 a3 ");
  View().Rows().Remove(View().Rows().Find("a10"));
  EXPECT_EQ(Selected(), "a3 ");
  View().RestoreAfterListing(ListingPlace::Of(View()));
  List({File("new"), File("a3"), File("a2")});
  EXPECT_EQ(Names() + Selected(), "new a3 a2 a3 ");
  EXPECT_EQ(View().Rows().At(View().currentIndex().row()).Name(), "a3");
  View().SelectAfterListing("sub");
  List({Folder("other"), Folder("sub"), File("a3")});
  EXPECT_EQ(Selected(), "sub ");
  List({File("a3")});
  EXPECT_EQ(Selected(), "") << "another directory";
}

TEST_F(Listing, AFilterHidesRowsFromTheEyeAlone) {
  List({File("Web 2025"), File("report-20.pdf"), File("notes"),
        File("gr\xC3\xBC\xC3\x9F"
             "e"),
        Folder("old")});
  View().selectAll();
  const std::tuple<const char*, const char*, const char*> cases[] = {
      {"20", "report-20.pdf Web 2025 ", "report-20.pdf Web 2025 "},
      {"WEB", "Web 2025 ", "Web 2025 "},
      {"\xC3\x9C",
       "gr\xC3\xBC\xC3\x9F"
       "e ",
       ""},
      {"xx", "", ""},
      {"o", "old notes report-20.pdf ", ""},
  };
  for (const auto& [text, names, selected] : cases) {
    View().SetFilter(QString::fromUtf8(text));
    EXPECT_EQ(Names(), names) << text;
    EXPECT_EQ(Selected(), selected) << text;
  }
  EXPECT_EQ(View().Rows().Count(), 5);
  View().SetFilter("report");
  Anew(2);
  window_->Transfers().Upload({"/l/notes"});
  EXPECT_TRUE(Alerted(1)) << "the hidden entry is there";
  link_->RenameEntry("notes", "report-2.pdf", "/pub");
  link_->RemoveEntry("old", "/pub");
  EXPECT_TRUE(Wait([&] { return View().Rows().Count() == 4; }));
  EXPECT_EQ(Names(), "report-2.pdf report-20.pdf ");
  link_->RenameEntry("report-20.pdf", "x", "/pub");
  EXPECT_TRUE(Wait([&] { return Names() == "report-2.pdf "; })) << Names();
  View().SetFilter("");
  EXPECT_EQ(Names(),
            "gr\xC3\xBC\xC3\x9F"
            "e report-2.pdf Web 2025 x ");
}

TEST_F(Listing, TheFilterLineIsWorkedByKeys) {
  List({File("a"), File("b1"), File("b2")});
  PutInFront(*window_);
  View().setFocus();
  Type("/", 1);
  auto* field = window_->findChild<QLineEdit*>("Filter");
  ASSERT_TRUE(field->hasFocus());
  QTest::keyClicks(field, "b");
  EXPECT_EQ(Text("FilterCount"), "2 of 3 items");
  QTest::keyClick(field, Qt::Key_Down);
  EXPECT_EQ(Selected(), "b1 ");
  EXPECT_TRUE(View().hasFocus());
  QTest::keyClick(&View(), Qt::Key_Escape);
  EXPECT_TRUE(!field->isVisible() && field->text().isEmpty());
  EXPECT_EQ(Names() + Selected(), "a b1 b2 b1 ");
}

TEST_F(Listing, TypingStartsAnewAfterEnterAndKeepsTheSelectionOnAMiss) {
  List({File("Echo"), File("re"),
        File("\xC3\x9C"
             "ber"),
        File("zoo")});
  const std::tuple<quint64, const char*, int, const char*> keys[] = {
      {1000, "r", Qt::Key_R, "re "},
      {1100, "x", Qt::Key_X, "re "},
      {1200, "\r", Qt::Key_Return, "re "},
      {1300, "e", Qt::Key_E, "Echo "},
      {2500, "\xC3\xBC", 0,
       "\xC3\x9C"
       "ber "},
  };
  for (const auto& [milliseconds, key, code, selected] : keys) {
    Type(key, milliseconds, code);
    EXPECT_EQ(Selected(), selected) << milliseconds;
  }
  List({File("a"), File("b")});
  QTest::keyClick(&View(), Qt::Key_End);
  EXPECT_EQ(Selected(), "b ");
}

// A time whose zone is known is shown by the user's clock, any other as it stands.
TEST_F(Listing, TimesStandInTheUsersZone) {
  const QByteArray zone = qgetenv("TZ");
  qputenv("TZ", "UTC-9");
  ::tzset();
  for (const bool utc : {false, true}) {
    const RemoteTime noon{.seconds = 12 * 3600, .utc = utc};
    const MWListItem item({.name = "f", .modified = noon}, std::make_shared<EntryAttributes>());
    EXPECT_EQ(item.Time(), QTime(utc ? 21 : 12, 0));
  }
  zone.isNull() ? qunsetenv("TZ") : qputenv("TZ", zone);
  ::tzset();
}

TEST_F(Listing, NamesAreEditedWhereTheyStand) {
  List({Folder("a.dir"), File(".rc"), File("b.txt"), File("c.tar.gz"), File("\xE4")});
  PutInFront(*window_);
  QSignalSpy entered(&View(), &DirListView::NameEntered);
  const auto editor = [this] { return View().viewport()->findChild<QLineEdit*>("NameEditor"); };
  const auto edit = [&](const char* name) { View().EditName(View().Rows().Find(name)); };
  const std::pair<const char*, const char*> stems[] = {
      {"a.dir", "a.dir"}, {".rc", ".rc"}, {"b.txt", "b"}, {"c.tar.gz", "c"}};
  for (const auto& [name, stem] : stems) {
    edit(name);
    ASSERT_NE(editor(), nullptr) << name;
    EXPECT_EQ(editor()->selectedText(), stem);
    QTest::keyClicks(editor(), "x");
    QTest::keyClick(editor(), Qt::Key_Escape);
    EXPECT_TRUE(Wait([&] { return editor() == nullptr; }));
  }
  edit("\xE4");
  QTest::keyClick(editor(), Qt::Key_Return);
  EXPECT_TRUE(Wait([&] { return editor() == nullptr; }) && entered.isEmpty()) << "unchanged";
  edit("b.txt");
  QTest::keyClicks(editor(), "new");
  View().Rows().SetEnabledAll(false);  // a change of the row leaves what was typed
  View().Rows().SetEnabledAll(true);
  ASSERT_NE(editor(), nullptr);
  EXPECT_EQ(editor()->text(), "new.txt");
  QTest::keyClick(editor(), Qt::Key_Return);
  ASSERT_TRUE(Wait([&] { return entered.size() == 1; }));
  EXPECT_EQ(entered[0][0].value<std::string>() + entered[0][1].toString().toStdString(),
            "b.txtnew.txt");
  QSignalSpy created(&View(), &DirListView::NewDirectoryEntered);
  auto* name = window_->findChild<QLineEdit*>("NewDirectoryName");
  for (const Qt::Key end : {Qt::Key_Escape, Qt::Key_Return}) {
    View().EditNewDirectory("New folder");
    EXPECT_TRUE(name->isVisible() && View().Rows().Find("New folder") < 0);
    EXPECT_LE(name->mapTo(window_, QPoint(0, name->height())).y(), Middle("a.dir").y());
    QTest::keyClick(name, end);
    EXPECT_FALSE(name->isVisible());
  }
  EXPECT_EQ(created.size(), 1);
}

TEST_F(Listing, DropsOntoADirectoryGoIntoIt) {
  List({Folder("dir"), Folder("other"), File("f")});
  std::string told;
  QObject::connect(&View(), &DirListView::MoveWanted, &View(),
                   [&](const std::vector<std::string>& names, const std::string& directory) {
                     for (const std::string& name : names) told += name + " ";
                     told += "to " + directory;
                   });
  QObject::connect(&View(), &DirListView::FilesDropped, &View(),
                   [&](const QMimeData& data, const std::string& directory) {
                     told += data.urls().front().path().toStdString() + " into " + directory;
                   });
  const auto drop = [&](const QMimeData& data, const char* onto) {
    told.clear();
    QDragEnterEvent enter(Middle(onto), Qt::CopyAction, &data, Qt::LeftButton, {});
    QApplication::sendEvent(View().viewport(), &enter);
    QDropEvent event(Middle(onto), Qt::CopyAction, &data, Qt::LeftButton, {});
    QApplication::sendEvent(window_, &event);
    return told;
  };
  QMimeData files;
  files.setUrls({QUrl("file:///a")});
  QMimeData rows;
  rows.setData(DragData::kRows, "");
  EXPECT_EQ(drop(files, "dir"), "/a into dir");
  ASSERT_TRUE(Begins());
  EXPECT_EQ(Moved(), "/a>/pub/dir/a+");
  Anew();
  EXPECT_EQ(drop(files, "f"), "");
  ASSERT_TRUE(Begins()) << "elsewhere the window takes it";
  EXPECT_EQ(Moved(), "/a>/pub/a+");
  EXPECT_EQ(drop(rows, "dir"), "") << "rows of another listing";
  View().selectAll();
  View().selectionModel()->select(View().Rows().index(0, 0),
                                  QItemSelectionModel::Deselect | QItemSelectionModel::Rows);
  const QPoint from = Middle("f");
  QTest::mousePress(window_->windowHandle(), Qt::LeftButton, {}, from);
  QTest::mouseMove(window_->windowHandle(), from + QPoint(0, 5));
  QTest::mouseMove(window_->windowHandle(), from + QPoint(0, 40));
  EXPECT_EQ(drop(rows, "dir"), "other f to dir");
  EXPECT_EQ(drop(rows, "other"), "") << "not into itself";
  QTest::mouseRelease(window_->windowHandle(), Qt::LeftButton, {}, from);
  QApplication::processEvents();
  if (auto* panel = window_->findChild<QFileDialog*>()) panel->close();
}

TEST_F(Listing, TellsFiguresOfOneRowAndOfSeveral) {
  RemoteEntry file = File("sample.bin", 209'715'200);
  file.mode = "-rw-r-sr-T";
  file.owner = "root";
  List({file, File("notes.txt", 14), Folder("dir"), Link("link")});
  const auto facts = [this] {
    QStringList all;
    for (const char* name : {"InfoHeading", "InfoText", "Size", "Permissions", "User"}) {
      const QString text = Text(name).remove(QChar(0x200B));
      if (!text.isEmpty()) all << text;
    }
    return all.join('|').toStdString();
  };
  EXPECT_EQ(facts(), "File Info|Nothing is selected.");
  Select("sample.bin");
  EXPECT_EQ(facts(), "sample.bin|Binary file|209.7 MB|rw-r-sr-T  (3654)|root");
  EXPECT_EQ(window_->findChild<QLabel*>("Size")->toolTip(), "209,715,200 bytes");
  View().selectAll();
  EXPECT_EQ(facts(), "4 selected|3 files, 1 directory|209.7 MB and 1 directory");
}

TEST_F(Listing, ANarrowWindowHidesColumnsAndTheLookIsKeptForTheSite) {
  List({File("a")});
  ListingLook look;
  look.columns[DirListModel::kOwner].shown = true;
  look.columns[DirListModel::kSize].width = 123;
  look.sortColumn = DirListModel::kSize;
  look.ascending = false;
  View().Remember("anna@server.test:21");
  View().SetLook(look);
  View().Remember("other");
  EXPECT_EQ(View().Look(), ListingLook());
  View().Remember("anna@server.test:21");
  EXPECT_EQ(View().Look(), look);
  std::string shown;
  for (const int width : {800, 420, 300, 200}) {
    View().setFixedWidth(width);
    QApplication::processEvents();
    for (int column = 0; column < DirListModel::kColumns; ++column) {
      if (!View().header()->isSectionHidden(column)) shown += "nsdpogk"[column];
    }
    EXPECT_EQ(View().header()->length(), View().viewport()->width());
    shown += ' ';
  }
  EXPECT_EQ(shown, "nsdo nsd ns n ");
}

TEST(Figures, AreThoseOfTheLocale) {
  const std::tuple<const char*, std::int64_t, const char*> sizes[] = {
      {"C", 0, "0 B"},
      {"C", 999, "999 B"},
      {"C", 1000, "1.0 kB"},
      {"C", 999'949, "999.9 kB"},
      {"C", 999'950, "1.0 MB"},
      {"de_DE", 22'900, "22,9 kB"},
      {"C", INT64_MAX, "9.2 EB"},
      {"C", 209'715'200, "209.7 MB"}};
  for (const auto& [locale, bytes, text] : sizes) {
    QLocale::setDefault(QLocale(locale));
    EXPECT_EQ(ShortSize(bytes).toStdString(), text);
  }
  const std::pair<const char*, const char*> dates[] = {{"C", "04 Mar 2026 09:06"},
                                                       {"en_GB", "04 Mar 2026 09:06"},
                                                       {"de_DE", "04.03.2026 09:06"},
                                                       {"sv_SE", "2026-03-04 09:06"},
                                                       {"fr_FR", "04/03/2026 09:06"}};
  for (const auto& [locale, text] : dates) {
    QLocale::setDefault(QLocale(locale));
    EXPECT_EQ(ShortDate(QDate(2026, 3, 4), QTime(9, 6)).toStdString(), text) << locale;
  }
  EXPECT_EQ(ShortDate(QDate(2026, 3, 4), {}), "04/03/2026");
  QLocale::setDefault(QLocale::c());
}

}  // namespace
}  // namespace corvane
