#include <QAction>
#include <QScreen>

#include "AppFixture.h"
#include "app/connect/Password.h"
#include "app/connect/PastedUrl.h"
#include "app/connect/ShortcutField.h"
#include "app/shared/CommandLine.h"
#include "app/shared/Frames.h"
#include "app/shared/ScreenText.h"
#include "settings/ShortcutStore.h"
#include "settings/StoredSettings.h"

namespace corvane {
namespace {

class Start : public AppFixture {
 protected:
  Start() : start_(app_->ConnectionWindow()), password_(*start_.findChild<Password*>()) {
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
  void Key(int key, Qt::KeyboardModifiers modifiers = Qt::ControlModifier) {
    QTest::keyClick(QApplication::focusWidget(), static_cast<Qt::Key>(key), modifiers);
  }

  StartWin& start_;
  Password& password_;
};

TEST_F(Start, ConnectsToWhatTheFieldsSay) {
  // Port field, and the port connected to; nothing where the field is refused.
  const std::pair<const char*, std::optional<int>> ports[] = {
      {"", 21}, {"2121abc", 2121}, {"abc", 0}, {"65535", 65535}, {"65536", {}}, {"-1", {}}};
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
    EXPECT_EQ(connections_[0].pass, ProcessSettings::Get().DfltPass);
    EXPECT_EQ(password_.text().size(), std::ssize(ProcessSettings::Get().DfltPass) + 1);
    EXPECT_FALSE(connections_[0].passive);
  }
  start_.findChild<QCheckBox*>("Passive")->click();
  password_.SetActualText("");
  QTest::keyClicks(&password_, "secret");
  Key(Qt::Key_Return, {});
  Field("Port").setText("1");
  QTest::keyClick(&password_, Qt::Key_Return);
  ASSERT_EQ(connections_.size(), 1U);
  EXPECT_EQ(connections_[0].pass, "secret");
  EXPECT_TRUE(connections_[0].passive);

  Field("Host").setText("ftp://other@i/pub");  // keeps what it does not name
  Field("User").setText("joe");
  QTest::keyClick(&password_, Qt::Key_Return);
  EXPECT_EQ(Fields(), "i|joe|/pub|1|other");
}

TEST_F(Start, WindowsComeBackWhereTheyWere) {
  const QRect frame(60, 70, 400, 300);
  const QRect wide(30, 40, 600, 500);
  start_.setGeometry(frame);
  app_->Transfers().setGeometry(QRect(5000, 5000, 300, 250));
  window_->setGeometry(wide);
  window_->close();  // stores nothing yet
  StoredSettings::ReadAtStart();
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

TEST_F(Start, PastesAUrlIntoTheFieldsAndAnythingElseIntoTheOneInFocus) {
  const std::pair<const char*, const char*> cases[] = {
      {"ftp://u:p@h/pub:2121", "h|u|/pub|2121|p"},
      {"ftp://u:p@h:2121/pub\nftp://other", "h|u||2121/pub|p"},
      {"ftp://h/pub", "h||/pub|21|"},
      {"ftp://host:21/pub", "21|host|/pub|21|"},
      {"ftp://p@h", "h|||21|p"},
      {"ftp://", "|||21|"},
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

TEST_F(Start, CommandsGoToTheFieldInFocusAndOpenWindowsAreListed) {
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

TEST_F(Start, PasswordKeysChangeTheHiddenText) {
  // Keys typed ("<" is Backspace, "D" Delete, "[" selects the last two stars), the hidden text, and
  // how many stars are shown.
  const std::tuple<const char*, const char*, int> cases[] = {
      {"abc", "abc", 3},    {"abc<", "a", 2},  {"abcD", "abc", 3}, {"ab[x", "x", 1},
      {"abcd[x", "abx", 3}, {"abcd[<", "", 2}, {"<a", "a", 1},
  };
  for (const auto& [keys, hidden, stars] : cases) {
    password_.SetActualText("");
    for (const char key : std::string_view(keys)) {
      switch (key) {
        case '<': QTest::keyClick(&password_, Qt::Key_Backspace); break;
        case 'D': QTest::keyClick(&password_, Qt::Key_Delete); break;
        case '[': password_.setSelection(static_cast<int>(password_.text().size()) - 2, 2); break;
        default: QTest::keyClick(&password_, key);
      }
    }
    EXPECT_EQ(password_.actualText(), hidden) << keys;
    EXPECT_EQ(password_.text(), QString(stars, u'*')) << keys;
  }
  password_.SetActualText("");
  QKeyEvent key(QEvent::KeyPress, Qt::Key_Udiaeresis, Qt::NoModifier, QStringLiteral("ü"));
  QApplication::sendEvent(&password_, &key);
  QApplication::clipboard()->setText("ü!\nnext line");
  password_.setFocus();
  Key(Qt::Key_V);
  EXPECT_EQ(password_.actualText(), "\xC3\xBC\xC3\xBC!");
  EXPECT_EQ(password_.text(), "***");
  Key(Qt::Key_Backspace);  // a command's key, to the line's beginning
  EXPECT_EQ(password_.text() + ToText(password_.actualText()), "");
}

TEST_F(Start, ShortcutsFillTheFieldsByTheirKeys) {
  std::vector<Shortcut> list(11, {.label = "l", .host = "h9", .path = "/\xFC"});
  list[1] = {.label = "a&b", .host = "h1", .user = "u", .pass = "p", .port = "2", .passive = true};
  ASSERT_EQ(ShortcutStore::SaveAll(list), "");
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

TEST(CommandLine, IsReadAsWritten) {
  const std::pair<std::vector<std::string>, const char*> cases[] = {
      {{}, ""},
      {{"ftp://h/pub/"}, "OPNC host=h path=/pub/"},
      {{"ftp://h/"}, "OPNC host=h"},
      {{"ftp://p@h/x"}, "OPNC pass=p host=h path=/x"},
      {{"ftp://h:2121/"}, "OPNC user=h host=2121"},
      {{"ftp://u:p@h:65535/a:b@c"}, "OPNC user=u pass=p host=h path=/a:b@c port=65535"},
      {{"ftp://u:p@h:0/"}, "usage"},
      {{"ftp://u:p@h:99999/"}, "usage"},
      {{"ftp://"}, ""},
      {{"h/pub"}, ""},
      {{"--deskbar"}, "usage"},
      {{"ftp://h", "ftp://i"}, "usage"},
  };
  for (const auto& [arguments, result] : cases) {
    const CommandLine line = CommandLine::Read(arguments);
    const std::string read = line.open.has_value() ? Text(*line.open) : line.usage ? "usage" : "";
    EXPECT_EQ(read, result) << testing::PrintToString(arguments);
  }
}

}  // namespace
}  // namespace corvane
