#pragma once

#include <QString>

#include "app/shared/Tones.h"
#include "workers/EditedFile.h"

namespace corvane {

/// What is said of an edited file. GUI thread.
class EditedTexts {
 public:
  /// How a file stands: a symbol, its colour and a short text.
  struct Standing {
    const char* symbol;
    Tone tone;
    QString text;
  };
  [[nodiscard]] static Standing StandingOf(const EditedFile& file);

  [[nodiscard]] static QString NameOf(const EditedFile& file);
  /// The directory that it is in.
  [[nodiscard]] static QString DirectoryOf(const EditedFile& file);
  /// "notes.txt" on a server of that name, for tooltips and those who hear the row.
  [[nodiscard]] static QString ServerOf(const EditedFile& file);
  /// The title of a window about files of that site: "Edited Files – anna@host".
  [[nodiscard]] static QString TitleFor(const QString& subject, const Site* site);
  /// "14 Mar 2026 09:26" of what stands on a server; that it is not known where it is not.
  [[nodiscard]] static QString TimeOf(const FileVersion& version);
  [[nodiscard]] static QString SizeOf(const FileVersion& version);
};

}  // namespace corvane
