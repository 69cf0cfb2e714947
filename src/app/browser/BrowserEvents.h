#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "app/browser/RowOrder.h"
#include "kit/Message.h"
#include "remote/ConnectStep.h"
#include "remote/Protection.h"
#include "remote/UserQuestion.h"

namespace corvane {

class ViewerLink;

/// What a browser window hears of its connection, in the order in which the connection said it.
/// GUI thread. Texts and names are raw bytes.
struct BrowserEvents {
  virtual ~BrowserEvents() = default;

  virtual void MessageReceived(const Message& message) = 0;
  virtual void ShowStatus(const Text& text) = 0;
  /// How far connecting has come; each step is told anew whenever its state changes.
  virtual void ShowStep(const ConnectStep& step) = 0;
  /// How the connection that has been made is protected.
  virtual void ShowProtection(const Protection& protection) = 0;
  /// The session waits for the user's word.
  virtual void Ask(const std::shared_ptr<UserQuestion>& question) = 0;
  virtual void AppendLog(std::string_view text) = 0;
  /// The session's current directory has become `path`.
  virtual void ShowPath(std::string_view path) = 0;
  /// Empties the listing.
  virtual void GetRidofListing() = 0;
  virtual void AddRows(NewRows rows) = 0;
  /// No more rows come; where the listing is not `whole`, the directory may hold more.
  virtual void ListingEnded(bool whole) = 0;
  /// Counts only while `directory` is shown, as do the next two.
  virtual void RemoveRow(const std::string& name, const std::string& directory) = 0;
  virtual void RenameRow(const std::string& from, const std::string& to,
                         const std::string& directory) = 0;
  /// An entry of that name is new or has changed.
  virtual void UpdateRow(const MWListItem& item, const std::string& directory) = 0;
  /// A link leads to a file of `size` bytes.
  virtual void ChangeValues(const std::string& name, std::int64_t size) = 0;
  virtual void OpenViewer(const std::shared_ptr<ViewerLink>& link, const Text& title) = 0;
};

}  // namespace corvane
