#pragma once

#include <memory>
#include <string>

#include "kit/Looper.h"
#include "kit/Mutex.h"
#include "remote/BrowserUi.h"
#include "remote/RemoteSession.h"
#include "remote/Site.h"
#include "workers/EntryChanges.h"
#include "workers/Relogin.h"
#include "workers/SessionTurn.h"

namespace corvane {

class DirLister;
class ListingCache;

/// Carries out the requests of one browser window, one message after another, on its own thread.
///
/// 'CNNT' connects, enters the site's path and lists; 'RCNN' ("path") connects again after a loss.
/// 'PCHN' ("path", "cwd") changes from the directory "path" to "cwd" and lists; 'CRDR' ("path")
/// lists again; 'HSYM' ("path", "sym") finds out where a link leads. 'DELE' ("path", and one "name"
/// and "type" per entry), 'RNFL' ("path", "original", "renameto") and 'MKDR' ("path", "name")
/// change what stands in the directory "path"; so do 'MOVE' ("path", one "name" per entry, "to": a
/// directory) and 'DUPL' ("path", "name", "type", "to": the copy's name), which replace nothing.
/// 'STAT' ("path", and one "name", "type" and "size" per entry) looks at entries anew. 'VWFL'
/// ("path", "file") shows a remote file as text, 'VWDR' ("path") a directory's listing as it came.
/// 'FRTR' is reserved. Behind every request, whatever came of it, the window gets 'DONE'
/// ("request": the code, and "stopped" where the user ended it). Quit closes the connection and
/// ends the looper soon, whatever it waits for.
///
/// A listing that has come is followed by 'FREE' ("path"), which the looper sends itself: once
/// nothing else waits it tells the window what the server can do ('CAPS', "copy": 0 or 1, once on
/// each connection) and how much room there is ('FREE', "bytes"), where the server tells. A request
/// that arrives meanwhile goes first.
///
/// While nothing is asked of it the connection is kept alive, as often as the site has it.
///
/// A connection that was lost meanwhile is logged in anew without a question, and a request whose
/// first command finds it gone is carried out once more, unless something may have been changed.
class ControlLooper : public Looper {
 public:
  /// `session` is the site's, and not connected yet.
  ControlLooper(Site site, std::shared_ptr<RemoteSession> session,
                std::shared_ptr<BrowserUi> window);
  ~ControlLooper() override;

  /// Ends the present request, or the listing that it began; the connection stays.
  void Stop() override EXCLUDES(lock_);

  /// The connection, for a transfer that uses it.
  [[nodiscard]] const std::shared_ptr<RemoteSession>& Session() const { return session_; }

 protected:
  void MessageReceived(const Message& message) override;
  void Interrupt() override;
  void Arrived(std::uint32_t what) override;
  std::chrono::milliseconds Patience() override;
  void Idle() override;

 private:
  [[nodiscard]] EngineLease Lease(bool tells);
  /// Each returns what the user is still to be told.
  Outcome CarryOut(const Message& message);
  Outcome Handle(const Message& message);
  Outcome Connect();
  /// Tells how far the opening of the first directory is.
  void OpeningStep(ConnectStep::State state);
  Outcome ConnectAgain(const std::string& directory);
  Outcome Refused(const Outcome& outcome);
  Outcome EnterStartPath(std::string& file);
  Outcome ChangeDirectory(const std::string& from, const std::string& to);
  Outcome FollowLink(const std::string& directory, const std::string& name);
  Outcome CreateDirectory(const Message& entry);
  Outcome ViewListing(const std::string& directory);
  Outcome Show(const std::string& directory, bool emptied = false);
  /// Lists on this thread; a lister that has not begun yet does nothing any more.
  /// Where the window's rows are `emptied` already, it learns of the end whatever comes.
  Outcome List(const std::string& directory, bool emptied = false);

  void AskAround(const std::string& directory);
  void TellFeatures();
  void TellFreeSpace(const std::string& directory);
  void AskForDownload(const std::string& name);
  void StartLister(const std::string& directory) EXCLUDES(lock_);
  void LetListerGo() EXCLUDES(lock_);
  void Tell(const Outcome& outcome);

  const Site site_;
  const std::shared_ptr<RemoteSession> session_;
  const std::shared_ptr<BrowserUi> window_;
  SessionTurn turn_;
  SessionTurn asking_;  // for what is asked only while nothing else waits
  Relogin relogin_;
  EntryChanges changes_;
  std::shared_ptr<ListingCache> cache_;  // from the first 'CNNT' on
  std::string shown_;                    // the directory that the window shows
  std::string postponed_;                // of which to ask once the requests are done
  bool keepsAlive_ = false;              // the connection stood when last a request ended
  bool tellsFeatures_ = false;           // 'CAPS' is still to be sent
  Text verdict_;                         // the status at the end; empty where it is set elsewhere
  Mutex lock_;
  std::shared_ptr<DirLister> lister_ GUARDED_BY(lock_);  // the last one
};

}  // namespace corvane
