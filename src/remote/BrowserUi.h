#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string_view>
#include <vector>

#include "remote/OwnerUi.h"
#include "remote/RemoteEntry.h"

namespace corvane {

/// A text window that fills while its text arrives. Any thread; false once it is closing or full.
class TextSink {
 public:
  virtual ~TextSink() = default;
  virtual bool Append(std::string_view bytes) = 0;
  /// Nothing more comes. `note` tells the user why the text is not whole; empty where it is.
  virtual void End(const Text& note) = 0;
};

/// What a browser window offers its connection. Any thread may call; every call returns at once and
/// returns false once the window is closing: the caller then stops. Paths and names are raw bytes.
class BrowserUi : public OwnerUi {
 public:
  /// The server's working directory, for the path field and for what is relative to it.
  virtual bool SetPath(std::string_view path) = 0;

  /// Empties the listing, and adds the rows "." and "..".
  virtual bool BeginListing() = 0;
  /// Adds rows in the order given; a few hundred at a time.
  virtual bool AddEntries(std::vector<RemoteEntry> entries) = 0;
  /// No more rows come: shows the count (without "." and "..") and sorts by name.
  /// Where it is not `whole`, the directory may hold more.
  virtual bool EndListing(std::size_t count, bool whole) = 0;
  /// Takes the row of that name away, while the window still shows `directory`.
  virtual bool RemoveEntry(std::string_view name, std::string_view directory) = 0;
  /// Gives a row another name, while the window still shows `directory`.
  virtual bool RenameEntry(std::string_view from, std::string_view to,
                           std::string_view directory) = 0;
  /// Shows what has become of an entry, or a new one, while the window still shows `directory`.
  virtual bool UpdateEntry(RemoteEntry entry, std::string_view directory) = 0;
  /// A link has turned out to lead to a file of `size` bytes: its row becomes a file's.
  virtual bool ChangeValues(std::string_view name, std::int64_t size) = 0;

  /// Opens a text window; null once the window is closing.
  [[nodiscard]] virtual std::shared_ptr<TextSink> OpenViewer(const Text& title) = 0;
};

}  // namespace corvane
