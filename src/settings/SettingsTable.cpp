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
                                       "&Always use same connection to transfer files.")},
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
            .label = QT_TRANSLATE_NOOP("corvane::PrefWindow", "&Enable Proxy")},
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
    // Stored as a text under the same key, so that the number is never there and the flag stays
    // false.
    Setting{.key = "defaultpass", .variable = &Values::defaultpass},
};

}  // namespace

std::span<const Setting> AllSettings() {
  return kSettings;
}

}  // namespace corvane
