#include "app/desktop/TrayShortcuts.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <utility>

#include "app/shared/OpenMessage.h"
#include "app/shared/Style.h"
#include "settings/StoredSettings.h"
#include "sites/ShortcutStore.h"
#include "util/UniqueFd.h"

namespace corvane {
namespace {

using Clock = std::chrono::steady_clock;

constexpr std::uint32_t kWhole = "list"_what;
constexpr std::uint32_t kBytes = "OPNC"_what;

std::string WithoutPasswords() {
  Message list(kWhole);
  StoredSettings::Read();
  const bool inFolders = Style::InForce().ShowsFolders();
  for (Shortcut& shortcut : ShortcutStore::ReadForMenu().shortcuts) {
    shortcut.site.password.clear();
    Message open = OpenMessage(shortcut.site);
    open.AddBool("saved", true);
    list.AddString("name", NameOf(shortcut));
    list.AddString("folder", inFolders ? shortcut.folder : "");
    list.AddData("open", kBytes, open.Flatten());
  }
  return list.Flatten();
}

[[noreturn]] void WriteAndExit(int pipe) {
  const std::string bytes = WithoutPasswords();
  std::size_t done = 0;
  while (done < bytes.size()) {
    const ssize_t written = ::write(pipe, bytes.data() + done, bytes.size() - done);
    if (written < 0 && errno == EINTR) continue;
    if (written <= 0) ::_exit(1);
    done += static_cast<std::size_t>(written);
  }
  ::_exit(0);
}

// All that comes until the other end is closed; nothing where that takes too long.
std::optional<std::string> ReadAll(int pipe, Clock::time_point until) {
  std::string bytes;
  for (;;) {
    using std::chrono::milliseconds;
    const auto left = std::chrono::duration_cast<milliseconds>(until - Clock::now()).count();
    pollfd wait{.fd = pipe, .events = POLLIN, .revents = 0};
    if (left <= 0) return {};
    if (::poll(&wait, 1, static_cast<int>(left)) <= 0) continue;
    std::array<char, 4096> piece{};
    const ssize_t got = ::read(pipe, piece.data(), piece.size());
    if (got < 0 && errno == EINTR) continue;
    if (got < 0) return {};
    if (got == 0) return bytes;
    bytes.append(piece.data(), static_cast<std::size_t>(got));
  }
}

}  // namespace

std::optional<std::vector<TrayShortcut>> ReadForTray() {
  std::array<int, 2> ends{};
  if (::pipe2(ends.data(), O_CLOEXEC) != 0) return {};
  const UniqueFd reading(ends[0]);
  UniqueFd writing(ends[1]);
  const pid_t child = ::fork();
  if (child < 0) return {};
  if (child == 0) WriteAndExit(writing.get());
  writing.reset();
  const auto bytes = ReadAll(reading.get(), Clock::now() + std::chrono::seconds(2));
  if (!bytes.has_value()) ::kill(child, SIGKILL);
  while (::waitpid(child, nullptr, 0) < 0 && errno == EINTR) {
  }
  const auto list = Message::Unflatten(bytes.value_or(""));
  if (!list.has_value()) return {};
  std::vector<TrayShortcut> shortcuts;
  for (std::size_t i = 0; i < list->CountValues("name"); ++i) {
    auto open = Message::Unflatten(list->FindData("open", kBytes, i).value_or(""));
    if (!open) continue;
    shortcuts.push_back({list->FindString("name", i).value_or(""),
                         list->FindString("folder", i).value_or(""), std::move(*open)});
  }
  return shortcuts;
}

}  // namespace corvane
