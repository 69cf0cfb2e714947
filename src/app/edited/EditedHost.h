#pragma once

#include <functional>
#include <optional>
#include <string>

#include "app/shared/TransferListener.h"
#include "queue/transferStruct.h"
#include "remote/Site.h"

class QWidget;

namespace corvane {

/// What the edited files need of the program around them. GUI thread. Paths are raw bytes.
struct EditedHost {
  virtual ~EditedHost() = default;

  /// Begins a transfer on a connection of its own.
  virtual void Transfer(transferStruct description, TransferListener listener) = 0;
  /// Ends the transfers from or to that local folder, raw bytes.
  virtual void CancelTransfers(const std::string& folder) = 0;
  /// Transfers that wait for another try are tried now.
  virtual void TryTransfersNow() = 0;
  /// Adds what is not kept with a site: the proxy of the settings, and the password, for which the
  /// user may be asked over `window`. `found` gets the whole site, or nothing where the user gives
  /// no password; at once or later.
  virtual void CompleteSite(QWidget* window, const Site& site,
                            std::function<void(std::optional<Site> site)> found) = 0;
  /// Opens a local file in the desktop's program for it; alerts stand over `window`.
  virtual void OpenFile(QWidget* window, const std::string& path) = 0;
  /// Opens a local file in the user's text editor; alerts stand over `window`.
  virtual void EditFile(QWidget* window, const std::string& path) = 0;
  /// Looks, elsewhere, for a program that shows in what two files differ; `found` gets its name,
  /// empty where there is none.
  virtual void FindDiffProgram(std::function<void(std::string name)> found) = 0;
  /// Shows in what two local files differ.
  virtual void CompareFiles(QWidget* window, const std::string& program, const std::string& one,
                            const std::string& other) = 0;
};

}  // namespace corvane
