#pragma once

#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>

#include "kit/Mutex.h"
#include "queue/JobBoard.h"
#include "remote/RemoteSession.h"
#include "workers/RemoteVersion.h"
#include "workers/SessionPool.h"
#include "workers/TransferRun.h"

namespace corvane {

/// Carries out one job after another of a transfer, on one session and one thread. Whoever starts
/// it keeps it and all that it refers to until it has ended.
class FileMover {
 public:
  /// With a session of its own, which it connects where that is needed.
  FileMover(TransferRun& run, SessionPool::Lease lease);
  /// With a browser window's session, which is connected and stays so; the caller holds its
  /// EngineLease.
  FileMover(TransferRun& run, std::shared_ptr<RemoteSession> session);

  /// Begins. `ended` is called on its thread as the last thing. False when the system has no
  /// thread to give; then nothing happens.
  bool Start(std::function<void()> ended);

  /// Any thread: ends soon; what was begun is put back. Its own session is of no use then.
  void Stop();
  /// Any thread: nothing has come or gone for too long. It ends as one whose connection is lost.
  void GiveUp();
  /// Any thread: ends once the job that it works on has ended.
  void Leave() { leaves_ = true; }
  [[nodiscard]] bool Leaves() const { return leaves_; }

  /// Any thread.
  [[nodiscard]] bool HasEnded() const { return ended_; }
  [[nodiscard]] bool IsConnected() const { return connected_ && !ended_; }
  /// For how long, in milliseconds, bytes were to move and none did; 0 while none are to.
  [[nodiscard]] std::int64_t Silence() const;
  /// Once it has ended: Done, or what ended it; whether that was before it had connected.
  [[nodiscard]] const Outcome& Result() const { return result_; }
  [[nodiscard]] bool NeverConnected() const { return !connected_; }

 private:
  void Work();
  void CloseOwn() EXCLUDES(lock_);
  Outcome Connect();
  Outcome CarryAll();
  Outcome Carry(const JobBoard::Work& work, std::int64_t& size);
  Outcome CarryFile(const JobBoard::Work& work, std::int64_t& size);
  /// Whether this mover ends with it.
  [[nodiscard]] bool Settle(const JobBoard::Work& work, const Outcome& outcome, std::int64_t size);
  void Complete(const JobBoard::Work& directory);
  int OpenFolder(const std::string& local, const LocalFolder*& folder);
  Outcome AskVersion(const JobBoard::Work& work, Thorough thorough, FileVersion& version);
  Outcome TellFetched(const JobBoard::Work& work, const FileVersion& before);
  Outcome TellSent(const JobBoard::Work& work, std::int64_t size);
  void TellVersion(const JobBoard::Work& work, const FileVersion& version, bool changed);
  void TellAdded(const JobBoard::Work& work, std::int64_t size);

  TransferRun& run_;
  SessionPool::Lease lease_;
  const std::shared_ptr<RemoteSession> session_;
  const bool own_;
  std::function<void()> tellEnd_;
  std::atomic<bool> leaves_{false};
  std::atomic<bool> gaveUp_{false};
  std::atomic<bool> connected_{false};
  std::atomic<bool> ended_{false};
  std::atomic<std::int64_t> movingSince_{0};  // steady milliseconds; 0 while no file moves
  std::atomic<std::int64_t> heard_{0};        // when the last byte of that file moved, likewise
  Mutex lock_;
  bool returned_ GUARDED_BY(lock_) = false;  // the session is not this mover's any more
  Outcome result_;
  JobId near_ = kNoJob;
  std::string folderPath_;  // below the target, of folder_
  LocalFolder folder_;
};

}  // namespace corvane
