#include "app/browser/BrowserLink.h"

#include <QElapsedTimer>
#include <ctime>
#include <utility>

#include "app/browser/BrowserEvents.h"
#include "app/browser/BrowserSession.h"
#include "app/browser/MViewFile.h"
#include "app/shared/GuiThread.h"
#include "app/shared/ScreenText.h"
#include "app/shared/SoundPlayer.h"
#include "app/shared/Style.h"

namespace corvane {
namespace {

/// The GUI thread's share of one turn of the event loop.
constexpr int kTurnMilliseconds = 10;
constexpr std::size_t kLogPiece = std::size_t{16} * 1024;
constexpr std::size_t kMostAttributes = 4096;

/// The rows that lead every listing.
std::vector<MWListItem> Dots() {
  std::vector<MWListItem> dots;
  fileStruct entry;
  const std::time_t now = std::time(nullptr);
  ::localtime_r(&now, &entry.time);
  for (const char* name : {".", ".."}) dots.emplace_back(entry, name);
  return dots;
}

template <typename... Handlers>
struct Overloaded : Handlers... {
  using Handlers::operator()...;
};
template <typename... Handlers>
Overloaded(Handlers...) -> Overloaded<Handlers...>;

}  // namespace

BrowserLink::BrowserLink(BrowserSession& session, std::string encoding)
    : session_(&session), encoding_(std::move(encoding)), collator_(NameCollator(true)) {}

bool BrowserLink::SetStatus(const Text& text) {
  return Push(Status{text});
}

bool BrowserLink::ShowStep(const ConnectStep& step) {
  return Push(step);
}

bool BrowserLink::AppendLog(std::string_view text) {
  return Push(Log{std::string(text)});
}

bool BrowserLink::SetPath(std::string_view path) {
  return Push(Path{std::string(path)});
}

bool BrowserLink::BeginListing() {
  {
    MutexLock hold(lock_);
    attributes_.clear();
  }
  return Push(Begin{});
}

bool BrowserLink::AddEntries(std::vector<RemoteEntry> entries) {
  if (closing_) return false;
  Rows rows;
  rows.items.reserve(entries.size());
  {
    MutexLock hold(lock_);
    for (RemoteEntry& entry : entries) {
      rows.keys.push_back(collator_.sortKey(ToText(entry.name, encoding_)));
      rows.items.emplace_back(
          entry, Shared({std::move(entry.mode), std::move(entry.owner), std::move(entry.group),
                         std::move(entry.linkTarget), encoding_}));
    }
  }
  return Push(std::move(rows));
}

bool BrowserLink::EndListing(std::size_t /*count*/, bool whole) {
  return Push(End{whole});
}

bool BrowserLink::RemoveEntry(std::string_view name, std::string_view directory) {
  return Push(Remove{std::string(name), std::string(directory)});
}

bool BrowserLink::RenameEntry(std::string_view from, std::string_view to,
                              std::string_view directory) {
  return Push(Rename{std::string(from), std::string(to), std::string(directory)});
}

bool BrowserLink::UpdateEntry(RemoteEntry entry, std::string_view directory) {
  if (closing_) return false;
  Update update{{}, std::string(directory)};
  {
    MutexLock hold(lock_);
    update.items.emplace_back(
        entry, Shared({std::move(entry.mode), std::move(entry.owner), std::move(entry.group),
                       std::move(entry.linkTarget), encoding_}));
  }
  return Push(std::move(update));
}

bool BrowserLink::ChangeValues(std::string_view name, std::int64_t size) {
  return Push(Change{std::string(name), size});
}

std::shared_ptr<TextSink> BrowserLink::OpenViewer(const Text& title) {
  auto link = std::make_shared<ViewerLink>();
  if (!Push(Viewer{link, title})) return nullptr;
  return link;
}

bool BrowserLink::PostMessage(Message message) {
  return Push(std::move(message));
}

bool BrowserLink::PlaySound(Sound sound) {
  SoundPlayer::Play(sound);
  return !closing_;
}

bool BrowserLink::ShowProtection(const Protection& protection) {
  return Push(protection);
}

bool BrowserLink::Ask(const std::shared_ptr<UserQuestion>& question) {
  if (Push(question)) return true;
  question->Give(UserQuestion::Answer::No);
  return false;
}

std::shared_ptr<const EntryAttributes> BrowserLink::Shared(EntryAttributes attributes) {
  if (attributes_.size() > kMostAttributes) attributes_.clear();
  const auto [place, added] = attributes_.try_emplace(std::move(attributes));
  if (added) place->second = std::make_shared<const EntryAttributes>(place->first);
  return place->second;
}

bool BrowserLink::Merge(Event& event) {
  if (events_.empty()) return false;
  Event& last = events_.back();
  if (auto* log = std::get_if<Log>(&last); log != nullptr && log->text.size() < kLogPiece) {
    if (const auto* more = std::get_if<Log>(&event)) {
      log->text += more->text;
      return true;
    }
  }
  if (auto* status = std::get_if<Status>(&last); status != nullptr) {
    if (auto* newer = std::get_if<Status>(&event)) {
      status->text = std::move(newer->text);
      return true;
    }
  }
  return false;
}

bool BrowserLink::Push(Event event) {
  if (closing_) return false;
  bool hop = false;
  {
    MutexLock hold(lock_);
    if (!Merge(event)) events_.push_back(std::move(event));
    hop = !std::exchange(hopPending_, true);
  }
  if (hop) Hop();
  return true;
}

void BrowserLink::Hop() {
  OnGuiThread([self = shared_from_this()] { self->Drain(); });
}

void BrowserLink::Drain() {
  QElapsedTimer turn;
  turn.start();
  for (bool first = true; !closing_ && !session_.isNull(); first = false) {
    Event event;
    {
      MutexLock hold(lock_);
      if (events_.empty()) {
        hopPending_ = false;
        return;
      }
      // The end of a listing sorts it, which takes a turn of its own.
      const bool sorts = std::holds_alternative<End>(events_.front());
      if (turn.hasExpired(kTurnMilliseconds) || (sorts && !first)) break;
      event = std::move(events_.front());
      events_.pop_front();
    }
    BrowserSession& session = *session_;
    BrowserEvents& window = session.Window();
    std::visit(
        Overloaded{[&](const Status& it) { window.ShowStatus(it.text); },
                   [&](const ConnectStep& it) { window.ShowStep(it); },
                   [&](const Log& it) { window.AppendLog(it.text); },
                   [&](const Path& it) { session.Entered(it.path); },
                   [&](const Begin&) {
                     session.ListingBegan();
                     if (Style::InForce().ShowsDots()) window.AddRows({Dots(), {}});
                   },
                   [&](Rows& it) { window.AddRows(std::move(it)); },
                   [&](const End& it) { session.ListingEnded(it.whole); },
                   [&](const Remove& it) { window.RemoveRow(it.name, it.directory); },
                   [&](const Rename& it) { window.RenameRow(it.from, it.to, it.directory); },
                   [&](const Update& it) { window.UpdateRow(it.items.front(), it.directory); },
                   [&](const Change& it) { window.ChangeValues(it.name, it.size); },
                   [&](const Viewer& it) { window.OpenViewer(it.link, it.title); },
                   [&](const Message& it) { session.MessageReceived(it); },
                   [&](const Protection& it) { window.ShowProtection(it); },
                   [&](const std::shared_ptr<UserQuestion>& it) { window.Ask(it); }},
        event);
  }
  if (!closing_ && !session_.isNull()) Hop();
}

}  // namespace corvane
