#pragma once

#include <atomic>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "kit/Message.h"
#include "kit/Mutex.h"
#include "remote/OwnerUi.h"

namespace corvane {

/// What every recording owner has seen; texts in English.
struct OwnerRecord {
  std::vector<Message> messages;
  std::vector<Sound> sounds;
  std::vector<std::string> statuses;
  std::string log;
  std::vector<UserQuestion::Subject> questions;
  std::vector<Protection> protections;

  /// The texts under `field` of all messages with the code `what`.
  [[nodiscard]] std::vector<std::string> Texts(std::uint32_t what, std::string_view field) const {
    std::vector<std::string> texts;
    for (const Message& message : messages) {
      if (message.what != what) continue;
      if (const auto text = message.FindText(field)) texts.push_back(text->English());
    }
    return texts;
  }
};

/// Implements a seam by recording. Once `closing` is set every call returns false and leaves no
/// trace.
template <typename Seam, typename Record>
class Recorder : public Seam {
 public:
  std::atomic<bool> closing{false};
  /// What every question is answered with, at once, unless it is left open.
  std::atomic<UserQuestion::Answer> answer{UserQuestion::Answer::No};
  std::atomic<bool> leavesOpen{false};
  std::string passphrase{};  ///< comes with each answer

  [[nodiscard]] Record Seen() const {
    const MutexLock hold(lock_);
    return record_;
  }
  /// What `find` finds in the record, of which no copy is made: it grows with a long dialogue.
  template <typename Find>
  [[nodiscard]] auto Look(Find find) const {
    const MutexLock hold(lock_);
    return find(record_);
  }

  bool PostMessage(Message message) override {
    return Note([&](Record& r) { r.messages.push_back(std::move(message)); });
  }
  bool PlaySound(Sound sound) override {
    return Note([&](Record& r) { r.sounds.push_back(sound); });
  }
  bool SetStatus(const Text& text) override {
    return Note([&](Record& r) { r.statuses.push_back(text.English()); });
  }
  bool AppendLog(std::string_view line) override {
    return Note([&](Record& r) { r.log += line; });
  }
  bool ShowProtection(const Protection& protection) override {
    return Note([&](Record& r) { r.protections.push_back(protection); });
  }
  bool Ask(const std::shared_ptr<UserQuestion>& question) override {
    if (!leavesOpen) question->Give(answer, passphrase);
    return Note([&](Record& r) { r.questions.push_back(question->About()); });
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
