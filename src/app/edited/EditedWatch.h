#pragma once

#include <QObject>
#include <QTimer>
#include <cstdint>
#include <map>
#include <set>
#include <string>

#include "util/UniqueFd.h"

class QSocketNotifier;

namespace corvane {

/// Tells when something in the folder of a copy has been changed and nothing has moved there for a
/// moment, however a program saves: in place, by renaming, or twice. The folder is watched, not the
/// file. Where the system watches no more, it tells every few seconds that it may be so. GUI
/// thread.
class EditedWatch : public QObject {
  Q_OBJECT

 public:
  explicit EditedWatch(QObject* parent);
  ~EditedWatch() override;

  /// `folder` is there, raw bytes.
  void Watch(std::int64_t id, const std::string& folder);
  void Forget(std::int64_t id);
  /// Looks once more in a moment, as after a change.
  void Touch(std::int64_t id);

 Q_SIGNALS:
  void Settled(qint64 id);

 private:
  void Read();
  void Tell();

  UniqueFd inotify_;
  QSocketNotifier* notifier_ = nullptr;
  QTimer quiet_;
  QTimer poll_;
  std::map<int, std::int64_t> watched_;  // by the system's number of the watch
  std::set<std::int64_t> unwatched_;     // which the system does not watch
  std::map<std::int64_t, int> touched_;  // how many steps each has still to be quiet
};

}  // namespace corvane
