#include "app/edited/EditedWatch.h"

#include <sys/inotify.h>
#include <unistd.h>

#include <QSocketNotifier>
#include <algorithm>
#include <array>
#include <cstddef>
#include <cstring>
#include <vector>

namespace corvane {
namespace {

constexpr int kStep = 100;       // milliseconds
constexpr int kQuietSteps = 5;   // without a change, before a file counts as saved
constexpr int kPollEach = 3000;  // milliseconds, where the system does not watch
constexpr std::uint32_t kChanges =
    IN_CLOSE_WRITE | IN_MODIFY | IN_MOVED_TO | IN_MOVED_FROM | IN_CREATE | IN_DELETE | IN_ATTRIB;

}  // namespace

EditedWatch::EditedWatch(QObject* parent)
    : QObject(parent), inotify_(::inotify_init1(IN_NONBLOCK | IN_CLOEXEC)) {
  if (inotify_) {
    notifier_ = new QSocketNotifier(inotify_.get(), QSocketNotifier::Read, this);
    connect(notifier_, &QSocketNotifier::activated, this, &EditedWatch::Read);
  }
  quiet_.setInterval(kStep);
  connect(&quiet_, &QTimer::timeout, this, &EditedWatch::Tell);
  poll_.setInterval(kPollEach);
  connect(&poll_, &QTimer::timeout, this, [this] {
    for (const std::int64_t id : unwatched_) Touch(id);
  });
}

EditedWatch::~EditedWatch() = default;

void EditedWatch::Watch(std::int64_t id, const std::string& folder) {
  Forget(id);
  const int number =
      inotify_ ? ::inotify_add_watch(inotify_.get(), folder.c_str(), kChanges | IN_ONLYDIR) : -1;
  if (number >= 0) {
    watched_[number] = id;
  } else {
    unwatched_.insert(id);
    poll_.start();
  }
}

void EditedWatch::Forget(std::int64_t id) {
  std::erase_if(watched_, [this, id](const auto& each) {
    if (each.second != id) return false;
    ::inotify_rm_watch(inotify_.get(), each.first);
    return true;
  });
  unwatched_.erase(id);
  touched_.erase(id);
  if (unwatched_.empty()) poll_.stop();
}

void EditedWatch::Touch(std::int64_t id) {
  touched_[id] = kQuietSteps;
  if (!quiet_.isActive()) quiet_.start();
}

void EditedWatch::Read() {
  alignas(inotify_event) std::array<char, 4096> buffer{};
  for (;;) {
    const ssize_t count = ::read(inotify_.get(), buffer.data(), buffer.size());
    if (count <= 0) return;
    for (std::size_t at = 0; at + sizeof(inotify_event) <= static_cast<std::size_t>(count);) {
      inotify_event event{};
      std::memcpy(&event, buffer.data() + at, sizeof(event));
      at += sizeof(event) + event.len;
      if ((event.mask & IN_Q_OVERFLOW) != 0) {
        for (const auto& each : watched_) Touch(each.second);
      } else if (const auto found = watched_.find(event.wd); found != watched_.end()) {
        Touch(found->second);
      }
    }
  }
}

void EditedWatch::Tell() {
  std::vector<std::int64_t> settled;
  for (auto& [id, steps] : touched_)
    if (--steps <= 0) settled.push_back(id);
  for (const std::int64_t id : settled) touched_.erase(id);
  if (touched_.empty()) quiet_.stop();
  for (const std::int64_t id : settled) Q_EMIT Settled(id);
}

}  // namespace corvane
