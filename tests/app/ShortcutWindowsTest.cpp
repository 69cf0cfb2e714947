#include <QTreeWidget>

#include "AppFixture.h"
#include "app/browser/BrowserSession.h"
#include "app/connect/ShortCutEditWindow.h"
#include "app/connect/ShortCutWindow.h"
#include "app/connect/ShortcutField.h"
#include "app/desktop/ReplicantView.h"
#include "app/desktop/RequestServer.h"
#include "settings/ShortcutStore.h"

namespace corvane {
namespace {

class Shortcuts : public AppFixture {
 protected:
  Shortcuts() {
    EXPECT_EQ(ShortcutStore::SaveAll({Named("one"), Named("two"), Named("three")}), "");
    app_->ConnectionWindow().MessageReceived(Message("REDO"_what));
    app_->ConnectionWindow().MessageReceived(Message("SHST"_what));
    list_ = app_->Shortcuts();
  }

  static Shortcut Named(const char* label) {
    return {.label = label, .host = "h", .user = "u", .pass = "p", .path = "/d", .port = "2121"};
  }
  void Key(int key, Qt::KeyboardModifiers modifiers = {}) {
    PutInFront(*list_);
    QTest::keyClick(list_, static_cast<Qt::Key>(key), modifiers);
  }
  void Select(int row) {
    list_->List().setCurrentItem(list_->List().topLevelItem(row), 0,
                                 QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows);
  }
  QLineEdit& Field(const char* name) { return *app_->Editor()->findChild<QLineEdit*>(name); }
  void PressOk() { app_->Editor()->findChild<QPushButton*>("ok")->click(); }
  bool Closed() {
    return Wait([&] { return app_->Editor().isNull(); });
  }
  static std::string Stored() {
    std::string labels;
    for (const Shortcut& shortcut : ShortcutStore::ReadForMenu()) labels += shortcut.label + " ";
    return labels;
  }

  QPointer<ShortCutWindow> list_;
};

TEST_F(Shortcuts, EditsStayInTheWindowUntilTheyAreSaved) {
  Select(1);
  Key(Qt::Key_E, Qt::ControlModifier);
  EXPECT_EQ(app_->Editor()->windowTitle(), "Edit Shortcut");
  EXPECT_EQ(Field("password").text(), "*");
  Field("Label").setText("new");
  Field("Port").clear();
  app_->Editor()->findChild<QCheckBox*>("Passive")->setChecked(true);
  PressOk();
  EXPECT_TRUE(Closed());
  EXPECT_EQ(Stored(), "one two three ");
  EXPECT_TRUE(list_->isWindowModified());
  Key(Qt::Key_S, Qt::ControlModifier);
  EXPECT_FALSE(list_->Changed());
  EXPECT_EQ(Stored(), "one new three ");
  Shortcut expected = Named("new");
  expected.port = "21";
  expected.passive = true;
  EXPECT_TRUE(ShortcutStore::Read(1) == expected);
}

TEST_F(Shortcuts, RemovesAllButTheLast) {
  Select(1);
  Key(Qt::Key_E, Qt::ControlModifier);
  Key(Qt::Key_Backspace);
  PressOk();
  ASSERT_EQ(alerts_.size(), 1U);  // its row is gone
  EXPECT_EQ(list_->List().currentItem()->text(0), "three");
  Key(Qt::Key_Delete);
  Select(0);
  Key(Qt::Key_Backspace);
  EXPECT_EQ(list_->List().topLevelItemCount(), 1);
  ASSERT_EQ(alerts_.size(), 2U);
  EXPECT_EQ(alerts_[1].text, "You need to have at least one remaining shortcut.");
}

TEST_F(Shortcuts, ClosingAsksWhatBecomesOfChanges) {
  const std::pair<int, const char*> cases[] = {{0, "one two three "}, {1, "two three "}};
  for (const auto& [button, stored] : cases) {
    alerts_.clear();
    button_ = button;
    Select(0);
    Key(Qt::Key_Backspace);
    list_->close();
    EXPECT_TRUE(Wait([&] { return list_.isNull(); }));
    ASSERT_EQ(alerts_.size(), 1U);
    EXPECT_EQ(alerts_[0].text.toStdString(),
              "You have made some changes.  Would you like to save them or discard them?");
    EXPECT_EQ(Stored(), stored);
    app_->ConnectionWindow().MessageReceived(Message("SHST"_what));
    list_ = app_->Shortcuts();
  }
  Select(0);
  Key(Qt::Key_Delete);
  app_->ConnectionWindow().close();
  EXPECT_TRUE(Wait([&] { return !app_->ConnectionWindow().isVisible(); }));
  EXPECT_EQ(Stored(), "three ");
}

TEST_F(Shortcuts, CopiesUrlsWithTheirPortAtTheEnd) {
  app_->ShowEditor({.host = "i"}, *list_);
  PressOk();
  Key(Qt::Key_A, Qt::ControlModifier);
  Key(Qt::Key_C, Qt::ControlModifier);
  EXPECT_EQ(QApplication::clipboard()->text(),
            "ftp://h/d:2121\nftp://h/d:2121\nftp://h/d:2121\nftp://i/\n");
}

TEST_F(Shortcuts, ANewOneIsStoredAndShownAtOnce) {
  link_->SetPath("/pub/\xFC");
  EXPECT_TRUE(Wait([&] { return window_->Session().CurrentDirectory() == "/pub/\xFC"; }));
  PutInFront(*window_);
  Command(Qt::Key_S);
  ASSERT_FALSE(app_->Editor().isNull());
  Field("Host").clear();
  PressOk();
  EXPECT_EQ(alerts_.size(), 1U);  // without a host
  Field("Host").setText("server.test");
  // What would not come back, and whether the user is asked about it.
  const std::tuple<const char*, const char*, std::size_t> losses[] = {{"Label", "a*b", 1},
                                                                      {"User", "a:b", 2}};
  button_ = 1;
  for (const auto& [name, text, buttons] : losses) {
    const QString before = Field(name).text();
    Field(name).setText(text);
    PressOk();
    EXPECT_EQ(alerts_.back().buttons.size(), static_cast<qsizetype>(buttons)) << name;
    QApplication::processEvents();
    Field(name).setText(before);
  }
  Field("Label").clear();
  Key(Qt::Key_N, Qt::ControlModifier);  // the editor is in use, and stays as it is
  EXPECT_EQ(Field("Host").text(), "server.test");
  QTest::keyClick(&Field("Port"), Qt::Key_Return);
  EXPECT_TRUE(Closed());
  EXPECT_EQ(Stored(), "one two three server.test ");
  EXPECT_EQ(ShortcutStore::Read(3)->path, "/pub/\xFC");
  EXPECT_EQ(app_->ConnectionWindow().CutMenu().Count(), 4);
  EXPECT_EQ(list_->List().topLevelItem(3)->text(1), "server.test");
}

TEST_F(Shortcuts, AreOpenedFromTheTray) {
  std::vector<Message> launched;
  ReplicantView tray([&](const Message& message) { launched.push_back(message); });
  Shortcut odd = Named("");  // shown by its host
  odd.user.clear();
  odd.passive = true;
  Shortcut wrong = Named("a & b");
  wrong.port = "70000";
  EXPECT_EQ(ShortcutStore::SaveAll({Named("one"), odd, wrong}), "");
  Q_EMIT tray.PopUpMenu().aboutToShow();
  QStringList texts;
  for (QAction* item : tray.PopUpMenu().actions()) {
    texts += item->text();
    if (texts.size() < 7) item->trigger();
  }
  EXPECT_EQ(texts.join('|').toStdString(), "&Launch Corvane||one|h|a && b||&Remove from the tray");
  ASSERT_EQ(launched.size(), 3U);
  EXPECT_EQ(launched[0], Message("RUNN"_what));
  for (std::size_t i = 1; i < launched.size(); ++i) {
    app_->PostMessage(*RequestServer::Read(RequestServer::Line(launched[i])));
    const Connection& to = connections_.back();
    EXPECT_EQ(to.port, 2121);
    EXPECT_EQ(to.passive, i == 2);
    EXPECT_EQ(to.user + to.pass + to.host + to.path, i == 2 ? "anonymousph/d" : "uph/d");
  }
  // The list of a new user has one entry, which is stored then.
  QFile::remove(config_.filePath("_LP_x-ovak-Corvane/shortcuts"));
  Q_EMIT tray.PopUpMenu().aboutToShow();
  EXPECT_EQ(tray.PopUpMenu().actions().size(), 5);
  EXPECT_TRUE(ShortcutStore::Read(0).has_value());
}

}  // namespace
}  // namespace corvane
