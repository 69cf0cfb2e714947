#pragma once

#include <QObject>
#include <cstddef>
#include <memory>
#include <string>
#include <string_view>

#include "app/shared/WorkerFactory.h"
#include "kit/Looper.h"
#include "kit/Message.h"
#include "remote/Site.h"

namespace corvane {

class BrowserLink;
struct BrowserEvents;

/// The connection that a browser window shows. Owns its looper's start and end, sends the window's
/// requests, each with the directory that it was made in, and knows what is under way. GUI thread.
class BrowserSession : public QObject {
  Q_OBJECT

 public:
  /// `window` outlives the session.
  BrowserSession(BrowserEvents& window, Site site);
  ~BrowserSession() override;

  /// Starts connecting to `site`, in place of where it was to go. What fails comes as 'FERR' in a
  /// later turn of the event loop.
  void Begin(const WorkerFactory& workers, Site site);
  /// Lets go of the connection: whatever it does ends in the background.
  void End();

  [[nodiscard]] const Site& To() const { return site_; }
  /// The window as its workers see it.
  [[nodiscard]] const std::shared_ptr<BrowserLink>& Link() const { return link_; }
  /// The looper, for a transfer on this connection; null once it has ended.
  [[nodiscard]] const std::shared_ptr<Looper>& Control() const { return looper_; }
  /// The directory shown, as the server calls it; empty as long as it has not said.
  [[nodiscard]] const std::string& CurrentDirectory() const { return currentDirectory_; }
  /// Where to come back to: the directory shown, or the one to begin with.
  [[nodiscard]] const std::string& Place() const;
  /// Whether the server has let the user in once.
  [[nodiscard]] bool WasConnected() const { return connected_; }
  /// Whether a request may be made: none that ends in a listing is under way.
  [[nodiscard]] bool IsReady() const { return looper_ != nullptr && asked_ == 0 && !arriving_; }
  [[nodiscard]] bool IsDeleting() const { return deleting_ > 0; }
  /// Whether something is waited for: a request, or the rest of a listing.
  [[nodiscard]] bool IsBusy() const { return looper_ != nullptr && (pending_ > 0 || arriving_); }

  // Requests. Where the queue is full there is a beep instead.

  /// Enters a directory, as typed or named in the listing, and lists it.
  void ChangeDirectory(const std::string& where);
  /// Finds out where a link leads, and goes there.
  void FollowLink(const std::string& name);
  /// Looks at an entry of the directory shown, of which `type` and `size` are known; the answer
  /// comes as an updated row. What comes up meanwhile is asked for together.
  void LookAt(const std::string& name, std::int32_t type, std::int64_t size);
  /// Ends the request that is being carried out soon; the connection stays. 'DONE' tells.
  void Stop();
  /// Connects again after a loss.
  void ConnectAgain();
  /// 'CRDR', 'DELE', 'DUPL', 'MKDR', 'MOVE', 'RNFL', 'STAT', 'VWFL', 'VWDR'; "path" is added where
  /// it is missing. False when the request is not taken.
  bool Send(Message message);

  /// Appends to the window's log a bounded piece at a time, however much it is.
  void Log(std::string_view text);
  /// Hands the window a message in a later turn of the event loop.
  void PostToWindow(Message message);

  // From the link.
  [[nodiscard]] BrowserEvents& Window() { return window_; }
  void Entered(const std::string& path);
  void ListingBegan();
  void ListingEnded(bool whole);
  void MessageReceived(const Message& message);

 Q_SIGNALS:
  /// IsReady() may have changed.
  void ReadyChanged();

 private:
  void FailToStart();
  void SendLook();
  /// Takes note of what the message says has ended.
  void NoteEnd(const Message& message);

  BrowserEvents& window_;
  Site site_;
  std::shared_ptr<BrowserLink> link_;
  std::shared_ptr<Looper> looper_;
  std::string currentDirectory_;
  bool connected_ = false;
  bool arriving_ = false;          // a listing has begun and not ended
  int pending_ = 0;                // requests under way
  int asked_ = 0;                  // those under way that may end in a listing
  Message toLookAt_{"STAT"_what};  // what waits until the last 'STAT' is answered
  bool looking_ = false;           // a 'STAT' is under way
  int deleting_ = 0;               // requests under way that delete
};

}  // namespace corvane
