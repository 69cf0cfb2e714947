#include "AppFixture.h"
#include "app/browser/BrowserCommands.h"
#include "app/browser/CutRows.h"
#include "app/browser/PathField.h"
#include "remote/RemotePath.h"

namespace corvane {
namespace {

/// The window in its own style, with a server of a few directories.
class Ways : public AppFixture {
 protected:
  Ways() { Show("/pub", {Folder("dir"), Folder("other"), File("a 10"), File("a 9")}); }
  ~Ways() override { CutRows::Forget(); }

  /// The connection has entered a directory and listed it.
  void Show(const std::string& path, std::vector<RemoteEntry> entries) {
    link_->BeginListing();
    link_->SetPath(path);
    List(std::move(entries));
    EXPECT_TRUE(Wait([&] { return IsReady(); }));
  }
  [[nodiscard]] std::string Selected() const {
    const int row = View().FirstSelected();
    return row < 0 ? "" : View().Rows().At(row).Name();
  }
  void Select(const std::string& name) { View().SelectRow(View().Rows().Find(name)); }
  void Key(Qt::Key key, Qt::KeyboardModifiers with = {}) { QTest::keyClick(&View(), key, with); }
  [[nodiscard]] QString Figure() const { return window_->findChild<QLabel*>("smallview")->text(); }
};

TEST_F(Ways, ThePlaceIsKeptWhereverOneGoes) {
  const std::vector<RemoteEntry> pub{Folder("dir"), Folder("other"), File("a 10"), File("a 9")};
  EXPECT_EQ(window_->windowTitle(), "pub – server.test");
  Select("dir");
  Key(Qt::Key_Return);
  EXPECT_TRUE(Asks("PCHN cwd=dir path=/pub")) << looper_->Asked();
  Show("/pub/dir", {File("x"), File("y")});
  EXPECT_EQ(Selected(), "");
  Select("y");
  Key(Qt::Key_Up, Qt::AltModifier);
  EXPECT_TRUE(Asks("PCHN cwd=.. path=/pub/dir")) << looper_->Asked();
  Show("/pub", pub);
  EXPECT_EQ(Selected(), "dir") << "where one came from";
  Select("a 9");
  Key(Qt::Key_Left, Qt::AltModifier);
  EXPECT_TRUE(Asks("PCHN cwd=/pub/dir path=/pub")) << looper_->Asked();
  Show("/pub/dir", {File("x"), File("y")});
  EXPECT_EQ(Selected(), "y");
  Key(Qt::Key_Right, Qt::AltModifier);
  EXPECT_TRUE(Asks("PCHN cwd=/pub path=/pub/dir")) << looper_->Asked();
  Show("/pub", pub);
  EXPECT_EQ(Selected(), "a 9");
  Key(Qt::Key_F5);
  EXPECT_TRUE(Asks("PCHN cwd=. path=/pub")) << looper_->Asked();
  Show("/pub", {File("a 9"), File("new")});
  EXPECT_EQ(Selected(), "a 9");
  EXPECT_EQ(Figure(), "2 items");
  Key(Qt::Key_Left, Qt::AltModifier);
  EXPECT_TRUE(Asks("PCHN cwd=/pub/dir path=/pub") && Wait([&] { return IsReady(); }));
  Key(Qt::Key_Up, Qt::AltModifier);
  Show("/", {Folder("pub"), File("z")});
  EXPECT_EQ(Selected(), "pub") << "the step back came to nothing";
}

TEST_F(Ways, APathThatCannotBeEnteredStaysInTheField) {
  auto& path = *window_->findChild<PathField*>();
  path.setFocus();
  Enter(&path, "/wrong");
  EXPECT_TRUE(Asks("PCHN cwd=/wrong path=/pub"));
  EXPECT_TRUE(Wait([&] { return IsReady(); }));
  EXPECT_EQ(path.text(), "/wrong");
  QTest::keyClick(&path, Qt::Key_Escape);
  EXPECT_EQ(path.text(), "/pub");
  path.setFocus();
  QTest::keyClicks(&path, "x");
  link_->SetPath("/pub");
  QApplication::processEvents();
  EXPECT_EQ(path.text(), "/pubx") << "what is being typed";
}

TEST_F(Ways, NamesAreEnteredWhereTheyStand) {
  Select("a 9");
  Key(Qt::Key_F2);
  auto* editor = qobject_cast<QLineEdit*>(QApplication::focusWidget());
  ASSERT_NE(editor, nullptr);
  QTest::keyClicks(editor, "b");
  QTest::keyClick(editor, Qt::Key_Return);
  EXPECT_TRUE(Asks("RNFL original=a 9 renameto=b path=/pub")) << looper_->Asked();
  Key(Qt::Key_M, Qt::ControlModifier);
  editor = qobject_cast<QLineEdit*>(QApplication::focusWidget());
  ASSERT_NE(editor, nullptr);
  QTest::keyClicks(editor, "made");
  QTest::keyClick(editor, Qt::Key_Return);
  EXPECT_TRUE(Asks("MKDR name=made path=/pub")) << looper_->Asked();
  Show("/pub", {Folder("made"), File("b")});
  EXPECT_EQ(Selected(), "made");
}

TEST_F(Ways, WhatIsCutIsMovedToWhereItIsPasted) {
  Select("a 9");
  Key(Qt::Key_Delete, Qt::ShiftModifier);
  Key(Qt::Key_V, Qt::ControlModifier);
  EXPECT_EQ(looper_->Asked(), "CNNT\n") << "there it stands already";
  Show("/pub/dir", {});
  Key(Qt::Key_V, Qt::ControlModifier);
  EXPECT_TRUE(Asks("MOVE path=/pub name=a 9 to=/pub/dir\nPCHN cwd=. path=/pub/dir"))
      << looper_->Asked();
  EXPECT_TRUE(Wait([&] { return IsReady(); }));
  Key(Qt::Key_V, Qt::ControlModifier);
  EXPECT_TRUE(Asks("MOVE path=/pub name=a 9 to=/pub/dir\nPCHN cwd=. path=/pub/dir")) << "once";
}

TEST_F(Ways, FilesAreDuplicatedWhereTheServerCan) {
  Select("a 9");
  Key(Qt::Key_D, Qt::ControlModifier | Qt::ShiftModifier);
  Message can("CAPS"_what);
  can.AddInt32("copy", 1);
  link_->PostMessage(can);
  Show("/pub", {File("t.csv"), File("t copy.csv")});
  Select("t.csv");
  Key(Qt::Key_D, Qt::ControlModifier | Qt::ShiftModifier);
  EXPECT_TRUE(Wait([&] {
    return looper_->Asked() == "CNNT\nDUPL name=t.csv to=t copy 2.csv path=/pub\n";
  })) << looper_->Asked();
}

TEST_F(Ways, TheStatusLineCountsWhatIsSelectedAndFree) {
  Show("/pub", {File("a", 1500), File("b", 500), File("c")});
  Message free("FREE"_what);
  free.AddInt64("bytes", 2'000'000'000);
  link_->PostMessage(free);
  EXPECT_TRUE(Wait([&] { return Figure() == "3 items, 2.0 GB free"; })) << Figure().toStdString();
  Select("a");
  Key(Qt::Key_Down, Qt::ShiftModifier);
  EXPECT_EQ(Figure(), "2 of 3 selected, 2.0 kB");
  Key(Qt::Key_I, Qt::ControlModifier);
  QTest::keyClicks(QApplication::focusWidget(), "c");
  EXPECT_EQ(Figure(), "3 items, 2.0 GB free");
  Show("/elsewhere", {File("a")});
  EXPECT_EQ(View().Rows().ShownCount(), 1) << "the filter belongs to a directory";
}

TEST_F(Ways, ADirectoryOpensInAWindowOfItsOwn) {
  Select("dir");
  QTest::keyClick(window_, Qt::Key_Return, Qt::ControlModifier);
  ASSERT_EQ(connections_.size(), 2U);
  EXPECT_EQ(connections_[1].path, "/pub/dir");
  const MWindow& second = *app_->WindowList().back();
  EXPECT_NE(second.pos(), window_->pos());
}

}  // namespace
}  // namespace corvane
