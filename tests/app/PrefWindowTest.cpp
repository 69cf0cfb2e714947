#include "AppFixture.h"
#include "app/desktop/Autostart.h"
#include "app/program/PrefWindow.h"
#include "settings/Access.h"
#include "sites/ProxyOf.h"
#include "sites/ReadAtStart.h"
#include "sites/SecurityOf.h"

namespace corvane {
namespace {

class Preferences : public AppFixture {
 protected:
  Preferences() { Open(); }

  void Open() {
    app_->ConnectionWindow().MessageReceived(Message("SHPF"_what));
    window_ = app_->Preferences();
    EXPECT_TRUE(QTest::qWaitForWindowActive(window_));
  }
  QLineEdit& Field(const char* name) { return Line(window_, name); }
  QCheckBox& Box(const char* name) { return *window_->findChild<QCheckBox*>(name); }
  void Press(const char* name) { window_->findChild<QPushButton*>(name)->click(); }

  QPointer<PrefWindow> window_;
};

TEST_F(Preferences, SavePutsThemInForceAndCancelDoesNot) {
  Field("defaultpass").clear();
  Field("download path").setText("/d");
  for (const char* sound : {"LoginSuccess", "LoginFailure", "Upload Sound", "Download Sound"}) {
    Field(sound).setText(*sound == 'U' ? "" : sound);
  }
  for (const char* box :
       {"ShowTranWin", "RemoveItem", "Notify", "ShowInTray", "UseSameConnection", "ClassicStyle",
        "ProxyCheckBox", "KeepAlive", "KeepTimes", "AskBeforePlain", "UseKeyring"}) {
    Box(box).toggle();
  }
  for (const char* box : {"CompareChecksums", "PartNames"}) Box(box).toggle();
  int number = 6;
  for (const char* field : {"TransfersAtOnce", "TransfersPerServer", "ConnectionsPerTransfer",
                            "DownloadLimit", "UploadLimit", "Retries", "FirstRetry", "ConnectWait",
                            "EncryptionWait", "ReplyWait", "DataWait"}) {
    window_->findChild<QSpinBox*>(field)->setValue(++number);
  }
  window_->findChild<QComboBox*>("Existing")->setCurrentIndex(4);
  window_->findChild<QComboBox*>("BufferSize")->setCurrentIndex(3);
  window_->findChild<QWidget*>("Security")->findChildren<QRadioButton*>().last()->click();
  window_->findChild<QComboBox*>("ProxyKind")->setCurrentIndex(1);
  Field("ProxyUser").setText("u");
  QTest::keyClicks(&Field("ProxyPassword"), "secret");
  const std::pair<const char*, const char*> faults[] = {
      {"", "21"}, {"proxy", "many"}, {"p", ""}, {"p", "0"}};
  for (const auto& [host, port] : faults) {
    Field("ProxyAddr").setText(host);
    Field("ProxyPort").setText(port);
    Press("save");
    EXPECT_TRUE(window_->findChild<QLabel*>("Fault")->isVisible()) << host << port;
  }
  Field("ProxyPort").setText(" 8021 ");
  Press("save");
  EXPECT_TRUE(Gone(window_));
  Open();
  EXPECT_TRUE(Box("ShowTranWin").isChecked() && Box("ShowInTray").isChecked());
  QFile atLogin(config_.filePath("autostart/corvane-tray.desktop"));
  EXPECT_TRUE(atLogin.open(QIODevice::ReadOnly));
  EXPECT_TRUE(atLogin.readAll().contains("\" -deskbar login\n"));
  EXPECT_EQ(window_->findChild<QComboBox*>("BufferSize")->currentIndex(), 3);
  Box("RemoveItem").toggle();
  QTest::keyClick(window_->findChild<QPushButton*>("cancel"), Qt::Key_Return);
  EXPECT_TRUE(Gone(window_));
  for (const bool restarted : {false, true}) {
    const SettingsValues now = ProcessSettings::Get();
    EXPECT_EQ(now.DfltPass.size(), 9U);
    EXPECT_EQ(now.showwindow, restarted) << "kept, but not in force before the next start";
    EXPECT_EQ(now.DwnldDir + now.loginSsnd + now.loginFsnd + now.upldsnd + now.dwnldsnd,
              "/dLoginSuccessLoginFailurenoneDownload Sound");
    EXPECT_EQ(now.proxyAddress + now.proxyPort + std::to_string(now.buffersize), "p 8021 131072");
    EXPECT_TRUE(now.removeItem && now.useSameConnection && now.useProxy && !now.defaultpass);
    EXPECT_TRUE(!now.notify && now.classicStyle);
    EXPECT_TRUE(!now.keepAlive && !now.keepTimes && !now.askBeforePlain && !now.useKeyring);
    EXPECT_TRUE(!now.compareChecksums && !now.partNames);
    EXPECT_EQ((std::array{now.transfersAtOnce, now.transfersPerServer, now.connectionsPerTransfer,
                          now.downloadLimit, now.uploadLimit, now.retries, now.firstRetry,
                          now.connectWait, now.encryptionWait, now.replyWait, now.dataWait}),
              (std::array{7, 8, 8, 10, 11, 12, 13, 14, 15, 16, 17}));
    EXPECT_EQ(static_cast<Policy>(now.existing), Policy::Newer);
    EXPECT_EQ(factory_.speed->down.Piece(1'000'000), 1024U) << "in force at once";
    EXPECT_EQ(SecurityOf(now), Security::Plain);
    EXPECT_EQ(ProxyOf(now), (Proxy{"p", 8021, Proxy::Kind::Socks5, "u", "secret"}));
    EXPECT_EQ(ReadAtStart(), Text());
  }
}

TEST_F(Preferences, WhatSomebodyElseWroteIntoTheAutostartFileStays) {
  const QString path = config_.filePath("autostart/corvane-tray.desktop");
  for (const bool edited : {false, true}) {
    for (const bool on : {true, false}) {
      EXPECT_EQ(Autostart::Set(on), "");
      EXPECT_EQ(Autostart::IsSet(), on);
      QFile now(path);
      EXPECT_EQ(now.open(QFile::ReadOnly), on || edited);
      EXPECT_EQ(now.readAll().contains("X-My=1\n"), edited);
    }
    QFile by(path);
    EXPECT_TRUE(by.open(QFile::WriteOnly) && by.write("[Desktop Entry]\nX-My=1\n") > 0);
  }
}

// A proxy that is set there must not be bypassed without a word.
TEST_F(Preferences, ThatCannotBeReadAreSaidAndNoConnectionIsMadeUnasked) {
  Press("cancel");
  EXPECT_TRUE(Gone(window_));
  QFile set(config_.filePath("_LP_x-ovak-Corvane/settings"));
  ASSERT_TRUE(set.open(QFile::WriteOnly) && set.write("cut short") > 0);
  set.close();
  connections_.clear();
  button_ = 1;
  app_ = std::make_unique<TambleApp>(factory_);
  app_->ReadyToRun(With("OPNC"_what, "host", "h"));
  QApplication::processEvents();
  EXPECT_EQ(alerts_.size(), 2U) << "at the start, and before the connection";
  EXPECT_TRUE(connections_.empty());
  button_ = 0;
  for (const std::size_t count : {1U, 2U}) {
    app_->PostMessage(With("OPNC"_what, "host", "h"));
    EXPECT_TRUE(Wait([&] { return connections_.size() == count; }));
  }
  EXPECT_EQ(alerts_.size(), 3U) << "asked once";

  // As soon as they can be read they are in force, their proxy too.
  app_ = std::make_unique<TambleApp>(factory_);
  app_->ReadyToRun();
  ASSERT_TRUE(set.remove());
  std::optional<PreferenceSet> mended("settings");
  SaveInt32(*mended, "useproxy", 1);
  SaveString(*mended, "ftpproxyaddress", "proxy.test");
  SaveString(*mended, "ftpproxyport", " 8021");
  mended.reset();
  app_->PostMessage(With("OPNC"_what, "host", "h"));
  EXPECT_EQ(connections_.back().proxy, (Proxy{"proxy.test", 8021}));
}

TEST_F(Preferences, SaysWhenNothingCouldBeStored) {
  const QString set = config_.filePath("_LP_x-ovak-Corvane/settings");
  QFile::remove(set);
  ASSERT_TRUE(QDir().mkpath(set));
  Press("save");
  ASSERT_EQ(alerts_.size(), 1U);
  EXPECT_NE(alerts_[0].detail, "");
  EXPECT_FALSE(window_.isNull());
}

}  // namespace
}  // namespace corvane
