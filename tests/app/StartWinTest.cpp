#include <QAction>
#include <QScreen>

#include "AppFixture.h"
#include "app/connect/Password.h"
#include "app/connect/ShortcutField.h"
#include "app/shared/CommandLine.h"
#include "app/shared/Frames.h"
#include "app/shared/ScreenText.h"
#include "settings/StoredSettings.h"
#include "sites/ReadAtStart.h"
#include "sites/ShortcutStore.h"

namespace corvane {
namespace {

/// In both styles: the parameter says whether it is the classic one.
class Start : public AppFixture, public testing::WithParamInterface<bool> {
 protected:
  Start() : start_(app_->ConnectionWindow()), password_(*start_.findChild<Password*>()) {
    settings_.classicStyle = GetParam();
    ProcessSettings::Set(settings_);
    PutInFront(start_);
  }

  QLineEdit& Field(const char* name) { return *start_.findChild<QLineEdit*>(name); }
  /// Host, user, password, path and port as they stand.
  std::string Fields() {
    std::string text;
    for (const char* name : {"Host", "User", "Path", "Port"}) {
      text += Field(name).text().toStdString() + "|";
    }
    return text + password_.actualText();
  }
  /// A key that writes a character, as far as the password field sees it.
  void Press(QChar written) {
    QKeyEvent key(QEvent::KeyPress, 0, Qt::NoModifier, QString(written));
    QApplication::sendEvent(&password_, &key);
  }
  void Key(int key, Qt::KeyboardModifiers modifiers = Qt::ControlModifier) {
    QTest::keyClick(QApplication::focusWidget(), static_cast<Qt::Key>(key), modifiers);
  }

  StartWin& start_;
  Password& password_;
};

TEST_P(Start, ConnectsToWhatTheFieldsSay) {
  const bool classic = GetParam();
  // Port field, and the port connected to; nothing where the field is refused.
  const std::pair<const char*, std::optional<int>> ports[] = {
      {"", 21},    {"2121abc", 2121}, {" 2121", 2121}, {"65535", 65535},
      {"abc", {}}, {"65536", {}},     {"-1", {}},      {"0", {}}};
  Key(Qt::Key_Return, {});
  EXPECT_EQ(alerts_.size(), 1U);
  Field("Host").setText("h");
  for (const auto& [text, port] : ports) {
    connections_.clear();
    alerts_.clear();
    Field("User").clear();
    password_.SetActualText("");
    Field("Port").setText(text);
    start_.findChild<QPushButton*>("connect")->click();
    EXPECT_EQ(alerts_.size(), port.has_value() ? 0U : 1U) << text;
    ASSERT_EQ(connections_.size(), port.has_value() ? 1U : 0U) << text;
    if (!port.has_value()) continue;
    EXPECT_EQ(connections_[0].port, *port);
    EXPECT_EQ(connections_[0].user, "anonymous");
    EXPECT_EQ(connections_[0].password, settings_.DfltPass);
    EXPECT_EQ(password_.text().size(), std::ssize(settings_.DfltPass) + (classic ? 1 : 0));
    EXPECT_FALSE(connections_[0].passive);
  }
  start_.findChild<QCheckBox*>("Passive")->click();
  password_.SetActualText("");
  QTest::keyClicks(&password_, "secret");
  Key(Qt::Key_Return, {});
  Field("Port").setText("1");
  QTest::keyClick(&password_, Qt::Key_Return);
  ASSERT_EQ(connections_.size(), 1U);
  EXPECT_EQ(connections_[0].password, "secret");
  EXPECT_TRUE(connections_[0].passive);

  Field("Host").setText("ftp://joe@i/pub");  // keeps what it does not name
  QTest::keyClick(&password_, Qt::Key_Return);
  EXPECT_EQ(Fields(), "i|joe|/pub|1|secret");
  connections_.clear();
  alerts_.clear();
  Field("Host").setText("ftp://i:port/pub");
  QTest::keyClick(&password_, Qt::Key_Return);
  EXPECT_EQ(alerts_.size(), 1U);
  EXPECT_TRUE(connections_.empty());
}

TEST_P(Start, WindowsComeBackWhereTheyWere) {
  const QRect frame(60, 70, 400, 300);
  const QRect wide(30, 40, 600, 500);
  start_.setGeometry(frame);
  app_->Transfers().setGeometry(QRect(5000, 5000, 300, 250));
  window_->setGeometry(wide);
  window_->close();  // stores nothing yet
  EXPECT_EQ(ReadAtStart(), Text());
  EXPECT_EQ(StoredSettings::Frame(kConnectionFrame), kConnectionFrame.fallback);
  app_->PostMessage(With("OPNC"_what, "host", "h"));
  app_->WindowList().back()->setGeometry(wide);
  app_ = std::make_unique<TambleApp>(factory_);
  app_->ReadyToRun(With("OPNC"_what, "host", "h"));
  EXPECT_EQ(app_->ConnectionWindow().geometry(), frame);
  EXPECT_EQ(app_->WindowList().back()->geometry(), wide);
  const QRect screen = QGuiApplication::primaryScreen()->availableGeometry();
  EXPECT_TRUE(screen.contains(app_->Transfers().geometry()));
  EXPECT_EQ(app_->Transfers().size(), QSize(300, 250));
}

TEST(Frames, AreFittedToTheScreen) {
  const Rect screen{0, 20, 1023, 767};
  const std::pair<Rect, Rect> browsers[] = {
      {{120, 50, 560, 530}, {120, 50, 560, 530}},
      {{-50, 0, 560, 900}, {3, 23, 560, 764}},
      {{100, 50, 300, 530}, {15, 50, 435, 530}},
      {{2000, 50, 2500, 530}, {15, 50, 435, 530}},
  };
  for (const auto& [stored, fitted] : browsers) {
    EXPECT_EQ(Frames::FitBrowser(stored, screen), fitted) << stored.left;
  }
}

TEST_P(Start, PastesAUrlIntoTheFieldsAndAnythingElseIntoTheOneInFocus) {
  const std::pair<const char*, const char*> cases[] = {
      {"ftp://u:p@h:2121/pub\nftp://other", "h|u|/pub|2121|p"},
      {"ftp://h/p%C3%BC b", "h||/p\u00FC b|21|"},
      {"ftp://u@[::1]", "::1|u||21|"},
      {"ftp://", "ftp://|||21|"},
      {"plain text", "plain text|||21|"},
  };
  for (const auto& [clipboard, fields] : cases) {
    for (const char* name : {"Host", "User", "Path"}) Field(name).clear();
    Field("Port").setText("21");
    password_.SetActualText("");
    Field("Host").setFocus();
    QApplication::clipboard()->setText(clipboard);
    Key(Qt::Key_V);
    EXPECT_EQ(Fields(), fields) << clipboard;
  }
}

TEST_P(Start, CommandsGoToTheFieldInFocusAndOpenWindowsAreListed) {
  Field("Host").setText("copied");
  Field("Host").selectAll();
  Key(Qt::Key_C);
  EXPECT_EQ(QApplication::clipboard()->text(), "copied");
  Field("Host").deselect();
  app_->Transfers().hide();
  Key(Qt::Key_X);
  EXPECT_EQ(Field("Host").text(), "copied");
  EXPECT_TRUE(app_->Transfers().isVisible());
  PutInFront(start_);
  Key(Qt::Key_W, Qt::AltModifier);
  auto* windows = qobject_cast<QMenu*>(QApplication::activePopupWidget());
  ASSERT_NE(windows, nullptr);
  EXPECT_EQ(windows->actions().back()->text(), "Connected To: server.test");
  windows->close();
}

TEST_P(Start, PasswordKeysChangeTheHiddenText) {
  // Keys typed ("<" is Backspace, "D" Delete, "[" selects the last two stars, "^" goes to the
  // beginning), and the hidden text and how many stars are shown, in both styles.
  const std::tuple<const char*, const char*, int, const char*, int> cases[] = {
      {"abc", "abc", 3, "abc", 3},
      {"abc<", "ab", 2, "a", 2},
      {"abcD", "abc", 3, "abc", 3},
      {"abc^D", "bc", 2, "abc", 3},
      {"ab[x", "x", 1, "x", 1},
      {"abcd[x", "abx", 3, "abx", 3},
      {"abcd[<", "ab", 2, "", 2},
      {"<a", "a", 1, "a", 1},
      {"abc^x", "xabc", 4, "abcx", 4},
      {"abc[D", "a", 1, "abc", 3},
      {"p\u00E4ss[x", "p\u00E4x", 3, "p\u00E4x", 3},
      {"p\u00E4<x", "px", 2, "px", 2},
  };
  for (const auto& [keys, today, shown, ofOld, shownOfOld] : cases) {
    password_.SetActualText("");
    for (const QChar key : QString(keys)) {
      switch (key.unicode()) {
        case u'<': QTest::keyClick(&password_, Qt::Key_Backspace); break;
        case u'D': QTest::keyClick(&password_, Qt::Key_Delete); break;
        case u'[': password_.setSelection(static_cast<int>(password_.text().size()) - 2, 2); break;
        case u'^': password_.setCursorPosition(0); break;
        default: Press(key);
      }
    }
    EXPECT_EQ(password_.actualText(), GetParam() ? ofOld : today) << keys;
    EXPECT_EQ(password_.text(), QString(GetParam() ? shownOfOld : shown, u'*')) << keys;
  }
  // Typing over a password that was filled in.
  password_.SetActualText("p\u00E4ssword");
  password_.selectAll();
  Press('x');
  EXPECT_EQ(password_.actualText(), GetParam() ? "px" : "x");
  password_.SetActualText("");
  Press(u'\u00FC');
  QApplication::clipboard()->setText("ü!\nnext line");
  password_.setFocus();
  Key(Qt::Key_V);
  EXPECT_EQ(password_.actualText(), "\xC3\xBC\xC3\xBC!");
  EXPECT_EQ(password_.text(), "***");
  Key(Qt::Key_Backspace);  // a command's key, to the line's beginning
  EXPECT_EQ(password_.text() + ToText(password_.actualText()), "");
}

TEST_P(Start, ShortcutsFillTheFieldsByTheirKeys) {
  std::vector<Shortcut> list(11, {.label = "l", .site = {.host = "h9", .path = "/\xFC"}});
  list[1] = {.label = "a&b",
             .site = {.host = "h1", .port = 2, .user = "u", .password = "p", .passive = true}};
  ASSERT_EQ(ShortcutStore::SaveAll(list), Text());
  start_.MessageReceived(Message("REDO"_what));
  Key(Qt::Key_1);
  EXPECT_EQ(Fields(), "h1|u|/|2|p");
  EXPECT_TRUE(start_.findChild<QCheckBox*>("Passive")->isChecked());
  EXPECT_EQ(start_.CutMenu().text(), "a&&b");
  Key(Qt::Key_9);
  EXPECT_EQ(Fields(), "h9||/\u00FC|21|");
  EXPECT_FALSE(start_.findChild<QCheckBox*>("Passive")->isChecked());
  start_.findChild<QPushButton*>("connect")->click();
  EXPECT_EQ(connections_.back().path, "/\xFC");
  EXPECT_EQ(start_.findChild<QMenu*>("CutMenu")->actions()[10]->shortcut(), QKeySequence());
  Message beyond("ZBOX"_what);
  beyond.AddInt32("index", 99);
  start_.MessageReceived(beyond);
  EXPECT_EQ(Fields(), "|||21|");
}

INSTANTIATE_TEST_SUITE_P(Styles, Start, testing::Bool());

TEST(CommandLine, IsReadAsAUrl) {
  const std::pair<std::vector<std::string>, const char*> cases[] = {
      {{}, ""},
      {{"ftp://h/pub/"}, "OPNC host=h path=/pub/ port=21"},
      {{"ftp://h/"}, "OPNC host=h port=21"},
      {{"ftp://u@h:2121/x"}, "OPNC host=h user=u path=/x port=2121"},
      {{"ftp://u:p%40@[::1]:65535/a:b@c"}, "OPNC host=::1 user=u pass=p@ path=/a:b@c port=65535"},
      {{"ftp://u:p@h:0/"}, "usage"},
      {{"ftp://"}, "usage"},
      {{"h/pub"}, ""},
      {{"--deskbar"}, "usage"},
      {{"ftp://h", "ftp://i"}, "usage"},
  };
  for (const auto& [arguments, result] : cases) {
    const CommandLine line = CommandLine::Read(arguments);
    const std::string read = line.open.has_value() ? Described(*line.open)
                             : line.usage          ? "usage"
                                                   : "";
    EXPECT_EQ(read, result) << testing::PrintToString(arguments);
  }
}

}  // namespace
}  // namespace corvane
