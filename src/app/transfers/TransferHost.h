#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "app/shared/TransferNews.h"
#include "app/shared/WorkerFactory.h"
#include "kit/Message.h"
#include "remote/Site.h"

class QWidget;

namespace corvane {

/// What the transfer window needs of the program around it. GUI thread.
struct TransferHost {
  virtual ~TransferHost() = default;

  [[nodiscard]] virtual const WorkerFactory& Workers() const = 0;
  /// Takes 'SHMN' and 'OPNC'.
  virtual void PostMessage(const Message& message) = 0;
  /// Opens the manual; alerts stand over `window`.
  virtual void ShowManual(QWidget* window) = 0;
  /// The open browser windows, oldest first.
  [[nodiscard]] virtual std::vector<QWidget*> BrowserWindows() const = 0;
  /// A transfer's worker is done.
  virtual void TransferEnded(const TransferNews& news) = 0;
  /// Adds what is not kept with a site: the proxy of the settings, and the password, for which the
  /// user may be asked over `window`. `found` gets the whole site, or nothing where the user gives
  /// no password; at once or later.
  virtual void CompleteSite(QWidget* window, const Site& site,
                            std::function<void(std::optional<Site> site)> found) = 0;
  /// Looks at the connection to `site` step by step, in a window over `window`. `connect` gets the
  /// site, perhaps mended, where the user then wants to connect to it.
  virtual void Diagnose(QWidget* window, const Site& site,
                        std::function<void(const Site& site)> connect) = 0;
  /// Opens a local file, raw bytes, in the desktop's program; alerts stand over `window`.
  virtual void OpenFile(QWidget* window, const std::string& path) = 0;
  /// Shows a local path, raw bytes, in the file manager; alerts stand over `window`.
  virtual void RevealFile(QWidget* window, const std::string& path) = 0;
};

}  // namespace corvane
