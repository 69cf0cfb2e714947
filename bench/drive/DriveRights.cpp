#include "DriveRights.h"

#include <future>
#include <memory>
#include <utility>

#include "DriveRow.h"
#include "ftp/MFtp.h"
#include "kit/Background.h"
#include "remote/Permissions.h"
#include "remote/RemotePath.h"
#include "workers/RightsChanger.h"

namespace corvane::drive {
namespace {

struct Waiting : WalkUi {
  bool Found(std::vector<FoundEntry> entries) override { return entries.empty(); }
  void Ended(const WalkEnd& end) override { ended.set_value(end); }
  std::promise<WalkEnd> ended;
};

}  // namespace

bool ChangeRights(const Options& options) {
  const std::optional<unsigned> mode = Permissions::FromOctal(options.local);
  if (!mode) return Complain(Text::Raw("the permissions are three or four digits")), false;
  const auto owner = std::make_shared<Row>(options, 0, nullptr);
  const auto pool = std::make_shared<SessionPool>(
      [](const Site& site, std::shared_ptr<OwnerUi> whose, std::shared_ptr<Habits> habits) {
        return std::make_shared<MFtp>(site, std::move(whose), nullptr, std::move(habits));
      });
  const bool tree = options.site.path.ends_with('/');
  const auto [directory, name] = SplitPath(WithoutTrailingSlash(options.site.path));
  using Kind = RemoteEntry::Kind;
  RightsOrder order{.directory = directory,
                    .entries = {{.name = name, .kind = tree ? Kind::Directory : Kind::File}},
                    .rights = RightsChange{07777, *mode},
                    .below = tree ? RightsOrder::Below::Everything : RightsOrder::Below::Nothing};
  const auto ui = std::make_shared<Waiting>();
  const auto changer = std::make_shared<RightsChanger>(
      TreeWalk::Ways{options.site, pool, nullptr, owner, options.connections}, ui,
      std::move(order));
  std::future<WalkEnd> ended = ui->ended.get_future();
  if (!changer->Run()) return false;
  const WalkEnd end = ended.get();
  pool->Close();
  if (!end.outcome.text.IsEmpty()) Complain(end.outcome.text);
  if (end.refused > 0) Complain(end.refusals);
  return end.outcome.IsDone() && end.refused == 0;
}

}  // namespace corvane::drive
