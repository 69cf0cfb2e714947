#include <QTreeWidget>

#include "AppFixture.h"
#include "app/browser/BrowserSession.h"
#include "app/connect/ShortCutEditWindow.h"
#include "app/connect/ShortCutWindow.h"
#include "app/connect/ShortcutField.h"
#include "app/desktop/ReplicantView.h"
#include "app/desktop/RequestServer.h"
#include "app/program/PrefWindow.h"
#include "settings/Access.h"
#include "sites/ShortcutStore.h"

namespace corvane {
namespace {

class Shortcuts : public AppFixture {
 protected:
  Shortcuts() {
    EXPECT_EQ(ShortcutStore::SaveAll({Named("one"), Named("two"), Named("three")}), Text());
    app_->ConnectionWindow().MessageReceived(Message("REDO"_what));
    app_->ConnectionWindow().MessageReceived(Message("SHST"_what));
    list_ = app_->Shortcuts();
  }

  static Shortcut Named(const char* label) {
    return {.label = label,
            .site = {.host = "h", .port = 2121, .user = "u", .password = "p", .path = "/d"}};
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
    for (const Shortcut& shortcut : ShortcutStore::ReadForMenu().shortcuts)
      labels += shortcut.label + " ";
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
  expected.site.port = 21;
  expected.site.passive = true;
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
  // Escape in the alert itself does neither.
  Alerts::AnswerWith({});
  Select(0);
  Key(Qt::Key_Backspace);
  list_->close();
  EXPECT_TRUE(Wait([] { return QApplication::activeModalWidget() != nullptr; }));
  QTest::keyClick(QApplication::activeModalWidget(), Qt::Key_Escape);
  EXPECT_TRUE(Wait([] { return QApplication::activeModalWidget() == nullptr; }));
  ASSERT_FALSE(list_.isNull());
  EXPECT_TRUE(list_->isVisible() && list_->Changed());
  EXPECT_EQ(Stored(), "one two three ");
  AnswerAlerts();
  button_ = 0;
  list_->close();
  EXPECT_TRUE(Wait([&] { return list_.isNull(); }));
  app_->ConnectionWindow().MessageReceived(Message("SHST"_what));
  list_ = app_->Shortcuts();
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

TEST_F(Shortcuts, CopiesUrlsThatAreReadAgain) {
  app_->ShowEditor({.site = {.host = "i", .path = "/a b"}}, *list_);
  PressOk();
  Key(Qt::Key_A, Qt::ControlModifier);
  Key(Qt::Key_C, Qt::ControlModifier);
  EXPECT_EQ(QApplication::clipboard()->text(),
            "ftp://h:2121/d\nftp://h:2121/d\nftp://h:2121/d\nftp://i/a%20b\n");
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
  for (const char* port : {"many", "0"}) {
    Field("Port").setText(port);
    PressOk();
    EXPECT_EQ(alerts_.back().text, "The port has to be a number from 1 to 65535.");
  }
  Field("Port").clear();
  Field("Label").clear();
  Key(Qt::Key_N, Qt::ControlModifier);  // the editor is in use, and stays as it is
  EXPECT_EQ(Field("Host").text(), "server.test");
  QTest::keyClick(&Field("Port"), Qt::Key_Return);
  EXPECT_TRUE(Closed());
  EXPECT_EQ(Stored(), "one two three server.test ");
  EXPECT_EQ(ShortcutStore::Read(3)->site.path, "/pub/\xFC");
  EXPECT_EQ(app_->ConnectionWindow().CutMenu().Count(), 4);
  EXPECT_EQ(list_->List().topLevelItem(3)->text(1), "server.test");
}

TEST_F(Shortcuts, SortingIsForTheEyeAndTheMenuKeepsItsOrder) {
  list_->List().sortItems(0, Qt::AscendingOrder);
  EXPECT_EQ(list_->List().topLevelItem(1)->text(0), "three");
  EXPECT_FALSE(list_->Changed());
  Select(0);
  Key(Qt::Key_Delete);
  Key(Qt::Key_S, Qt::ControlModifier);
  EXPECT_EQ(Stored(), "two three ");
}

TEST_F(Shortcuts, BehindOneThatCannotBeReadAreNotLostUnasked) {
  {
    PreferenceSet set("shortcuts");
    SaveString(set, "1", "no connection");
  }
  list_->close();
  EXPECT_TRUE(Wait([&] { return list_.isNull(); }));
  app_->ConnectionWindow().MessageReceived(Message("SHST"_what));
  list_ = app_->Shortcuts();
  for (const bool anyway : {false, true}) {
    button_ = anyway ? 0 : 1;
    alerts_.clear();
    Key(Qt::Key_S, Qt::ControlModifier);
    EXPECT_EQ(alerts_.size(), 1U);
    QApplication::processEvents();
    EXPECT_EQ(ShortcutStore::CountOutOfReach(), anyway ? 0 : 2);
  }
  Key(Qt::Key_S, Qt::ControlModifier);
  EXPECT_EQ(alerts_.size(), 1U) << "nothing is lost any more";
}

TEST_F(Shortcuts, QuittingAsksAboutWhatWasTyped) {
  Select(0);
  Key(Qt::Key_E, Qt::ControlModifier);
  Field("Label").setText("typed");
  app_->ShowPreferences();
  app_->Preferences()->findChild<QLineEdit*>("defaultpass")->setText("typed");
  button_ = 1;
  app_->QuitRequested();
  QApplication::processEvents();
  EXPECT_EQ(alerts_.size(), 1U);
  EXPECT_FALSE(app_->Quitting());
  EXPECT_EQ(Field("Label").text(), "typed");
  button_ = 0;
  app_->QuitRequested();
  EXPECT_TRUE(Wait([&] { return app_->Quitting(); }));
  EXPECT_EQ(alerts_.size(), 3U) << "once for each window";
}

TEST_F(Shortcuts, AreOpenedFromTheTray) {
  std::vector<Message> launched;
  ReplicantView tray([&](const Message& message) { launched.push_back(message); });
  Shortcut odd = Named("");  // shown by its host
  odd.site.user.clear();
  odd.site.passive = true;
  Shortcut wrong = Named("a & b");
  wrong.site.port = 0;
  EXPECT_EQ(ShortcutStore::SaveAll({Named("one"), odd, wrong}), Text());
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
    const Site& to = connections_.back();
    EXPECT_EQ(to.port, 2121);
    EXPECT_EQ(to.passive, i == 2);
    EXPECT_EQ(to.user + to.password + to.host + to.path, i == 2 ? "anonymousph/d" : "uph/d");
  }
  // The list of a new user has one entry, which is stored then.
  QFile::remove(config_.filePath("_LP_x-ovak-Corvane/shortcuts"));
  Q_EMIT tray.PopUpMenu().aboutToShow();
  EXPECT_EQ(tray.PopUpMenu().actions().size(), 5);
  EXPECT_TRUE(ShortcutStore::Read(0).has_value());
}

}  // namespace
}  // namespace corvane
