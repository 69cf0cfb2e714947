#pragma once

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>

#include "ftp/EngineLease.h"
#include "ftp/MFtp.h"
#include "kit/Background.h"
#include "support/Files.h"
#include "support/RecordingBrowserUi.h"
#include "support/RecordingTransferUi.h"
#include "support/ScriptedServer.h"
#include "support/TemporaryDirectory.h"
#include "support/WaitFor.h"
#include "workers/FileTransfer.h"

namespace corvane {

namespace fs = std::filesystem;

/// A loopback address that no other server of this process has.
inline std::uint32_t NextHost() {
  static std::atomic<std::uint32_t> last = 0x7F010000;
  return ++last;
}

/// One transfer between a local folder and "/pub", on its own connection or on a browser's.
struct Job {
  ScriptedServer server{NextHost()};
  TemporaryDirectory folder;
  std::shared_ptr<RecordingTransferUi> row = std::make_shared<RecordingTransferUi>();
  std::shared_ptr<RecordingBrowserUi> browser = std::make_shared<RecordingBrowserUi>();
  transferStruct description;
  std::shared_ptr<FileTransfer> worker;

  explicit Job(bool passive = true, bool shared = false) {
    server.Tree().AddFile("/pub/f", "0123456789");
    description.remoteDirectory = "/pub";
    description.targetFolder = folder.Path();
    auto make = [&](auto owner) {
      auto engine = std::make_shared<MFtp>(server.Host(), server.Port(), "u", "p", passive, owner);
      engine->silenceLimit = 10'000;
      return engine;
    };
    description.engine = shared ? make(browser) : make(row);
    if (!shared) return;
    EXPECT_EQ(description.engine->Login(), 1);
    description.engine->ChangeDir("/pub");
    description.engine->SetPWD();
    shared_ = true;
  }

  void Fetch(const std::string& name, std::int32_t type = kFile, std::int64_t size = 10) {
    fileStruct item;
    item.name = name;
    item.type = type;
    item.size = size;
    description.items.push_back(item);
  }

  /// Chooses an entry of the local folder.
  void Send(const std::string& name) {
    description.download = false;
    description.localItems.push_back(folder.Path() / name);
  }

  void Start() {
    worker = std::make_shared<FileTransfer>(row, description, shared_);
    worker->Run();
  }

  TransferEnd Wait() {
    EXPECT_TRUE(WaitFor([&] { return row->End().has_value(); })) << server.Dialogue();
    return row->End().value_or(TransferEnd::Failed);
  }

  TransferEnd Run() {
    Start();
    const TransferEnd end = Wait();
    EXPECT_TRUE(Background::WaitForNone(std::chrono::seconds(2)));
    return end;
  }

  [[nodiscard]] std::string Notes() const {
    std::string notes;
    for (const std::string& note : row->Seen().notes) notes += note + "\n";
    return notes;
  }

 private:
  bool shared_ = false;
};

}  // namespace corvane
