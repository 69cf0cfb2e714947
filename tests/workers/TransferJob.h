#pragma once

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>

#include "ftp/MFtp.h"
#include "kit/Background.h"
#include "remote/RemotePath.h"
#include "support/Files.h"
#include "support/NextHost.h"
#include "support/RecordingBrowserUi.h"
#include "support/RecordingTransferUi.h"
#include "support/ScriptedServer.h"
#include "support/TemporaryDirectory.h"
#include "support/WaitFor.h"
#include "workers/FileTransfer.h"
#include "workers/SessionPool.h"

namespace corvane {

namespace fs = std::filesystem;

/// One transfer between a local folder and "/pub", on its own connection or on a browser's.
struct Job {
  ScriptedServer server{NextHost()};
  TemporaryDirectory folder;
  TemporaryDirectory queue;  ///< for what is kept of it
  std::shared_ptr<RecordingTransferUi> row = std::make_shared<RecordingTransferUi>();
  std::shared_ptr<RecordingBrowserUi> browser;  ///< of a shared connection
  std::shared_ptr<MFtp> session;                ///< of a shared connection
  std::shared_ptr<SessionPool> pool;
  std::shared_ptr<JobBoard> board;
  transferStruct description;
  long silence = 10'000;  ///< of the server, in milliseconds
  Policy policy = Policy::CreateNew;
  TreeBounds bounds;
  std::shared_ptr<FileTransfer> worker;

  explicit Job(bool passive = true, bool shared = false) {
    server.Tree().AddFile("/pub/f", "0123456789");
    description.remoteDirectory = "/pub";
    description.targetFolder = folder.Path();
    description.site = server.Where(passive);
    description.connections = 1;
    pool = std::make_shared<SessionPool>(
        [this](const Site& site, std::shared_ptr<OwnerUi> owner, std::shared_ptr<Habits> habits) {
          auto made = std::make_shared<MFtp>(site, std::move(owner), nullptr, std::move(habits));
          made->SetWaits(Waits::All(silence));
          return made;
        });
    if (!shared) return;
    browser = std::make_shared<RecordingBrowserUi>();
    session = std::make_shared<MFtp>(description.site, browser);
    session->SetWaits(Waits::All(silence));
    EXPECT_TRUE(session->Connect().IsDone());
    std::string where;
    EXPECT_TRUE(session->Enter("/pub", where).IsDone());
  }

  void Fetch(const std::string& name, RemoteEntry::Kind kind = RemoteEntry::Kind::File,
             std::int64_t size = 10) {
    description.jobs.push_back({PathBelow(description.remoteDirectory, name),
                                PathBelow(description.targetFolder, name), kind, size, policy});
  }

  /// Chooses an entry of the local folder.
  void Send(const std::string& name) {
    description.download = false;
    description.jobs.push_back({PathBelow("/pub", name), folder.Path() / name, {}, -1, policy});
  }

  void Start(std::chrono::milliseconds limit = std::chrono::seconds(60)) {
    if (!board) board = std::make_shared<JobBoard>(description);
    worker =
        browser ? std::make_shared<FileTransfer>(row, description, board, session, browser, nullptr)
                : std::make_shared<FileTransfer>(row, description, board, pool, nullptr);
    worker->stallLimit = limit;
    worker->bounds = bounds;
    worker->checkLimit = std::chrono::milliseconds(300);
    worker->Run();
  }

  TransferEnd Wait() {
    EXPECT_TRUE(WaitFor([&] { return row->End().has_value(); })) << server.Dialogue();
    return row->End().value_or(TransferEnd::Failed);
  }

  TransferEnd Run() {
    Start();
    const TransferEnd end = Wait();
    worker.reset();
    pool->Close();
    EXPECT_TRUE(Background::WaitForNone(std::chrono::seconds(2)));
    return end;
  }

  /// Whether the connection, once the transfer lets go of it, gets the right reply.
  [[nodiscard]] bool IsInStep() const {
    std::optional<std::int64_t> size;
    const EngineLease lease(*session);
    return session->Size("/pub/f", size).IsDone() && size == 10;
  }

  [[nodiscard]] std::string Notes() const {
    std::string notes;
    for (const std::string& note : row->Seen().notes) notes += note + "\n";
    return notes;
  }
};

}  // namespace corvane
