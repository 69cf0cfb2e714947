#include <filesystem>
#include <tuple>

#include "AppFixture.h"
#include "app/browser/BrowserSession.h"
#include "app/connect/ShortCutEditWindow.h"
#include "app/connect/ShortCutWindow.h"
#include "app/connect/ShortcutTree.h"
#include "app/shared/OpenMessage.h"
#include "sites/ShortcutStore.h"
#include "support/FakeSecretStore.h"
#include "support/Files.h"

namespace corvane {
namespace {

using Result = SecretStore::Result;

/// The application with a secret store and two shortcuts.
class Passwords : public AppFixture {
 protected:
  Passwords() {
    app_.reset();
    app_ = std::make_unique<TambleApp>(factory_, secrets_);
    app_->ReadyToRun();
    settings_ = {};
    ProcessSettings::Set(settings_);
    EXPECT_EQ(ShortcutStore::SaveAll({Named("one", "s3cret-1"), Named("two", "")}), Text());
    connections_.clear();
    Alerts::AnswerWith([this](const Alerts::Question& question) {
      alerts_.push_back(question);
      if (question.entered) question.entered("typed");
      if (question.ticked) question.ticked(true);
      return button_;
    });
  }

  static Shortcut Named(const std::string& user, const std::string& password) {
    return {.label = "To " + user,
            .site = {.host = "h", .user = user, .password = password, .path = "/"}};
  }
  static Site Kept(const std::string& user) {
    Site site = Named(user, "").site;
    site.keptPassword = true;
    return site;
  }
  void Open(const Site& site) {
    app_->PostMessage(OpenMessage(site));
    window_ = app_->WindowList().back();
  }
  /// With what password one more connection begins; "-" where none does.
  std::string Begins() {
    return Wait([&] { return !connections_.empty(); })
               ? std::exchange(connections_, {}).front().password
               : "-";
  }
  bool Holds(const std::string& all) {
    return Wait([&] { return secrets_->All() == all; });
  }
  /// Whether a file below the folder of preferences holds that text.
  bool AnyFileHolds(const char* text) const {
    const std::string folder = config_.path().toStdString();
    for (const auto& file : std::filesystem::recursive_directory_iterator(folder)) {
      if (file.is_regular_file() && Contents(file.path()).find(text) != std::string::npos)
        return true;
    }
    return false;
  }
  QLineEdit& Field(const char* name) { return Line(app_->Editor(), name); }
  void PressOk() {
    app_->Editor()->findChild<QPushButton*>("ok")->click();
    EXPECT_TRUE(Gone(app_->Editor()));
  }
  void SaveList() {
    app_->Shortcuts()->MessageReceived(Message("SVPF"_what));
    EXPECT_TRUE(Wait([&] { return !app_->Shortcuts()->Changed(); }));
  }

  const std::shared_ptr<FakeSecretStore> secrets_ = std::make_shared<FakeSecretStore>();
};

TEST_F(Passwords, OfAnOldShortcutMoveOverWithTheFirstLogin) {
  const Site old = ShortcutStore::Read(0)->site;
  secrets_->Become(Result::Locked);
  Open(old);
  EXPECT_EQ(Begins(), "s3cret-1");
  EXPECT_TRUE(Wait([&] { return secrets_->Calls() == 1; }));
  secrets_->Become(Result::Done);
  EXPECT_TRUE(AnyFileHolds("s3cret-1")) << "nobody was there to unlock the store";
  Open(old);
  EXPECT_EQ(Begins(), "s3cret-1");
  EXPECT_TRUE(Holds("one@h:21=s3cret-1 "));
  EXPECT_TRUE(Wait([&] { return window_->findChild<QWidget*>("Notice") != nullptr; }));
  EXPECT_FALSE(AnyFileHolds("s3cret-1"));
  const Shortcut moved = ShortcutStore::Read(0).value();
  EXPECT_TRUE(moved.site == Kept("one")) << moved.site.password;
  Open(moved.site);
  EXPECT_EQ(Begins(), "s3cret-1");
  EXPECT_EQ(secrets_->Prompts(), 0);
  EXPECT_EQ(alerts_.size(), 0U);
}

TEST_F(Passwords, ThatAreNotThereAreAskedFor) {
  Site asks = Named("two", "").site;
  asks.asksPassword = true;
  // The site, the store, whether it is offered to keep the password, and what stands there then.
  const std::tuple<Site, Result, bool, const char*> cases[] = {
      {asks, Result::Done, false, ""},
      {Kept("two"), Result::NoService, false, ""},
      {Kept("two"), Result::Failed, false, ""},
      {Kept("two"), Result::Locked, true, ""},
      {Kept("two"), Result::Done, true, "two@h:21=typed "},
  };
  for (const auto& [site, state, offered, after] : cases) {
    Anew();
    secrets_->Become(state);
    Open(site);
    EXPECT_EQ(Begins(), "typed");
    ASSERT_EQ(alerts_.size(), 1U);
    EXPECT_EQ(alerts_[0].text, "Password for two@h");
    EXPECT_EQ(!alerts_[0].tick.isEmpty(), offered);
    EXPECT_TRUE(Holds(after));
    EXPECT_TRUE(Wait([&] { return IsReady(); }));
    EXPECT_EQ(window_->Session().To().password, "typed") << "for its transfers";
  }
  EXPECT_FALSE(AnyFileHolds("typed"));
}

TEST_F(Passwords, ThatAreNotGivenLeaveTheWindowUnconnected) {
  Anew(1);
  secrets_->Become(Result::NoService);
  Open(Kept("two"));
  const auto* again = window_->findChild<QPushButton*>("TryAgain");
  EXPECT_TRUE(Wait([&] { return again->isVisible(); }));
  EXPECT_EQ(connections_.size(), 0U);
  EXPECT_TRUE(window_->windowTitle().contains("Not connected"));
  Anew(0);
  window_->findChild<QPushButton*>("TryAgain")->click();
  EXPECT_EQ(Begins(), "typed");
}

TEST_F(Passwords, OfShortcutsGoWhereTheyAreKept) {
  app_->ShowShortcuts();
  QTreeWidget& rows = app_->Shortcuts()->List();
  app_->ShowEditor({}, *app_->Shortcuts());
  Field("Host").setText("new");
  Field("User").setText("u");
  Line(app_->Editor(), "password").setFocus();
  QTest::keyClicks(&Field("password"), "p:@w");  // no line could hold it
  EXPECT_FALSE(app_->Editor()->findChild<QWidget*>("InFile")->isVisible());
  PressOk();
  EXPECT_TRUE(Holds("u@new:21=p:@w "));
  EXPECT_FALSE(AnyFileHolds("p:@w"));
  ASSERT_EQ(rows.topLevelItemCount(), 3);
  // Its password moves along where nothing is typed.
  rows.setCurrentItem(rows.topLevelItem(2));
  app_->Shortcuts()->MessageReceived(Message("ITMV"_what));
  EXPECT_EQ(Field("password").placeholderText(), "kept in the keyring");
  Field("Port").setText("2121");
  PressOk();
  SaveList();
  EXPECT_TRUE(Holds("one@h:21=s3cret-1 u@new:2121=p:@w "));
  EXPECT_FALSE(AnyFileHolds("s3cret-1"));
  // A shortcut that is removed takes its password along, another one of that login does not.
  Shortcut second = Named("one", "");
  second.site.keptPassword = true;
  EXPECT_EQ(ShortcutStore::Add(second).failure, Text());
  app_->Shortcuts()->close();
  EXPECT_TRUE(Gone(app_->Shortcuts()));
  app_->ShowShortcuts();
  for (const char* left : {"one@h:21=s3cret-1 u@new:2121=p:@w ", "one@h:21=s3cret-1 "}) {
    QTreeWidget& list = app_->Shortcuts()->List();
    list.setCurrentItem(list.topLevelItem(left == std::string("one@h:21=s3cret-1 ") ? 1 : 0));
    app_->Shortcuts()->MessageReceived(Message("REMI"_what));
    SaveList();
    EXPECT_TRUE(Holds(left));
  }
}

TEST_F(Passwords, StandInTheFileWhereNothingElseKeepsThem) {
  secrets_->Become(Result::NoService);
  app_->ShowShortcuts();
  app_->ShowEditor({}, *app_->Shortcuts());
  Field("Host").setText("new");
  Field("User").setText("u");
  QTest::keyClicks(&Field("password"), "pw-file");
  EXPECT_TRUE(Wait([&] { return app_->Editor()->findChild<QWidget*>("InFile")->isVisible(); }));
  PressOk();
  EXPECT_EQ(ShortcutStore::Read(2)->site.password, "pw-file");
  app_->Shortcuts()->MessageReceived(Message("SVPF"_what));
  const auto* status = app_->Shortcuts()->findChild<QLabel*>("StatusString");
  EXPECT_TRUE(Wait([&] { return status->text().startsWith("No keyring runs"); }));
  EXPECT_TRUE(ShortcutStore::Read(0)->site == Named("one", "s3cret-1").site);
}

TEST_F(Passwords, OfAProxyGoesFromTheFileToTheKeyringWithItsFirstUse) {
  settings_.useProxy = true;
  settings_.proxyAddress = "p";
  settings_.proxyUser = "anna";
  settings_.proxyPassword = "s3cret-p";
  EXPECT_EQ(StoredSettings::Apply(settings_), Text());
  EXPECT_TRUE(AnyFileHolds("s3cret-p"));
  Open(Named("two", "own").site);
  EXPECT_EQ(Begins(), "own");
  EXPECT_TRUE(Holds("anna@p:21=s3cret-p ")) << secrets_->All();
  EXPECT_TRUE(Wait([&] { return !AnyFileHolds("s3cret-p"); }));
  // The next start finds it there.
  EXPECT_EQ(StoredSettings::ReadAtStart([] { return true; }), Text());
  EXPECT_EQ(ProcessSettings::Get().proxyPassword, "");
  Open(Named("two", "own").site);
  ASSERT_TRUE(Wait([&] { return !connections_.empty(); }));
  EXPECT_EQ(connections_.back().proxy->password, "s3cret-p");
  EXPECT_EQ(connections_.back().password, "own");
  // Who empties the field has it forgotten.
  settings_ = ProcessSettings::Get();
  settings_.proxyPassword.clear();
  EXPECT_EQ(StoredSettings::Apply(settings_), Text());
  EXPECT_FALSE(ProcessSettings::Get().proxyKept);
}

}  // namespace
}  // namespace corvane
