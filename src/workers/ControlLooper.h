#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "ftp/BrowserUi.h"
#include "kit/Looper.h"

namespace corvane {

class ListingCache;
class MFtp;
class Refusals;

/// Performs the FTP operations of one browser window, one message after another, on its own thread.
///
/// 'CNNT' connects, enters the start path and lists; 'RCNN' ("path") connects again after a loss.
/// 'PCHN' ("cwd") changes the directory and lists; 'CRDR' lists again; 'HSYM' ("sym") finds out
/// where a link leads. 'DELE' ("path", and one "name" and "type" per entry), 'RNFL' ("path",
/// "original", "renameto") and 'MKDR' ("path", "name") change the directory. 'VWFL' ("path",
/// "file") shows a remote file as text, 'VWDR' the latest listing as it came. 'FRTR' is reserved.
/// Behind every request, whatever came of it, the window gets 'DONE' ("request": the code). Quit
/// closes the connection and ends the looper soon, whatever it waits for.
class ControlLooper : public Looper {
 public:
  ControlLooper(std::string host, std::uint16_t port, const std::string& user,
                const std::string& password, std::string startPath, bool passive,
                std::shared_ptr<BrowserUi> window);
  ~ControlLooper() override;

  /// The engine, for a transfer on this connection.
  [[nodiscard]] std::shared_ptr<MFtp> Engine() const { return engine_; }

 protected:
  void MessageReceived(const Message& message) override;
  void Interrupt() override;

 private:
  void Handle(const Message& message);
  void Connect();
  void ConnectAgain(const std::string& directory);
  [[nodiscard]] bool Begin();
  void AskForUnixListings();
  std::string EnterStartPath();
  void Refresh();
  void ChangeDirectory(const std::string& directory);
  void FollowLink(const std::string& name);
  void AskForDownload(const std::string& name);
  void Delete(const Message& entries);
  void DeleteAll(const Message& entries, Refusals& refused);
  void Rename(const Message& entry);
  void CreateDirectory(const Message& entry);
  void ViewFile(const Message& entry);
  void ViewListing();
  [[nodiscard]] bool HasMoved(const Message& request);
  [[nodiscard]] bool NeedsConnection();

  const std::string startPath_;
  std::shared_ptr<BrowserUi> window_;
  std::shared_ptr<MFtp> engine_;
  std::shared_ptr<ListingCache> cache_;  // from the first 'CNNT' on
};

}  // namespace corvane
