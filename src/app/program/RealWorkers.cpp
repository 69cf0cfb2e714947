#include "app/program/RealWorkers.h"

#include <utility>

#include "ftp/FtpExamination.h"
#include "ftp/MFtp.h"
#include "remote/Waits.h"
#include "settings/ProcessSettings.h"
#include "workers/ControlLooper.h"
#include "workers/Doctor.h"
#include "workers/FileTransfer.h"
#include "workers/SessionPool.h"
#include "workers/TreeCounter.h"

namespace corvane {
namespace {

std::shared_ptr<MThread> MakeWalk(TreeWalk::Ways ways, const WalkOrder& order,
                                  std::shared_ptr<WalkUi> ui) {
  if (const auto* rights = std::get_if<RightsOrder>(&order))
    return std::make_shared<RightsChanger>(std::move(ways), std::move(ui), *rights);
  if (const auto* count = std::get_if<CountOrder>(&order)) {
    return std::make_shared<TreeCounter>(std::move(ways), std::move(ui), count->directory,
                                         count->names);
  }
  const auto& find = std::get<FindOrder>(order);
  return std::make_shared<TreeFinder>(std::move(ways), std::move(ui), find.directory, find.rule);
}

Waits WaitsInForce() {
  const SettingsValues settings = ProcessSettings::Get();
  const auto limit = [](std::int32_t seconds) {
    return seconds > 0 ? seconds * 1000L : Waits::kNoLimit;
  };
  return {limit(settings.connectWait), limit(settings.encryptionWait), limit(settings.replyWait),
          limit(settings.dataWait)};
}

std::shared_ptr<MFtp> MakeSession(const Site& site, std::shared_ptr<OwnerUi> owner,
                                  std::shared_ptr<ServerTrust> trust,
                                  std::shared_ptr<Habits> habits = {}) {
  auto session =
      std::make_shared<MFtp>(site, std::move(owner), std::move(trust), std::move(habits));
  session->SetWaits(WaitsInForce());
  return session;
}

std::shared_ptr<FileTransfer> WithWaits(std::shared_ptr<FileTransfer> transfer) {
  transfer->stallLimit = std::chrono::milliseconds(WaitsInForce().Together());
  return transfer;
}

}  // namespace

WorkerFactory RealWorkers(const std::shared_ptr<ServerTrust>& trust,
                          const std::shared_ptr<TransferSpeed>& speed) {
  WorkerFactory factory;
  factory.speed = speed;
  const auto pool = std::make_shared<SessionPool>(
      [trust](const Site& site, std::shared_ptr<OwnerUi> owner, std::shared_ptr<Habits> habits) {
        return MakeSession(site, std::move(owner), trust, std::move(habits));
      });
  factory.looper = [trust](const Site& site, std::shared_ptr<BrowserUi> window) {
    auto session = MakeSession(site, window, trust);
    return std::make_shared<ControlLooper>(site, std::move(session), std::move(window));
  };
  factory.transfer = [pool, speed](std::shared_ptr<TransferUi> row, transferStruct description,
                                   std::shared_ptr<JobBoard> jobs) {
    return WithWaits(std::make_shared<FileTransfer>(std::move(row), std::move(description),
                                                    std::move(jobs), pool, speed));
  };
  factory.endKept = [pool] { pool->EndKept(); };
  factory.sameConnection = [speed](const std::shared_ptr<Looper>& whose,
                                   std::shared_ptr<BrowserUi> window,
                                   std::shared_ptr<TransferUi> row, transferStruct description,
                                   std::shared_ptr<JobBoard> jobs) {
    auto session = std::static_pointer_cast<ControlLooper>(whose)->Session();
    return WithWaits(std::make_shared<FileTransfer>(std::move(row), std::move(description),
                                                    std::move(jobs), std::move(session),
                                                    std::move(window), speed));
  };
  factory.doctor = [trust](const Site& site, std::shared_ptr<DiagnosisUi> window) {
    return std::make_shared<Doctor>(std::move(window),
                                    std::make_unique<FtpExamination>(site, trust));
  };
  factory.walk = [pool](const std::shared_ptr<Looper>& whose, std::shared_ptr<BrowserUi> window,
                        const Site& site, int connections, const WalkOrder& order,
                        std::shared_ptr<WalkUi> ui) {
    auto session = std::static_pointer_cast<ControlLooper>(whose)->Session();
    return MakeWalk({site, pool, std::move(session), std::move(window), connections}, order,
                    std::move(ui));
  };
  return factory;
}

}  // namespace corvane
