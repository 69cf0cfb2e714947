#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "remote/RemoteEntry.h"
#include "workers/TreeWalk.h"

namespace corvane {

/// What becomes of an entry's permissions: the bits of `mask` become those of `bits`, and the
/// others stay. A value.
struct RightsChange {
  unsigned mask = 0;
  unsigned bits = 0;

  /// The new bits; nothing where those that stay are not known. With `keepsExecute` the right to
  /// execute is given only where somebody has it already.
  [[nodiscard]] std::optional<unsigned> Of(std::optional<unsigned> now, bool keepsExecute) const;
};

/// What a RightsChanger is to do. A value.
struct RightsOrder {
  enum class Below : std::uint8_t {
    Nothing,
    Everything,   ///< files get the right to execute only where they have it already
    Files,        ///< and no directory, the chosen ones included
    Directories,  ///< and no file, likewise
  };

  std::string directory;             ///< in which the entries stand
  std::vector<RemoteEntry> entries;  ///< the chosen ones
  std::optional<RightsChange> rights{};
  Below below = Below::Nothing;
  std::optional<std::int64_t> time{};  ///< of the chosen ones, in seconds since 1970
};

/// Changes permissions and times of entries, and the permissions of what directories hold. Links
/// are left alone, for a server would change what they lead to. Ends as Refused where the server
/// cannot change any.
class RightsChanger final : public TreeWalk {
 public:
  RightsChanger(Ways ways, std::shared_ptr<WalkUi> ui, RightsOrder order)
      : TreeWalk(std::move(ways), std::move(ui)), order_(std::move(order)) {
    base = order_.directory;
  }

 protected:
  Outcome First(RemoteSession& session) override;
  Outcome Take(RemoteSession& session, const Directory& directory,
               const std::vector<RemoteEntry>& entries) override;
  Outcome Last(RemoteSession& session) override;

 private:
  /// Adds what is to be changed of an entry; what would close a directory before it was looked
  /// through is put off.
  void Plan(const std::string& directory, const RemoteEntry& entry, bool chosen,
            std::vector<ModeChange>& changes) EXCLUDES(late_);
  /// Likewise of a directory that was looked at.
  void PlanSelf(const std::string& path, std::vector<ModeChange>& changes) EXCLUDES(late_);
  [[nodiscard]] bool Closes(unsigned mode) const;
  Outcome Change(RemoteSession& session, std::span<const ModeChange> changes);
  [[nodiscard]] bool Concerns(const RemoteEntry& entry) const;

  const RightsOrder order_;
  Mutex late_;
  std::vector<ModeChange> closing_ GUARDED_BY(late_);         // directories, those above first
  std::map<std::string, unsigned> unseen_ GUARDED_BY(late_);  // that were not looked at yet
};

}  // namespace corvane
