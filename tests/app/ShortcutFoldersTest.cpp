#include <fstream>

#include "AppFixture.h"
#include "app/connect/FolderItem.h"
#include "app/connect/ImportWindow.h"
#include "app/connect/ShortCutItem.h"
#include "app/connect/ShortCutWindow.h"
#include "app/connect/ShortcutField.h"
#include "app/connect/ShortcutTree.h"
#include "sites/ShortcutStore.h"

namespace corvane {
namespace {

class ShortcutFolders : public AppFixture {
 protected:
  void Open(const std::vector<Shortcut>& shortcuts) {
    EXPECT_EQ(ShortcutStore::SaveAll(shortcuts), Text());
    Reopen();
  }
  void Reopen() {
    if (!list_.isNull()) list_->close();
    EXPECT_TRUE(Gone(list_));
    app_->ConnectionWindow().MessageReceived(Message("REDO"_what));
    app_->ShowShortcuts();
    list_ = app_->Shortcuts();
    PutInFront(*list_);
  }
  static Shortcut Named(const char* label) {
    return {.label = label, .site = {.host = "h", .user = label, .password = "p", .path = "/d"}};
  }
  [[nodiscard]] ShortcutTree& Tree() const { return list_->List(); }
  void Key(int key, Qt::KeyboardModifiers modifiers = {}) {
    QTest::keyClick(list_, static_cast<Qt::Key>(key), modifiers);
  }
  /// The rows that can be seen: "Folder[...]", "-Folder[...]" where it is closed.
  [[nodiscard]] std::string Shown() const { return Shown(*Tree().invisibleRootItem()); }
  static std::string Shown(const QTreeWidgetItem& around) {
    std::string text;
    for (int i = 0; i < around.childCount(); ++i) {
      QTreeWidgetItem& item = *around.child(i);
      if (item.isHidden()) continue;
      const std::string label = item.text(0).toStdString();
      const bool folder = FolderItem::Of(&item) != nullptr;
      text +=
          !folder ? label + " " : (item.isExpanded() ? "" : "-") + label + "[" + Shown(item) + "] ";
    }
    return text;
  }
  QTreeWidgetItem* Item(const char* label) const {
    const auto found = Tree().findItems(QString::fromUtf8(label), Qt::MatchRecursive);
    return found.isEmpty() ? nullptr : found.front();
  }
  void Select(const std::vector<const char*>& labels) {
    Tree().Select(Item(labels.front()));
    for (const char* label : labels) Item(label)->setSelected(true);
  }
  /// Types a name into the field that stands in the list.
  void Name(const QString& name) {
    auto* field = Tree().findChild<QLineEdit*>("FolderName");
    ASSERT_NE(field, nullptr);
    Enter(field, name);
    EXPECT_TRUE(Wait([&] { return Tree().findChild<QLineEdit*>("FolderName") == nullptr; }));
    QApplication::processEvents();
  }
  void NewFolder(const QString& name) {
    Key(Qt::Key_N, Qt::ControlModifier | Qt::ShiftModifier);
    Name(name);
  }
  /// Drops what is selected on that part of the row: 0 its upper edge, 1 its lower one.
  void Drop(const char* label, double part) {
    const QRect row = Tree().visualItemRect(Item(label));
    const QPoint at(row.center().x(), row.top() + static_cast<int>(part * (row.height() - 1)));
    const std::unique_ptr<QMimeData> data(
        Tree().model()->mimeData(Tree().selectionModel()->selectedIndexes()));
    const auto actions = Qt::MoveAction | Qt::CopyAction;
    QDragEnterEvent enter(at, actions, data.get(), Qt::LeftButton, Qt::NoModifier);
    QDragMoveEvent move(at, actions, data.get(), Qt::LeftButton, Qt::NoModifier);
    QDropEvent drop(at, actions, data.get(), Qt::LeftButton, Qt::NoModifier);
    for (QEvent* event :
         {static_cast<QEvent*>(&enter), static_cast<QEvent*>(&move), static_cast<QEvent*>(&drop)}) {
      QApplication::sendEvent(Tree().viewport(), event);
    }
    EXPECT_NE(drop.dropAction(), Qt::MoveAction) << "the rows are not removed";
  }
  [[nodiscard]] QString Status() const { return list_->findChild<QLabel*>("StatusString")->text(); }
  static std::string Stored() {
    std::string text;
    for (const Shortcut& shortcut : ShortcutStore::ReadForMenu().shortcuts) {
      text += (shortcut.folder.empty() ? "" : shortcut.folder + ":") + shortcut.label + " ";
    }
    return text;
  }

  QPointer<ShortCutWindow> list_;
};

TEST_F(ShortcutFolders, AreMadeNamedFilledAndRemoved) {
  Open({Named("one"), Named("two"), Named("three"), Named("four")});
  NewFolder("Work");
  NewFolder("Web");  // in the one that is selected
  EXPECT_EQ(Shown(), "Work[Web[] ] one two three four ");
  Select({"two", "four"});
  auto* menu = list_->findChild<QMenu*>("MoveToFolder");
  Q_EMIT menu->aboutToShow();
  menu->actions().last()->trigger();
  EXPECT_EQ(Shown(), "Work[Web[two four ] ] one three ");
  Select({"three"});
  Drop("Work", 0.5);
  EXPECT_EQ(Shown(), "Work[Web[two four ] three ] one ");
  Select({"one"});
  Drop("four", 0.1);
  Select({"four"});
  Key(Qt::Key_Up, Qt::ControlModifier | Qt::ShiftModifier);
  EXPECT_EQ(Shown(), "Work[Web[two four one ] three ] ");
  Select({"Work"});
  Drop("Web", 0.5);
  EXPECT_EQ(Shown(), "Work[Web[two four one ] three ] ") << "into itself";
  Select({"Web"});
  for (const auto& [name, taken] : {std::pair("a/b", false), {" ", false}, {"New", true}}) {
    Key(Qt::Key_F2);
    Name(name);
    EXPECT_EQ(Item("New") != nullptr, taken) << name;
  }
  Tree().collapseItem(Item("New"));
  Key(Qt::Key_S, Qt::ControlModifier);
  EXPECT_FALSE(list_->Changed());
  EXPECT_EQ(Stored(), "Work/New:two Work:three Work/New:four Work/New:one ");
  EXPECT_EQ(Item("three")->text(ShortCutItem::kKey), "Ctrl+1");
  Tree().expandItem(Item("New"));
  Tree().collapseItem(Item("Work"));
  Reopen();
  EXPECT_EQ(Shown(), "-Work[New[two four one ] three ] ") << "as it was left";

  // What a folder holds moves up, or goes; the last shortcuts never do.
  for (const auto& [button, left] : {std::pair(2, "-Work[New[two four one ] three ] "),
                                     {0, "-Work[New[two four one ] three ] "},
                                     {1, "New[two four one ] three "}}) {
    Anew(button);
    Select({"Work"});
    Key(Qt::Key_Delete);
    EXPECT_TRUE(Alerted(1));
    EXPECT_EQ(Shown(), left) << button;
  }
  Anew(0);
  Select({"New"});
  Key(Qt::Key_Delete);
  EXPECT_TRUE(Alerted(1));
  EXPECT_EQ(Shown(), "three ");
}

TEST_F(ShortcutFolders, StandInTheMenusAndNotInTheClassicStyle) {
  std::vector<Shortcut> all = {Named("one"), Named("two"), Named("three")};
  all[0].folder = "Work/Web";
  all[2].folder = "Work";
  Open(all);
  const auto items = [this] {
    const auto describe = [](const auto& self, const QMenu& menu) -> std::string {
      std::string text;
      for (const QAction* item : menu.actions()) {
        text += item->text().toStdString() + item->shortcut().toString().right(1).toStdString();
        text += item->menu() != nullptr ? "[" + self(self, *item->menu()) + "] " : " ";
      }
      return text;
    };
    return describe(describe, *app_->ConnectionWindow().findChild<QMenu*>("CutMenu"));
  };
  EXPECT_EQ(items(), "Work[Web[one0 ] three2 ] two1 ");
  app_->ConnectionWindow().show();
  PutInFront(app_->ConnectionWindow());
  QTest::keyClick(&app_->ConnectionWindow(), Qt::Key_0, Qt::ControlModifier);
  EXPECT_EQ(Line(&app_->ConnectionWindow(), "User").text(), "one") << "a key of an inner menu";
  UseClassicStyle();
  Reopen();
  EXPECT_EQ(items(), "one0 two1 three2 ");
  EXPECT_EQ(Shown(), "one two three ");
  Key(Qt::Key_N, Qt::ControlModifier | Qt::ShiftModifier);
  Select({"three"});
  Drop("one", 0.1);
  Key(Qt::Key_S, Qt::ControlModifier);
  EXPECT_EQ(Stored(), "Work:three Work/Web:one two ") << "each stays in its folder";
}

TEST_F(ShortcutFolders, AreFoundByTyping) {
  std::vector<Shortcut> all = {Named("one"), Named("two"), Named("three")};
  all[0].folder = "Work";
  all[2].site.host = "www.example.net";
  all[2].folder = "Work/Web";
  for (const bool classic : {false, true}) {
    settings_.classicStyle = classic;
    ProcessSettings::Set(settings_);
    Open(all);
    if (!classic) Tree().collapseItem(Item("Work"));
    Key(Qt::Key_F, Qt::ControlModifier);
    auto& search = Line(list_, "Search");
    EXPECT_TRUE(search.hasFocus());
    const std::pair<const char*, const char*> cases[] = {
        {"web EXAMPLE", classic ? "three " : "Work[Web[three ] ] "},
        {"/d tw", "two "},
        {"work", classic ? "one three " : "Work[Web[three ] one ] "},
        {"nowhere", ""}};
    for (const auto& [typed, shown] : cases) {
      search.setText(typed);
      EXPECT_EQ(Shown(), shown) << typed;
    }
    Key(Qt::Key_Delete);
    QTest::keyClick(&search, Qt::Key_Return);
    EXPECT_FALSE(list_->Changed()) << "what cannot be seen is let be";
    const std::size_t before = connections_.size();
    search.setText("example");
    QTest::keyClick(&search, Qt::Key_Return);
    EXPECT_EQ(connections_.size(), before + 1);
    EXPECT_EQ(connections_.back().host, "www.example.net");
    QTest::keyClick(&search, Qt::Key_Escape);
    EXPECT_EQ(Shown(), classic ? "one two three " : "-Work[Web[three ] one ] two ");
    EXPECT_TRUE(Item(classic ? "three" : "Work")->isSelected()) << "what can be seen";
  }
}

TEST_F(ShortcutFolders, AreImportedAsChosenAndExported) {
  Open({Named("one")});
  const QString path = folder_.filePath("list");
  const auto import = [&](const std::string& bytes) {
    std::ofstream(path.toStdString()) << bytes;
    PutInFront(*list_);
    Key(Qt::Key_I, Qt::ControlModifier);
    const QPointer<QFileDialog> panel = list_->findChild<QFileDialog*>("ImportPanel");
    Q_EMIT panel->fileSelected(path);
    panel->close();
    EXPECT_TRUE(Gone(panel));
    const auto shown = [this] { return list_->findChild<ImportWindow*>(); };
    EXPECT_TRUE(Wait([&] { return shown() != nullptr || !alerts_.empty(); }));
    return QPointer(shown());
  };
  Anew();
  EXPECT_TRUE(import("<FileZilla3><Servers>").isNull());
  EXPECT_EQ(alerts_.size(), 1U);
  EXPECT_FALSE(list_->Changed());
  Anew();
  const auto window = import(
      "<FileZilla3><Servers><Folder>Work<Server><Host>h</Host><Name>a*b</Name></Server></Folder>"
      "<Server><Host>h</Host><User>one</User><RemoteDir>1 0 1 d</RemoteDir></Server>"
      "<Server><Host>h</Host><Protocol>1</Protocol></Server></Servers></FileZilla3>");
  ASSERT_FALSE(window.isNull());
  const auto* rows = window->findChild<QTreeWidget*>();
  std::string states;
  for (int row = 0; row < 3; ++row) {
    states += rows->topLevelItem(row)->data(0, Qt::CheckStateRole).toString().toStdString() + "|" +
              rows->topLevelItem(row)->text(3).section(' ', 0, 1).toStdString() + " ";
  }
  EXPECT_EQ(states, "2|The “*” 0|Is in |Cannot be ");
  window->findChild<QPushButton*>("ok")->click();
  EXPECT_TRUE(Gone(window));
  EXPECT_EQ(Shown(), "Work[a-b ] one ");
  EXPECT_EQ(Stored(), "one ") << "nothing is stored yet";
  PutInFront(*list_);
  Key(Qt::Key_S, Qt::ControlModifier);
  EXPECT_EQ(Stored(), "one Work:a-b ");

  Anew();
  Alerts::AnswerWith([this](const Alerts::Question& question) {
    alerts_.push_back(question);
    if (question.ticked) question.ticked(true);
    return 0;
  });
  Key(Qt::Key_E, Qt::ControlModifier | Qt::ShiftModifier);
  EXPECT_TRUE(Alerted(2)) << "a warning of passwords";
  Q_EMIT list_->findChild<QFileDialog*>("ExportPanel")->fileSelected(path);
  EXPECT_TRUE(Wait([&] { return Status() == "2 shortcuts exported"; }));
  const ShortcutImport again = ShortcutImport::ReadFile(path.toStdString());
  ASSERT_EQ(again.entries.size(), 2U);
  EXPECT_TRUE(again.entries[0].shortcut == Named("one"));
}

}  // namespace
}  // namespace corvane
