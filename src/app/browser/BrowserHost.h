#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "app/shared/EditRequest.h"
#include "app/shared/TransferListener.h"
#include "app/shared/WorkerFactory.h"
#include "kit/Message.h"
#include "kit/Text.h"
#include "remote/RemoteEntry.h"
#include "remote/Site.h"
#include "sites/Shortcut.h"

class QWidget;

namespace corvane {

class TransferView;
struct EntriesHost;

/// What a browser window needs of the program around it. GUI thread.
struct BrowserHost {
  virtual ~BrowserHost() = default;

  [[nodiscard]] virtual const WorkerFactory& Workers() const = 0;
  /// Takes 'OPNC', 'SHLG', 'SHED', 'SHMN' and 'HELP'.
  virtual void PostMessage(const Message& message) = 0;
  /// Opens the editor for a new shortcut beside `opener`, filled with `shortcut`.
  virtual void ShowEditor(const Shortcut& shortcut, const QWidget& opener) = 0;
  /// Begins a transfer on a connection of its own.
  virtual void Transfer(transferStruct description, TransferListener listener) = 0;
  /// A view for transfers on the window's own connection; `parent` owns it.
  [[nodiscard]] virtual TransferView* MakeTransferView(QWidget* parent) = 0;
  /// Gets the password of a site that has none with it: from where it is kept, else from the user,
  /// who is asked over `window`. `found` gets the site with it, or nothing where the user gives
  /// none, and whether the user wants it kept; at once or later.
  virtual void FindPassword(QWidget* window, const Site& site,
                            std::function<void(std::optional<Site> site, bool keep)> found) = 0;
  /// A login to `site` has succeeded; with `keep` its password is kept. `tell` gets what the user
  /// should know of that, later or never.
  virtual void ConnectionStands(const Site& site, bool keep,
                                std::function<void(const Text&)> tell) = 0;
  /// Looks at the connection to `site` step by step, in a window over `window`. `connect` gets the
  /// site, perhaps mended, where the user then wants to connect to it.
  virtual void Diagnose(QWidget* window, const Site& site,
                        std::function<void(const Site& site)> connect) = 0;
  /// Shows what entries of `directory` are, beside `browser`, with which `host` goes.
  virtual void ShowProperties(EntriesHost& host, const std::string& directory,
                              std::vector<RemoteEntry> entries, QWidget* browser) = 0;
  /// Opens the window that finds entries below `directory`, likewise.
  virtual void ShowFind(EntriesHost& host, const std::string& directory, QWidget* browser) = 0;
  /// Fetches files and opens them in programs here; what is saved there is sent back.
  virtual void OpenRemote(std::vector<EditRequest> requests) = 0;
  /// Opens the manual; alerts stand over `window`.
  virtual void ShowManual(QWidget* window) = 0;
  /// The open browser windows, oldest first.
  [[nodiscard]] virtual std::vector<QWidget*> BrowserWindows() const = 0;
};

}  // namespace corvane
