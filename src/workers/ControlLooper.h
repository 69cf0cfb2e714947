#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "ftp/BrowserUi.h"
#include "kit/Looper.h"

namespace corvane {

class ListingCache;
class MFtp;

/// Performs the FTP operations of one browser window, one message after another, on its own thread.
///
/// 'CNNT' connects, enters the start path and lists; 'PCHN' ("cwd") changes the directory and
/// lists; 'CRDR' lists again. Quit closes the connection and ends the looper soon, whatever it
/// waits for.
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
  void Connect();
  void AskForUnixListings();
  std::string EnterStartPath();
  void Refresh();
  void ChangeDirectory(const std::string& directory);
  void FollowLink(const std::string& name);
  void AskForDownload(const std::string& name);
  [[nodiscard]] bool NeedsConnection();

  const std::string startPath_;
  std::shared_ptr<BrowserUi> window_;
  std::shared_ptr<MFtp> engine_;
  std::shared_ptr<ListingCache> cache_;  // from the first 'CNNT' on
};

}  // namespace corvane
