#include "app/program/QuitSignals.h"

#include <fcntl.h>
#include <unistd.h>

#include <QSocketNotifier>
#include <array>
#include <cerrno>
#include <csignal>
#include <utility>

namespace corvane {
namespace {

constexpr std::array kSignals = {SIGTERM, SIGINT, SIGHUP};

// A signal handler may do little more than write to a pipe.
int wakeUp = -1;

void Handle(int signal) {
  const int before = errno;
  const char byte = 0;
  if (::write(wakeUp, &byte, 1) != 1) ::_exit(128 + signal);
  std::signal(signal, SIG_DFL);
  errno = before;
}

}  // namespace

QuitSignals::QuitSignals(std::function<void()> quit) {
  std::array<int, 2> ends{};
  if (::pipe2(ends.data(), O_CLOEXEC | O_NONBLOCK) != 0) return;
  wakeUp = ends[1];
  auto* notifier = new QSocketNotifier(ends[0], QSocketNotifier::Read, this);
  connect(notifier, &QSocketNotifier::activated, this, [notifier, quit = std::move(quit)] {
    notifier->setEnabled(false);
    quit();
  });
  for (const int signal : kSignals) std::signal(signal, Handle);
}

QuitSignals::~QuitSignals() {
  for (const int signal : kSignals) std::signal(signal, SIG_DFL);
}

}  // namespace corvane
