#pragma once

#include <QString>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "remote/RemoteEntry.h"
#include "remote/Site.h"
#include "workers/MThread.h"
#include "workers/WalkOrder.h"
#include "workers/WalkUi.h"

class QObject;
class QWidget;

namespace corvane {

/// An entry as a listing shows it.
struct EntryTexts {
  const char* symbol = nullptr;
  QString name;
  QString kind;
  QString size;
  QString date;
};

/// What the windows about a server's entries need of the browser window that opens them and that
/// they go with. GUI thread. Paths and names are raw bytes.
struct EntriesHost {
  virtual ~EntriesHost() = default;

  [[nodiscard]] virtual const Site& Server() const = 0;
  /// The title of a window that is about `place`.
  [[nodiscard]] virtual QString TitleOf(const QString& place) const = 0;
  [[nodiscard]] virtual EntryTexts TextsOf(const RemoteEntry& entry) const = 0;
  /// Whether the server may be able to set times, as far as it has told.
  [[nodiscard]] virtual bool SetsTimes() const = 0;

  /// Starts a walk; null where there is no connection.
  [[nodiscard]] virtual std::shared_ptr<MThread> Walk(const WalkOrder& order,
                                                      std::shared_ptr<WalkUi> ui) = 0;

  /// Shows what has become of entries where their directory is shown.
  virtual void LookAt(const std::string& directory, const std::vector<RemoteEntry>& entries) = 0;
  /// Shows a directory, with that entry selected.
  virtual void Show(const std::string& directory, const std::string& name) = 0;
  virtual void Download(const std::vector<FoundEntry>& entries) = 0;
  /// Asks first, over `window`.
  virtual void Delete(QWidget* window, const std::vector<FoundEntry>& entries) = 0;
  virtual void CopyAddresses(const std::vector<FoundEntry>& entries) = 0;
  /// Has `gone` called for each entry that is deleted, as long as `context` lives.
  virtual void WhenGone(
      QObject* context,
      std::function<void(const std::string& directory, const std::string& name)> gone) = 0;
};

}  // namespace corvane
