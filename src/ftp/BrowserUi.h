#pragma once

#include <cstddef>
#include <memory>
#include <string_view>
#include <vector>

#include "ftp/OwnerUi.h"
#include "ftp/fileStruct.h"

namespace corvane {

/// A text window that fills while its text arrives. Any thread; false once it is closing or full.
class TextSink {
 public:
  virtual ~TextSink() = default;
  virtual bool Append(std::string_view bytes) = 0;
};

/// What a browser window offers its connection. Any thread may call; every call returns at once and
/// answers false once the window is closing: the caller then stops. Texts and names are raw bytes.
class BrowserUi : public OwnerUi {
 public:
  virtual bool SetStatus(std::string_view text) = 0;
  /// `text` ends with its own line feed.
  virtual bool AppendLog(std::string_view text) = 0;
  /// The server's working directory, for the path field and for what is relative to it.
  virtual bool SetPath(std::string_view path) = 0;

  /// Empties the listing.
  virtual bool BeginListing() = 0;
  /// Adds rows in the order given; a few hundred at a time.
  virtual bool AddEntries(std::vector<fileStruct> entries) = 0;
  /// The listing is whole: shows the count (without "." and "..") and sorts by name.
  virtual bool EndListing(std::size_t count) = 0;
  /// False too when the listing is disabled while a transfer runs on its connection.
  [[nodiscard]] virtual bool IsListingEnabled() = 0;

  /// Opens a text window; null once the window is closing.
  [[nodiscard]] virtual std::shared_ptr<TextSink> OpenViewer(std::string_view title) = 0;
};

}  // namespace corvane
