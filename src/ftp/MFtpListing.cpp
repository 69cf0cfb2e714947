#include <algorithm>
#include <ctime>
#include <utility>

#include "ftp/ListingParser.h"
#include "ftp/MFtp.h"
#include "ftp/TransferPump.h"
#include "net/NLException.h"

namespace corvane {
namespace {

constexpr std::size_t kBatch = 512;
constexpr unsigned char kSentinel = 0xEC;

std::tm Now() {
  const std::time_t seconds = std::time(nullptr);
  std::tm now{};
  localtime_r(&seconds, &now);
  return now;
}

// Where a listing's text ends before its data does: at the byte 0xEC, unless that begins a
// character of three bytes.
class Sentinel {
 public:
  // Scans what `text` has grown by; true when it has been cut behind the byte.
  bool Cut(std::string& text) {
    for (;;) {
      const std::size_t at = text.find(static_cast<char>(kSentinel), scanned_);
      if (at == std::string::npos) {
        scanned_ = text.size();
        return false;
      }
      scanned_ = at;
      if (text.size() - at < 3 && FollowedWell(text, at)) return false;  // not yet known
      if (!FollowedWell(text, at)) return CutAt(text, at);
      scanned_ = at + 3;
    }
  }

  // The same once no more data comes.
  void CutAtEnd(std::string& text) const {
    if (scanned_ < text.size() && static_cast<unsigned char>(text[scanned_]) == kSentinel)
      CutAt(text, scanned_);
  }

 private:
  static bool FollowedWell(const std::string& text, std::size_t at) {
    for (std::size_t i = at + 1; i < std::min(text.size(), at + 3); ++i)
      if ((static_cast<unsigned char>(text[i]) & 0xC0) != 0x80) return false;
    return true;
  }
  static bool CutAt(std::string& text, std::size_t at) {
    text.resize(at + 1);
    return true;
  }

  std::size_t scanned_ = 0;
};

}  // namespace

MFtp::Listing MFtp::GetListing() {
  UpdateStatus("Getting Dir Listing.");
  Listing listing;
  failure_.clear();
  bool refused = !ReadListing(listing);
  if (refused && lastCode_ == 550 && listCommand_ != "LIST\n") {
    // A server that refuses options gets the bare command from now on. A listening socket still
    // stands; a port that the server gave was for one command.
    listCommand_ = "LIST\n";
    refused = passive_ && SetUpPassive() == 0 ? false : !ReadListing(listing);
  }
  if (refused) DropRefused();
  DataCommClose();
  return listing;
}

// One attempt; false when the server refused the command.
bool MFtp::ReadListing(Listing& listing) {
  const DataState state = OpenData(listCommand_, "LIST\n", aborted_);
  if (state == DataState::Refused) return false;
  if (state == DataState::Failed) {
    FinishData();
    const std::string mode = passive_ ? "Passive" : "Active";
    WarnOfMode(mode + " connection failed.\n\n" + failure_);
    return true;
  }
  bool clean = false;
  std::string why;
  try {
    clean = ReadListingData(listing.text);
    why = failure_;
  } catch (const NLException& error) {
    why = Reason(error);
  }
  listing.whole = FinishData() && clean;
  if (!clean) Fail(why);
  if (!listing.whole) Warn("The listing is not complete: " + failure_ + "\n");
  return true;
}

// The data up to its end, carriage returns left out; false when it is not all there is.
bool MFtp::ReadListingData(std::string& text) {
  NLEndpoint* endpoint = DataEndpoint();
  std::vector<char> buffer(std::size_t{64} * 1024);
  Sentinel sentinel;
  while (endpoint != nullptr && !aborted_) {
    const long count = endpoint->recv(buffer.data(), buffer.size());
    if (count <= 0) {
      sentinel.CutAtEnd(text);
      return !aborted_;
    }
    const auto begin = buffer.begin();
    const auto end = std::remove(begin, begin + count, '\r');
    text.append(begin, end);
    if (sentinel.Cut(text)) return true;
    if (text.size() > kMaxListing) {
      Fail("the listing is larger than 1 GiB.");
      return false;
    }
    if (count == static_cast<long>(buffer.size()) && buffer.size() < TransferPump::kMaxBuffer)
      buffer.resize(buffer.size() * 2);
  }
  return false;
}

bool MFtp::ParseListing(std::string_view text) {
  if (!browser_) return true;
  if (!browser_->BeginListing()) return false;
  EntryMaker maker(Now());
  std::vector<fileStruct> batch;
  batch.reserve(kBatch);
  batch.push_back(maker.Dots("."));
  batch.push_back(maker.Dots(".."));
  ListingParser parser(text, serverType_ != kWindowsNT);
  ListingParser::Fields fields;
  std::size_t count = 0;
  std::size_t tooLong = 0;
  while (parser.Next(fields)) {
    const fileStruct& entry = maker.Make(fields);
    if (entry.type == kDevice) continue;
    if (entry.name.size() > kMaxName) {
      ++tooLong;
      continue;
    }
    batch.push_back(entry);
    if (++count == ListingParser::kMaxEntries) {
      Warn("The listing is not complete: it has more than 10,000,000 entries.\n");
      break;
    }
    if (batch.size() < kBatch) continue;
    if (!browser_->AddEntries(std::move(batch))) return false;
    batch = {};
    batch.reserve(kBatch);
  }
  if (!browser_->AddEntries(std::move(batch))) return false;
  if (tooLong > 0)
    Warn("Entries with names longer than 4096 bytes are not shown: " + std::to_string(tooLong) +
         ".\n");
  UpdateStatus(lost_ ? "Connection lost." : "Connected.");
  return browser_->EndListing(count);
}

std::vector<MFtp::WalkEntry> MFtp::Parse(std::string_view text) const {
  std::vector<WalkEntry> entries;
  ListingParser parser(text, serverType_ != kWindowsNT);
  ListingParser::Fields fields;
  while (entries.size() < ListingParser::kMaxEntries && parser.Next(fields)) {
    if (fields.type == kDevice) continue;
    const std::int64_t size = fields.type == kFile ? ParseSize(fields.size) : 0;
    entries.push_back({std::string(fields.name), size, fields.type});
  }
  return entries;
}

}  // namespace corvane
