#pragma once

#include <algorithm>
#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "remote/BrowserUi.h"
#include "support/Recorder.h"

namespace corvane {

struct BrowserRecord : OwnerRecord {
  std::string path;
  std::vector<RemoteEntry> entries;  ///< of the last listing
  std::optional<std::size_t> count;  ///< once the last listing has ended
  bool whole = false;
  std::vector<std::string> steps;  ///< that were running or done, in the order told
  std::string viewerTitle;
  std::string viewerText;
  std::optional<std::string> viewerNote;  ///< once the text has ended

  [[nodiscard]] std::vector<std::string> Names() const {
    std::vector<std::string> names;
    for (const RemoteEntry& entry : entries) names.push_back(entry.name);
    return names;
  }
};

/// A browser window, and its text window, that only take notes. Make it with std::make_shared.
class RecordingBrowserUi : public Recorder<BrowserUi, BrowserRecord>,
                           public TextSink,
                           public std::enable_shared_from_this<RecordingBrowserUi> {
 public:
  bool SetPath(std::string_view path) override {
    return Note([&](BrowserRecord& r) { r.path = path; });
  }
  bool ShowStep(const ConnectStep& step) override {
    return Note([&](BrowserRecord& r) {
      if (step.state != ConnectStep::State::Waiting) r.steps.push_back(step.text.English());
    });
  }
  bool BeginListing() override {
    return Note([](BrowserRecord& r) {
      r.entries.clear();
      r.count.reset();
    });
  }
  bool AddEntries(std::vector<RemoteEntry> entries) override {
    return Note([&](BrowserRecord& r) {
      r.entries.insert(r.entries.end(), entries.begin(), entries.end());
    });
  }
  bool EndListing(std::size_t count, bool whole) override {
    return Note([&](BrowserRecord& r) {
      r.count = count;
      r.whole = whole;
    });
  }
  bool RemoveEntry(std::string_view name, std::string_view directory) override {
    return Note([&](BrowserRecord& r) {
      std::erase_if(r.entries, [&](auto& e) { return e.name == name && r.path == directory; });
    });
  }
  bool RenameEntry(std::string_view from, std::string_view to,
                   std::string_view directory) override {
    return Note([&](BrowserRecord& r) {
      for (RemoteEntry& entry : r.entries)
        if (entry.name == from && r.path == directory) entry.name = to;
    });
  }
  bool UpdateEntry(RemoteEntry entry, std::string_view directory) override {
    return Note([&](BrowserRecord& r) {
      const auto same = [&](const RemoteEntry& e) { return e.name == entry.name; };
      const auto place = std::ranges::find_if(r.entries, same);
      if (r.path != directory) return;
      if (place == r.entries.end()) {
        r.entries.push_back(entry);
      } else {
        *place = entry;
      }
    });
  }
  bool ChangeValues(std::string_view, std::int64_t) override { return !closing; }

  std::shared_ptr<TextSink> OpenViewer(const Text& title) override {
    const bool open = Note([&](BrowserRecord& r) { r.viewerTitle = title.English(); });
    return open ? shared_from_this() : nullptr;
  }
  void End(const Text& note) override {
    Note([&](BrowserRecord& r) { r.viewerNote = note.English(); });
  }
  bool Append(std::string_view bytes) override {
    return Note([&](BrowserRecord& r) { r.viewerText += bytes; });
  }
};

}  // namespace corvane
