#pragma once

#include <QObject>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "app/connect/EditedShortcut.h"
#include "kit/Text.h"
#include "sites/SecretStore.h"

class QWidget;

namespace corvane {

/// Finds, keeps and moves the passwords of connections. The store is asked on threads of their own;
/// what is to go on with the answer runs on the GUI thread, at once where there is nothing to wait
/// for. GUI thread.
class Passwords : public QObject {
  Q_OBJECT

 public:
  /// Without a store nothing is kept outside the program's own files.
  explicit Passwords(std::shared_ptr<SecretStore> store) : store_(std::move(store)) {}

  using Found = std::function<void(std::optional<Site> site, bool keep)>;
  /// The site with its password, from the store or from the user, who is asked over `window`; see
  /// BrowserHost. Where the window goes first, `found` is never called.
  void Find(QWidget* window, const Site& site, Found found);
  /// Keeps the password of a site; `tell` hears why it could not be.
  void Keep(const Site& site, std::function<void(const Text&)> tell);
  /// Where a shortcut's line still holds this password: moves it into the store, without asking to
  /// unlock that, and tells what it has done.
  void MoveOver(const Site& site, std::function<void(const Text&)> tell);

  /// Moves the password of the site's proxy from the settings' file into the store.
  void MoveProxyOver(const Site& site);

  using Stored = std::function<void(std::vector<Shortcut> shortcuts, const Text& word)>;
  /// Keeps the passwords of shortcuts that are to be saved. `then` gets them as they are to be
  /// stored, and what the user should know of their passwords.
  void KeepAll(std::vector<EditedShortcut> shortcuts, Stored then);
  using AllFound = std::function<void(std::vector<Shortcut> shortcuts, int missing)>;
  /// The shortcuts with the passwords that are kept for them, and how many were not found.
  void FindAll(std::vector<Shortcut> shortcuts, AllFound then);
  /// Removes what was kept for shortcuts of `before` and belongs to none of `now`.
  void ForgetUnused(const std::vector<Shortcut>& before, const std::vector<Shortcut>& now);

  /// Whether passwords go to the store: it runs, and the preferences want it.
  void AskWhetherKept(std::function<void(bool)> then);

 private:
  void FindOfProxy(QWidget* window, const Site& site, Found found);
  void Ask(QWidget* window, const Site& site, bool mayKeep, Found found);
  [[nodiscard]] bool Wanted() const;

  std::shared_ptr<SecretStore> store_;
};

}  // namespace corvane
