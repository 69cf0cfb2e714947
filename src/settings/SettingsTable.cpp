#include "settings/SettingsTable.h"

#include <array>

namespace corvane {
namespace {

// lupdate finds the texts by this name.
constexpr const char* QT_TRANSLATE_NOOP(const char* /*context*/, const char* text) {
  return text;
}

constexpr std::array kBufferSizes{
    SettingsChoice{8192, QT_TRANSLATE_NOOP("corvane::PrefWindow", "   8 KB")},
    SettingsChoice{32768, QT_TRANSLATE_NOOP("corvane::PrefWindow", " 32 KB")},
    SettingsChoice{65536, QT_TRANSLATE_NOOP("corvane::PrefWindow", " 64 KB")},
    SettingsChoice{131072, QT_TRANSLATE_NOOP("corvane::PrefWindow", "128 KB")}};

constexpr std::array kProxyKinds{
    SettingsChoice{0, QT_TRANSLATE_NOOP("corvane::PrefWindow", "FTP proxy")},
    SettingsChoice{1, QT_TRANSLATE_NOOP("corvane::PrefWindow", "SOCKS5")},
    SettingsChoice{2, QT_TRANSLATE_NOOP("corvane::PrefWindow", "HTTP")}};

// An encryption that begins with the first byte depends on the server: it is none for all new ones.
constexpr std::array kSecurities{
    SettingsChoice{0, QT_TRANSLATE_NOOP("corvane::PrefWindow", "&Where the server offers it")},
    SettingsChoice{1, QT_TRANSLATE_NOOP("corvane::PrefWindow",
                                        "A&lways; without it Corvane does not connect")},
    SettingsChoice{3, QT_TRANSLATE_NOOP("corvane::PrefWindow", "&Never")}};

using Values = SettingsValues;
using enum SettingsTab;

const std::array kSettings{
    Setting{.key = "defaultpass",
            .variable = &Values::DfltPass,
            .tab = Misc,
            .control = "defaultpass",
            .label = QT_TRANSLATE_NOOP("corvane::PrefWindow", "&Default Password:"),
            .emptied = "guest@a.b"},
    Setting{.key = "downloaddir",
            .variable = &Values::DwnldDir,
            .tab = Misc,
            .control = "download path",
            .label = QT_TRANSLATE_NOOP("corvane::PrefWindow", "D&ownload Folder:"),
            .hint = QT_TRANSLATE_NOOP("corvane::PrefWindow", "Ask for each download"),
            // Who emptied the field wants to be asked, where one who never chose gets the desktop's
            // folder.
            .emptied = "empty",
            .storesEmptied = false},
    Setting{
        .key = "shwtranwin",
        .variable = &Values::showwindow,
        .tab = Misc,
        .control = "ShowTranWin",
        .label = QT_TRANSLATE_NOOP("corvane::PrefWindow", "Show &Transfer Window on new transfer."),
        .hint = QT_TRANSLATE_NOOP("corvane::PrefWindow", "In force from the next start on."),
        .opensGroup = true,
        .atNextStart = true},
    Setting{.key = "removeitem",
            .variable = &Values::removeItem,
            .tab = Misc,
            .control = "RemoveItem",
            .label = QT_TRANSLATE_NOOP("corvane::PrefWindow",
                                       "&Remove transfer item after transfer is done.")},
    Setting{.key = "notify",
            .variable = &Values::notify,
            .tab = Misc,
            .control = "Notify",
            .label = QT_TRANSLATE_NOOP("corvane::PrefWindow",
                                       "Show a &notification when transfers end."),
            .hint = QT_TRANSLATE_NOOP("corvane::PrefWindow",
                                      "Only while no window of Corvane is active.")},
    Setting{.key = "useSameConnection",
            .variable = &Values::useSameConnection,
            .tab = Misc,
            .control = "UseSameConnection",
            .label = QT_TRANSLATE_NOOP("corvane::PrefWindow",
                                       "Al&ways use same connection to transfer files.")},
    Setting{.key = "classicstyle",
            .variable = &Values::classicStyle,
            .tab = Misc,
            .control = "ClassicStyle",
            .label = QT_TRANSLATE_NOOP("corvane::PrefWindow", "C&lassic style"),
            .hint = QT_TRANSLATE_NOOP(
                "corvane::PrefWindow",
                "Sizes, dates, order, rows “.” and “..”, texts and colours as in the first "
                "version. Windows that open from then on follow it."),
            .hintBelow = true,
            .opensGroup = true},
    Setting{.key = "buffersize",
            .variable = &Values::buffersize,
            .tab = Misc,
            .control = "BufferSize",
            .label = QT_TRANSLATE_NOOP("corvane::PrefWindow", "&Buffer Size:"),
            .choices = kBufferSizes},
    Setting{.key = "loginSsnd",
            .variable = &Values::loginSsnd,
            .tab = Sound,
            .control = "LoginSuccess",
            .label = QT_TRANSLATE_NOOP("corvane::PrefWindow", "&Login Success:"),
            .emptied = "none"},
    Setting{.key = "loginFsnd",
            .variable = &Values::loginFsnd,
            .tab = Sound,
            .control = "LoginFailure",
            .label = QT_TRANSLATE_NOOP("corvane::PrefWindow", "Login &Failure:"),
            .emptied = "none"},
    Setting{.key = "upldsnd",
            .variable = &Values::upldsnd,
            .tab = Sound,
            .control = "Upload Sound",
            .label = QT_TRANSLATE_NOOP("corvane::PrefWindow", "U&pload Sound:"),
            .emptied = "none"},
    Setting{.key = "dwnldsnd",
            .variable = &Values::dwnldsnd,
            .tab = Sound,
            .control = "Download Sound",
            .label = QT_TRANSLATE_NOOP("corvane::PrefWindow", "&Download Sound:"),
            .emptied = "none"},
    Setting{.key = "useproxy",
            .variable = &Values::useProxy,
            .tab = Proxy,
            .control = "ProxyCheckBox",
            .label = QT_TRANSLATE_NOOP("corvane::PrefWindow", "E&nable Proxy")},
    Setting{.key = "proxykind",
            .variable = &Values::proxyKind,
            .tab = Proxy,
            .control = "ProxyKind",
            .label = QT_TRANSLATE_NOOP("corvane::PrefWindow", "Proxy &Kind :"),
            .choices = kProxyKinds},
    Setting{.key = "ftpproxyaddress",
            .variable = &Values::proxyAddress,
            .tab = Proxy,
            .control = "ProxyAddr",
            .label = QT_TRANSLATE_NOOP("corvane::PrefWindow", "Proxy &Host :")},
    Setting{.key = "ftpproxyport",
            .variable = &Values::proxyPort,
            .tab = Proxy,
            .control = "ProxyPort",
            .label = QT_TRANSLATE_NOOP("corvane::PrefWindow", "Proxy &Port :"),
            .readsEmpty = "21"},
    Setting{.key = "proxyuser",
            .variable = &Values::proxyUser,
            .tab = Proxy,
            .control = "ProxyUser",
            .label = QT_TRANSLATE_NOOP("corvane::PrefWindow", "Proxy Use&rname :"),
            .hint = QT_TRANSLATE_NOOP("corvane::PrefWindow", "none")},
    Setting{.key = "proxypassword",
            .variable = &Values::proxyPassword,
            .tab = Proxy,
            .control = "ProxyPassword",
            .label = QT_TRANSLATE_NOOP("corvane::PrefWindow", "Proxy Pass&word :"),
            .secret = true},
    Setting{.key = "proxykept", .variable = &Values::proxyKept},
    Setting{.key = "keepalive",
            .variable = &Values::keepAlive,
            .tab = Connections,
            .control = "KeepAlive",
            .label = QT_TRANSLATE_NOOP("corvane::PrefWindow", "Keep &idle connections open"),
            .hint = QT_TRANSLATE_NOOP("corvane::PrefWindow",
                                      "Servers close a connection on which nothing is said for "
                                      "long. A sign of life now and then prevents it."),
            .hintBelow = true},
    Setting{.key = "keeptimes",
            .variable = &Values::keepTimes,
            .tab = Transfers,
            .control = "KeepTimes",
            .label = QT_TRANSLATE_NOOP("corvane::PrefWindow", "Keep the &time of files"),
            .heading = QT_TRANSLATE_NOOP("corvane::PrefWindow", "Files")},
    Setting{.key = "security",
            .variable = &Values::security,
            .tab = Security,
            .control = "Security",
            .heading = QT_TRANSLATE_NOOP("corvane::PrefWindow", "Encryption of new connections"),
            .choices = kSecurities,
            .asButtons = true},
    Setting{.key = "askbeforeplain",
            .variable = &Values::askBeforePlain,
            .tab = Security,
            .control = "AskBeforePlain",
            .label = QT_TRANSLATE_NOOP("corvane::PrefWindow",
                                       "As&k before a password goes unencrypted")},
    Setting{
        .key = "usekeyring",
        .variable = &Values::useKeyring,
        .tab = Security,
        .control = "UseKeyring",
        .label = QT_TRANSLATE_NOOP("corvane::PrefWindow", "Keep them in the &desktop’s keyring"),
        .hint = QT_TRANSLATE_NOOP(
            "corvane::PrefWindow",
            "Without a keyring they are stored as plain text that only you can read."),
        .hintBelow = true,
        .heading = QT_TRANSLATE_NOOP("corvane::PrefWindow", "Passwords")},
    // Stored as a text under the same key, so that the number is never there and the flag stays
    // false.
    Setting{.key = "defaultpass", .variable = &Values::defaultpass},
};

}  // namespace

std::span<const Setting> AllSettings() {
  return kSettings;
}

}  // namespace corvane
