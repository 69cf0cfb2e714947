#pragma once

#include <atomic>
#include <string>
#include <string_view>
#include <vector>

#include "kit/Message.h"
#include "kit/Mutex.h"

namespace corvane {

/// What every recording owner has seen.
struct OwnerRecord {
  std::vector<Message> messages;
  std::vector<std::string> sounds;

  /// The strings under `field` of all messages with the code `what`.
  [[nodiscard]] std::vector<std::string> Texts(std::uint32_t what, std::string_view field) const {
    std::vector<std::string> texts;
    for (const Message& message : messages) {
      if (message.what != what) continue;
      if (auto text = message.FindString(field)) texts.push_back(*text);
    }
    return texts;
  }
};

/// Implements a seam by recording. Once `closing` is set every call answers false and leaves no
/// trace.
template <typename Seam, typename Record>
class Recorder : public Seam {
 public:
  std::atomic<bool> closing{false};

  [[nodiscard]] Record Seen() const {
    const MutexLock hold(lock_);
    return record_;
  }

  bool PostMessage(Message message) override {
    return Note([&](Record& r) { r.messages.push_back(std::move(message)); });
  }
  bool PlaySound(std::string_view path) override {
    return Note([&](Record& r) { r.sounds.emplace_back(path); });
  }

 protected:
  template <typename Change>
  bool Note(Change change) {
    const MutexLock hold(lock_);
    if (closing) return false;
    change(record_);
    return true;
  }

 private:
  mutable Mutex lock_;
  Record record_ GUARDED_BY(lock_);
};

}  // namespace corvane
