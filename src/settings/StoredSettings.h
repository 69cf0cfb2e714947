#pragma once

#include <functional>
#include <string>

#include "kit/Rect.h"
#include "kit/Text.h"
#include "settings/ProcessSettings.h"

namespace corvane {

/// A kind of window whose frame is kept, and where its first one stands.
struct FrameSetting {
  const char* key;
  Rect fallback;
};

inline constexpr FrameSetting kMainFrame{"mainwinframe", {100, 50, 420, 270}};
inline constexpr FrameSetting kTransferFrame{"transferwinframe", {400, 200, 750, 500}};
inline constexpr FrameSetting kConnectionFrame{"connwinframe", {120, 50, 560, 530}};

/// The set "settings" on the disk. GUI thread.
class StoredSettings {
 public:
  /// Converts the shortcuts of versions below 1000; false when it could not be done.
  using Conversion = std::function<bool()>;
  /// Reads every setting into ProcessSettings, defaults for what is missing. Stored data of an
  /// older version is brought up to date, the shortcuts by `convert`. Returns why the set could not
  /// be read, an empty text when it was.
  static Text ReadAtStart(const Conversion& convert);
  /// The same for a process that only looks: what is on the disk stays as it is.
  static void Read();
  /// Takes over what the user set in the preferences window and stores it, as SettingsTable says.
  /// Returns why it could not be stored, an empty text when it was.
  static Text Apply(const SettingsValues& entered);
  /// Whether the file holds the proxy's password.
  [[nodiscard]] static bool HoldsProxyPassword();
  /// The proxy's password stands in the secret store now: it goes from the file and stays in force.
  /// Returns why that could not be stored, an empty text when it was.
  static Text TakeOutProxyPassword();
  /// The settings as the preferences window shows them: those in force, and what is stored of those
  /// that wait for the next start.
  [[nodiscard]] static SettingsValues ForEditing();

  /// A window's frame as it was read at start or saved since.
  [[nodiscard]] static Rect Frame(const FrameSetting& setting);
  static void SaveFrame(const FrameSetting& setting, const Rect& frame);

  /// While one lives, the frames that are saved wait; then they are stored together.
  class GatheredFrames {
   public:
    GatheredFrames();
    ~GatheredFrames();
    GatheredFrames(const GatheredFrames&) = delete;
    GatheredFrames& operator=(const GatheredFrames&) = delete;
  };
};

}  // namespace corvane
