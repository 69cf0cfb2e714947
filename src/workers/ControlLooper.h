#pragma once

#include <memory>
#include <string>

#include "kit/Looper.h"
#include "remote/BrowserUi.h"
#include "remote/RemoteSession.h"
#include "remote/Site.h"

namespace corvane {

class DirLister;
class ListingCache;

/// Carries out the requests of one browser window, one message after another, on its own thread.
///
/// 'CNNT' connects, enters the site's path and lists; 'RCNN' ("path") connects again after a loss.
/// 'PCHN' ("path", "cwd") changes from the directory "path" to "cwd" and lists; 'CRDR' ("path")
/// lists again; 'HSYM' ("path", "sym") finds out where a link leads. 'DELE' ("path", and one "name"
/// and "type" per entry), 'RNFL' ("path", "original", "renameto") and 'MKDR' ("path", "name")
/// change what stands in the directory "path". 'VWFL' ("path", "file") shows a remote file as text,
/// 'VWDR' ("path") a directory's listing as it came. 'FRTR' is reserved. Behind every request,
/// whatever came of it, the window gets 'DONE' ("request": the code). Quit closes the connection
/// and ends the looper soon, whatever it waits for.
class ControlLooper : public Looper {
 public:
  /// `session` is the site's, and not connected yet.
  ControlLooper(Site site, std::shared_ptr<RemoteSession> session,
                std::shared_ptr<BrowserUi> window);
  ~ControlLooper() override;

  /// The connection, for a transfer that uses it.
  [[nodiscard]] const std::shared_ptr<RemoteSession>& Session() const { return session_; }

 protected:
  void MessageReceived(const Message& message) override;
  void Interrupt() override;

 private:
  void Handle(const Message& message);
  void Connect();
  void ConnectAgain(const std::string& directory);
  [[nodiscard]] bool Begin();
  std::string EnterStartPath();
  void Refresh(const std::string& directory);
  void ChangeDirectory(const std::string& from, const std::string& to);
  void FollowLink(const std::string& directory, const std::string& name);
  void AskForDownload(const std::string& name);
  void Delete(const Message& entries);
  void Rename(const Message& entry);
  void CreateDirectory(const Message& entry);
  void ViewFile(const std::string& path);
  void FillViewer(RemoteFile& file, TextSink& viewer);
  void ViewListing(const std::string& directory);
  void Show(const std::string& directory);
  /// Lists on this thread; a lister that has not begun yet does nothing any more.
  void List(const std::string& directory);
  [[nodiscard]] bool NeedsConnection();

  const Site site_;
  const std::shared_ptr<RemoteSession> session_;
  const std::shared_ptr<BrowserUi> window_;
  std::shared_ptr<ListingCache> cache_;  // from the first 'CNNT' on
  std::shared_ptr<DirLister> lister_;    // the last one
  std::string shown_;                    // the directory that the window shows
};

}  // namespace corvane
