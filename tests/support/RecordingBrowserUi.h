#pragma once

#include <cstddef>
#include <iterator>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "ftp/BrowserUi.h"
#include "support/Recorder.h"

namespace corvane {

struct BrowserRecord : OwnerRecord {
  std::vector<std::string> statuses;
  std::string log;
  std::string path;
  int listings = 0;                  ///< how often a listing began
  std::vector<fileStruct> entries;   ///< of the last listing
  std::optional<std::size_t> count;  ///< once the last listing has ended
  std::string viewerTitle;
  std::string viewerText;

  [[nodiscard]] std::vector<std::string> Names() const {
    std::vector<std::string> names;
    for (const fileStruct& entry : entries) names.push_back(entry.name);
    return names;
  }
};

/// A browser window that only takes notes. Make it with std::make_shared.
class RecordingBrowserUi : public Recorder<BrowserUi, BrowserRecord>,
                           public std::enable_shared_from_this<RecordingBrowserUi> {
 public:
  std::atomic<bool> listingEnabled{true};

  bool SetStatus(std::string_view text) override {
    return Note([&](BrowserRecord& r) { r.statuses.emplace_back(text); });
  }
  bool AppendLog(std::string_view text) override {
    return Note([&](BrowserRecord& r) { r.log += text; });
  }
  bool SetPath(std::string_view path) override {
    return Note([&](BrowserRecord& r) { r.path = path; });
  }
  bool BeginListing() override {
    return Note([](BrowserRecord& r) {
      ++r.listings;
      r.entries.clear();
      r.count.reset();
    });
  }
  bool AddEntries(std::vector<fileStruct> entries) override {
    return Note([&](BrowserRecord& r) {
      r.entries.insert(r.entries.end(), std::make_move_iterator(entries.begin()),
                       std::make_move_iterator(entries.end()));
    });
  }
  bool EndListing(std::size_t count) override {
    return Note([&](BrowserRecord& r) { r.count = count; });
  }
  bool IsListingEnabled() override { return listingEnabled && !closing; }

  std::shared_ptr<TextSink> OpenViewer(std::string_view title) override {
    const bool open = Note([&](BrowserRecord& r) { r.viewerTitle = title; });
    return open ? std::make_shared<Viewer>(shared_from_this()) : nullptr;
  }

 private:
  class Viewer : public TextSink {
   public:
    explicit Viewer(std::shared_ptr<RecordingBrowserUi> owner) : owner_(std::move(owner)) {}
    bool Append(std::string_view bytes) override {
      return owner_->Note([&](BrowserRecord& r) { r.viewerText += bytes; });
    }

   private:
    std::shared_ptr<RecordingBrowserUi> owner_;
  };
};

}  // namespace corvane
