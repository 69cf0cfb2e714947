#include "AppFixture.h"
#include "app/connect/ShortcutField.h"
#include "app/shared/Password.h"
#include "app/shared/ScreenText.h"
#include "sites/RecentStore.h"
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

  QLineEdit& Field(const char* name) { return Line(&start_, name); }
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

  /// Whether a field was refused: by an alert or below the field.
  bool Refused() {
    const auto* fault = start_.findChild<QLabel*>("Fault");
    EXPECT_FALSE(fault->isVisible() && GetParam());
    return fault->isVisible() || !alerts_.empty();
  }
  static Shortcut Saved() {
    return {.label = "Web", .site = {.host = "h", .user = "u", .password = "p", .path = "/d"}};
  }

  StartWin& start_;
  Password& password_;
};

TEST_P(Start, ConnectsToWhatTheFieldsSay) {
  Key(Qt::Key_Return, {});
  EXPECT_TRUE(Refused()) << "no host";
  Field("Host").setText(" h\n");
  // Port field, and the port connected to; 0 where the field is refused.
  const std::pair<const char*, int> ports[] = {{"", 21},   {" 2121abc", 2121}, {"65535", 65535},
                                               {"abc", 0}, {"65536", 0},       {"-1", 0},
                                               {"0", 0}};
  for (const auto& [text, port] : ports) {
    Anew();
    connections_.clear();
    Field("User").clear();
    password_.SetActualText("");
    Field("Port").setText(text);
    start_.findChild<QPushButton*>("connect")->click();
    EXPECT_EQ(Refused(), port == 0) << text;
    ASSERT_EQ(connections_.size(), port == 0 ? 0U : 1U) << text;
    if (port == 0) continue;
    EXPECT_EQ(connections_[0].port, port);
    EXPECT_EQ(connections_[0].user + connections_[0].password, "anonymous" + settings_.DfltPass);
    EXPECT_EQ(connections_[0].host, "h");
    EXPECT_EQ(Field("User").text(), GetParam() ? "anonymous" : "");
    EXPECT_EQ(password_.text().size(), GetParam() ? std::ssize(settings_.DfltPass) + 1 : 0);
  }
  auto* passive = start_.findChild<QCheckBox*>("Passive");
  passive->setChecked(false);
  passive->click();
  password_.SetActualText("");
  QTest::keyClicks(&password_, "secret");
  Enter(&Field("Port"), "1");
  ASSERT_EQ(connections_.size(), 1U);
  EXPECT_EQ(connections_[0].password, "secret");
  EXPECT_TRUE(connections_[0].passive);
  Enter(&Field("Host"), "ftp://joe@i/pub");  // keeps what it does not name
  EXPECT_EQ(Fields(), "i|joe|/pub|1|secret");
  Enter(&Field("Host"), "[::1]:2121");
  EXPECT_EQ(Fields(), "::1|joe|/pub|2121|secret");
  for (const char* bad : {"ftp://i:port/pub", "http://i"}) {
    Anew();
    Enter(&Field("Host"), bad);
    EXPECT_TRUE(Refused()) << bad;
    EXPECT_EQ(connections_.size(), 3U);
  }
}

TEST_P(Start, WindowsComeBackWhereTheyWere) {
  const QRect frame(60, 70, 460, 420);
  const QRect wide(30, 40, 600, 500);
  start_.setGeometry(frame);
  app_->Transfers().setGeometry(QRect(5000, 5000, 300, 250));
  window_->setGeometry(wide);
  app_ = std::make_unique<TambleApp>(factory_);
  app_->ReadyToRun(With("OPNC"_what, "host", "h"));
  EXPECT_EQ(app_->ConnectionWindow().geometry(), frame);
  EXPECT_EQ(app_->WindowList().back()->geometry(), wide);
  const QRect transfers = app_->Transfers().geometry();
  EXPECT_TRUE(QGuiApplication::primaryScreen()->availableGeometry().contains(transfers));
  EXPECT_EQ(transfers.size(), QSize(300, 250));
}

TEST_P(Start, PastesAUrlIntoTheFieldsAndAnythingElseIntoTheOneInFocus) {
  const std::pair<const char*, const char*> cases[] = {
      {"ftp://u:p@h:2121/pub\nftp://other", "h|u|/pub|2121|p"},
      {"ftp://h/p%C3%BC b", "h||/p\u00FC b|21|"},
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
  EXPECT_TRUE(windows->actions().back()->text().endsWith("server.test"));
  windows->close();
}

TEST_P(Start, PasswordKeysChangeTheHiddenText) {
  // Keys typed ("<" is Backspace, "D" Delete, "[" selects the last two stars, "^" goes to the
  // beginning), and the hidden text and how many stars are shown, in both styles.
  const std::tuple<const char*, const char*, int, const char*, int> cases[] = {
      {"abc<", "ab", 2, "a", 2},       {"abc^D", "bc", 2, "abc", 3},
      {"ab[x", "x", 1, "x", 1},        {"abcd[<", "ab", 2, "", 2},
      {"<a", "a", 1, "a", 1},          {"abc^x", "xabc", 4, "abcx", 4},
      {"abc[D", "a", 1, "abc", 3},     {"p\u00E4ss[x", "p\u00E4x", 3, "p\u00E4x", 3},
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
  const auto* passive = start_.findChild<QCheckBox*>("Passive");
  EXPECT_TRUE(passive->isChecked());
  EXPECT_EQ(start_.CutMenu().text(), "a&&b");
  Key(Qt::Key_9);
  EXPECT_EQ(Fields(), std::string("h9||/\u00FC|") + (GetParam() ? "21|" : "|"));
  EXPECT_FALSE(passive->isChecked());
  start_.findChild<QPushButton*>("connect")->click();
  EXPECT_EQ(connections_.back().path, "/\xFC");
  EXPECT_EQ(start_.findChild<QMenu*>("CutMenu")->actions()[10]->shortcut(), QKeySequence());
}

TEST_P(Start, RecentConnectionsFillTheFieldsWithThePasswordOfTheirShortcut) {
  ASSERT_EQ(ShortcutStore::SaveAll({Saved()}), Text());
  app_->ConnectionStands({.host = "i", .user = "anonymous", .password = "secret"}, false, {});
  app_->ConnectionStands(Saved().site, false, {});
  const auto choose = [this](int row) {
    Field("Host").setFocus();
    Key(Qt::Key_Down, {});
    auto* list = start_.findChild<QListWidget*>("Recent");
    for (int i = 0; i < row; ++i) QTest::keyClick(list, Qt::Key_Down);
    QTest::keyClick(list, Qt::Key_Return);
    QApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
  };
  const char* usual = GetParam() ? "21|" : "|";
  choose(0);
  EXPECT_EQ(Fields(), std::string("h|u|/d|") + usual + "p");
  EXPECT_FALSE(start_.findChild<QCheckBox*>("Passive")->isChecked());
  choose(1);
  EXPECT_EQ(Fields(), std::string("i|||") + usual);
  choose(3);  // below the connection that the program has
  EXPECT_TRUE(RecentStore::Read().empty());
  Field("Host").clear();
  QTest::keyClicks(&Field("Host"), "H");
  QTest::keyClick(Field("Host").completer()->popup(), Qt::Key_Down);
  QTest::keyClick(Field("Host").completer()->popup(), Qt::Key_Return);
  EXPECT_EQ(Fields(), std::string("h|u|/d|") + usual + "p") << "completed from a shortcut";
}

TEST_P(Start, ThePasswordIsSeenWhileTheEyeIsOpen) {
  password_.SetActualText("p\xC3\xA4ss");
  password_.Reveal(true);
  EXPECT_EQ(password_.text(), "p\u00E4ss");
  QTest::keyClick(&password_, Qt::Key_End);
  Press(u'w');
  EXPECT_EQ(password_.text(), "p\u00E4ssw");
  EXPECT_EQ(password_.actualText(), "p\xC3\xA4ssw");
  password_.Reveal(false);
  EXPECT_EQ(password_.text(), "*****");
  password_.Reveal(true);
  start_.hide();
  EXPECT_FALSE(password_.Revealed());
  start_.show();
}

TEST_P(Start, ClosingLeavesOtherWindowsAndTheLastOneEndsTheProgram) {
  app_->Transfers().hide();
  start_.close();
  EXPECT_EQ(app_->Quitting(), GetParam());
  EXPECT_FALSE(start_.isVisible());
  if (GetParam()) return;
  app_->PostMessage(Message("SHMN"_what));
  EXPECT_TRUE(start_.isVisible());
  start_.close();
  window_->close();
  EXPECT_TRUE(Wait([this] { return app_->Quitting(); }));
}

/// Stands in for the desktop's browser.
class Opener : public QObject {
  Q_OBJECT

 public:
  Opener() { QDesktopServices::setUrlHandler("file", this, "Open"); }
  ~Opener() override { QDesktopServices::unsetUrlHandler("file"); }
  Q_INVOKABLE void Open(const QUrl& url) { opened = url; }

  QUrl opened;
};

TEST_P(Start, F1OpensTheManualAndItsLinksLeadSomewhere) {
  const Opener opener;
  Key(Qt::Key_F1, {});
  const QFileInfo first(opener.opened.toLocalFile());
  EXPECT_EQ(first.fileName(), "index.html");
  static const QRegularExpression link("(?:href|src)=\"([^\"#:]+)");
  for (const QFileInfo& page : first.dir().entryInfoList({"*.html"})) {
    QFile file(page.filePath());
    ASSERT_TRUE(file.open(QFile::ReadOnly));
    for (auto found = link.globalMatch(file.readAll()); found.hasNext();) {
      const QString to = found.next().captured(1);
      EXPECT_TRUE(first.dir().exists(to)) << page.fileName().toStdString() << to.toStdString();
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Styles, Start, testing::Bool());

}  // namespace
}  // namespace corvane

#include "StartWinTest.moc"
