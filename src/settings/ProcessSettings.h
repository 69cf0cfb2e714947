#pragma once

#include <cstdint>
#include <string>

namespace corvane {

/// The settings in force, as one copy, each with its default. SettingsTable says how each of them
/// is stored and shown.
struct SettingsValues {
  std::string DwnldDir = "empty";          ///< folder for downloads; "empty" or "": none, ask
  std::string DfltPass = "guest@host.in";  ///< password offered for anonymous logins
  std::string loginSsnd = "none";          ///< sound files by path, "none" for silence
  std::string loginFsnd = "none";
  std::string upldsnd = "none";
  std::string dwnldsnd = "none";
  std::int32_t buffersize = 8192;  ///< bytes with which a transfer's buffer starts
  bool useProxy = false;
  std::string proxyAddress{};
  std::string proxyPort = "21";  ///< decimal text
  std::int32_t proxyKind = 0;    ///< as Proxy::Kind
  std::string proxyUser{};
  std::string proxyPassword{};
  bool proxyKept = false;         ///< that password stands in the secret store, not in the file
  std::int32_t security = 0;      ///< of new connections, as Security
  bool askBeforePlain = true;     ///< before a password goes unencrypted
  bool useKeyring = true;         ///< passwords go to the desktop's secret store where there is one
  bool keepTimes = true;          ///< files keep their times when they are transferred
  bool keepAlive = true;          ///< idle connections are kept open
  std::int32_t connectWait = 20;  ///< seconds for each address; 0, here and below: no end
  std::int32_t encryptionWait = 20;         ///< seconds before a connection is encrypted
  std::int32_t replyWait = 60;              ///< seconds for a reply of the server
  std::int32_t dataWait = 60;               ///< seconds in which no data moves
  std::int32_t transfersAtOnce = 5;         ///< rows of the transfer list
  std::int32_t transfersPerServer = 2;      ///< of those
  std::int32_t connectionsPerTransfer = 4;  ///< of one with several files
  std::int32_t downloadLimit = 0;           ///< kB a second in all; 0 for none
  std::int32_t uploadLimit = 0;             ///< likewise
  std::int32_t retries = 5;                 ///< of a transfer, without progress
  std::int32_t firstRetry = 2;              ///< seconds before the first of them
  std::int32_t existing = 0;                ///< what becomes of files that are there: 0 asks, else
                                            ///< the Policy of that number
  bool compareChecksums = true;             ///< where the server has them
  bool partNames = true;  ///< an upload takes the place of a file once it is whole
  bool useSameConnection = false;
  bool removeItem = false;    ///< take finished transfers off the list
  bool defaultpass = false;   ///< never set
  bool notify = true;         ///< tell the desktop of transfers that end behind the user's back
  bool showwindow = true;     ///< show the transfer window when a transfer is queued
  std::string editor{};       ///< the command that edits text; "" for the desktop's
  bool classicStyle = false;  ///< which Style is in force

  friend bool operator==(const SettingsValues&, const SettingsValues&) = default;
};

/// The process-wide settings. Any thread reads a consistent copy at any time.
class ProcessSettings {
 public:
  [[nodiscard]] static SettingsValues Get();
  static void Set(SettingsValues values);
};

}  // namespace corvane
