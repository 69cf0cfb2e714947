#pragma once

#include <QPointer>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "app/browser/RowOrder.h"
#include "kit/Mutex.h"
#include "remote/BrowserUi.h"

namespace corvane {

class BrowserSession;
class ViewerLink;

/// A browser window as its connection sees it. Outlives the window: looper and workers share it.
/// What arrives is collected here, in order, and handed to the window's session once per turn of
/// the event loop, a bounded piece at a time, so that no listing keeps the window from answering.
class BrowserLink final : public BrowserUi, public std::enable_shared_from_this<BrowserLink> {
 public:
  /// GUI thread.
  /// Names that are no UTF-8 are read in `encoding`, where it is not empty.
  BrowserLink(BrowserSession& session, std::string encoding);

  /// GUI thread: from now on every call returns false and nothing reaches the window.
  void Close() { closing_ = true; }

  bool SetStatus(const Text& text) override;
  bool ShowStep(const ConnectStep& step) override;
  bool AppendLog(std::string_view text) override;
  bool SetPath(std::string_view path) override;
  bool BeginListing() override;
  bool AddEntries(std::vector<RemoteEntry> entries) override;
  bool EndListing(std::size_t count, bool whole) override;
  bool RemoveEntry(std::string_view name, std::string_view directory) override;
  bool RenameEntry(std::string_view from, std::string_view to, std::string_view directory) override;
  bool UpdateEntry(RemoteEntry entry, std::string_view directory) override;
  bool ChangeValues(std::string_view name, std::int64_t size) override;
  [[nodiscard]] std::shared_ptr<TextSink> OpenViewer(const Text& title) override;
  bool PostMessage(Message message) override;
  bool PlaySound(Sound sound) override;
  bool ShowProtection(const Protection& protection) override;
  bool Ask(const std::shared_ptr<UserQuestion>& question) override;

 private:
  struct Status {
    Text text;
  };
  struct Log {
    std::string text;
  };
  struct Path {
    std::string path;
  };
  struct Begin {};
  using Rows = NewRows;
  struct End {
    bool whole;
  };
  struct Remove {
    std::string name;
    std::string directory;
  };
  struct Rename {
    std::string from;
    std::string to;
    std::string directory;
  };
  struct Update {
    std::vector<MWListItem> items;  // one, which has no empty form
    std::string directory;
  };
  struct Change {
    std::string name;
    std::int64_t size;
  };
  struct Viewer {
    std::shared_ptr<ViewerLink> link;
    Text title;
  };
  using Event =
      std::variant<Status, ConnectStep, Log, Path, Begin, Rows, End, Remove, Rename, Update, Change,
                   Viewer, Message, Protection, std::shared_ptr<UserQuestion>>;

  bool Push(Event event) EXCLUDES(lock_);
  /// Adds to the last event where that loses nothing.
  [[nodiscard]] bool Merge(Event& event) REQUIRES(lock_);
  void Hop();
  void Drain() EXCLUDES(lock_);
  [[nodiscard]] std::shared_ptr<const EntryAttributes> Shared(EntryAttributes attributes)
      REQUIRES(lock_);

  const QPointer<BrowserSession> session_;  // looked at on the GUI thread only
  const std::string encoding_;
  std::atomic<bool> closing_{false};
  Mutex lock_;
  std::deque<Event> events_ GUARDED_BY(lock_);
  bool hopPending_ GUARDED_BY(lock_) = false;
  // Keys are made here, while the GUI thread shows rows that came before.
  const QCollator collator_ GUARDED_BY(lock_);
  std::map<EntryAttributes, std::shared_ptr<const EntryAttributes>> attributes_ GUARDED_BY(lock_);
};

}  // namespace corvane
