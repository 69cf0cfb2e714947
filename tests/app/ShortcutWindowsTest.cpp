#include "AppFixture.h"
#include "app/browser/BrowserSession.h"
#include "app/connect/ShortCutEditWindow.h"
#include "app/connect/ShortCutWindow.h"
#include "app/connect/ShortcutField.h"
#include "app/connect/ShortcutTree.h"
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
    Open();
  }

  void Open() {
    app_->ConnectionWindow().MessageReceived(Message("SHST"_what));
    list_ = app_->Shortcuts();
  }
  void Remove(int row) {
    Select(row);
    Key(Qt::Key_Delete);
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
  QLineEdit& Field(const char* name) { return Line(app_->Editor(), name); }
  void PressOk() { app_->Editor()->findChild<QPushButton*>("ok")->click(); }
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
  EXPECT_TRUE(Gone(app_->Editor()) && list_->isWindowModified());
  EXPECT_EQ(Stored(), "one two three ");
  Key(Qt::Key_S, Qt::ControlModifier);
  EXPECT_FALSE(list_->Changed());
  EXPECT_EQ(Stored(), "one new three ");
  Shortcut expected = Named("new");
  expected.site.port = 21;
  expected.site.passive = true;
  EXPECT_TRUE(ShortcutStore::Read(1) == expected);
}

TEST_F(Shortcuts, SortsForTheEyeAndRemovesAllButTheLast) {
  list_->List().sortItems(0, Qt::AscendingOrder);
  EXPECT_FALSE(list_->Changed());
  Select(0);
  Key(Qt::Key_E, Qt::ControlModifier);
  Key(Qt::Key_Backspace);
  PressOk();
  ASSERT_EQ(alerts_.size(), 1U);  // its row is gone
  EXPECT_EQ(list_->List().currentItem()->text(0), "three");
  Key(Qt::Key_S, Qt::ControlModifier);
  EXPECT_EQ(Stored(), "two three ") << "the menu keeps its order";
  for (int row = 0; row < 2; ++row) Remove(0);
  const char* last = "You need to have at least one remaining shortcut.";
  EXPECT_EQ(list_->findChild<QLabel*>("StatusString")->text(), last);
  EXPECT_EQ(alerts_.size(), 1U);
  settings_.classicStyle = true;
  ProcessSettings::Set(settings_);
  Remove(0);
  EXPECT_EQ(alerts_.back().text, last);
  EXPECT_EQ(list_->List().topLevelItemCount(), 1);
}

TEST_F(Shortcuts, ClosingAsksWhatBecomesOfChanges) {
  // Escape in the alert itself does neither.
  Alerts::AnswerWith({});
  Remove(0);
  list_->close();
  EXPECT_TRUE(Wait([] { return QApplication::activeModalWidget() != nullptr; }));
  QTest::keyClick(QApplication::activeModalWidget(), Qt::Key_Escape);
  EXPECT_TRUE(Wait([] { return QApplication::activeModalWidget() == nullptr; }));
  ASSERT_FALSE(list_.isNull());
  EXPECT_TRUE(list_->isVisible() && list_->Changed());
  EXPECT_EQ(Stored(), "one two three ");
  AnswerAlerts();
  for (const auto& [button, stored] : {std::pair(0, "one two three "), {1, "two three "}}) {
    Anew(button);
    list_->close();
    EXPECT_TRUE(Gone(list_));
    ASSERT_EQ(alerts_.size(), 1U);
    EXPECT_EQ(Stored(), stored);
    Open();
    Remove(0);
  }
  Anew(1);  // saves and quits
  app_->QuitRequested();
  EXPECT_TRUE(Wait([&] { return app_->Quitting(); }));
  EXPECT_EQ(Stored(), "three ");
}

TEST_F(Shortcuts, ANewOneIsStoredAndShownAtOnce) {
  link_->SetPath("/pub/\xFC");
  EXPECT_TRUE(Wait([&] { return window_->Session().CurrentDirectory() == "/pub/\xFC"; }));
  PutInFront(*window_);
  Command(Qt::Key_S);
  ASSERT_FALSE(app_->Editor().isNull());
  Field("Host").clear();
  PressOk();
  const auto* fault = app_->Editor()->findChild<QLabel*>("Fault");
  EXPECT_TRUE(fault->isVisible()) << "without a host";
  Field("Host").setText("server.test");
  // What would not come back, and whether the user is asked about it.
  button_ = 1;
  for (const auto& [name, text, buttons] : {std::tuple("Label", "a*b", 1), {"User", "a:b", 2}}) {
    const QString before = Field(name).text();
    Enter(&Field(name), text);
    EXPECT_EQ(alerts_.back().buttons.size(), buttons) << name;
    QApplication::processEvents();
    Field(name).setText(before);
  }
  for (const char* port : {"many", "0"}) {
    Enter(&Field("Port"), port);
    EXPECT_EQ(fault->text(), "The port has to be a number from 1 to 65535.");
  }
  Field("Label").clear();
  Key(Qt::Key_N, Qt::ControlModifier);  // the editor is in use, and stays as it is
  EXPECT_EQ(Field("Host").text(), "server.test");
  Enter(&Field("Port"), "");
  EXPECT_TRUE(Gone(app_->Editor()));
  EXPECT_EQ(Stored(), "one two three server.test ");
  EXPECT_EQ(ShortcutStore::Read(3)->site.path, "/pub/\xFC");
  EXPECT_EQ(app_->ConnectionWindow().CutMenu().Count(), 4);
  Key(Qt::Key_A, Qt::ControlModifier);
  Key(Qt::Key_C, Qt::ControlModifier);
  EXPECT_EQ(QApplication::clipboard()->text().section('\n', 2),
            "ftp://h:2121/d\nftp://server.test/pub/%FC\n");
}

TEST_F(Shortcuts, BehindOneThatCannotBeReadAreNotLostUnasked) {
  SaveString(*std::make_unique<PreferenceSet>("shortcuts"), "1", "no connection");
  list_->close();
  EXPECT_TRUE(Gone(list_));
  Open();
  for (const bool anyway : {false, true}) {
    Anew(anyway ? 0 : 1);
    Key(Qt::Key_S, Qt::ControlModifier);
    EXPECT_TRUE(Alerted(1));
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
  Line(app_->Preferences(), "defaultpass").setText("typed");
  Remove(1);
  button_ = 2;
  app_->QuitRequested();
  EXPECT_TRUE(Alerted(1) && !app_->Quitting());
  EXPECT_EQ(alerts_[0].detail.count('\n'), 2) << "a line for each window";
  EXPECT_EQ(Field("Label").text(), "typed");
  button_ = 0;
  app_->QuitRequested();
  EXPECT_TRUE(Wait([&] { return app_->Quitting(); }));
  EXPECT_EQ(alerts_.size(), 2U);
  EXPECT_EQ(Stored(), "one two three ");
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
  odd.site.user = "anonymous";
  for (Site site : {Named("one").site, odd.site}) {
    site.warnsOfPlain = true;
    site.keepAlive = 60;
    launched.erase(launched.begin());
    EXPECT_FALSE(launched[0].FindString("pass"));
    app_->PostMessage(*RequestServer::Read(RequestServer::Line(launched[0])));
    EXPECT_TRUE(connections_.back() == site);
  }
}

}  // namespace
}  // namespace corvane
