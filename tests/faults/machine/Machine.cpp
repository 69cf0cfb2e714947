// A machine that misbehaves, to be loaded ahead of the C library: a wall clock that jumps by
// MACHINE_CLOCK seconds once the program has run for half a second; a disk that takes MACHINE_DISK
// milliseconds for each write; no descriptors from socket number MACHINE_FILES on; with
// MACHINE_NUMBERS, folders whose inode numbers by descriptor are others than by path. What the
// program leaves open at its end goes to the file MACHINE_LEFT.

#include <dirent.h>
#include <fcntl.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <ctime>

namespace {

long Number(const char* name) {
  const char* const value = std::getenv(name);
  return value == nullptr ? 0 : std::strtol(value, nullptr, 10);
}

timespec Clock(clockid_t clock) {
  timespec now{};
  ::syscall(SYS_clock_gettime, clock, &now);
  return now;
}

double Steady() {
  const timespec now = Clock(CLOCK_MONOTONIC);
  return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) / 1e9;
}

double Ran() {
  static const double start = Steady();
  return Steady() - start;
}

timespec Wall() {
  timespec now = Clock(CLOCK_REALTIME);
  if (Ran() > 0.5) now.tv_sec += Number("MACHINE_CLOCK");
  return now;
}

std::atomic<long> sockets{0};

// The sanitizers need descriptors of their own at times, so that a true limit would stop them too.
bool HasDescriptors() {
  const long from = Number("MACHINE_FILES");
  if (from == 0 || sockets < from - 1) return true;
  errno = EMFILE;
  return false;
}

void Wait() {
  if (const long wait = Number("MACHINE_DISK"); wait > 0) ::usleep(wait * 1000);
}

int Entries(const char* folder) {
  int count = 0;
  DIR* const entries = ::opendir(folder);
  while (::readdir(entries) != nullptr) ++count;
  ::closedir(entries);
  return count;
}

struct AtTheEnd {
  AtTheEnd() { (void)Ran(); }
  ~AtTheEnd() {
    const char* const path = std::getenv("MACHINE_LEFT");
    if (path == nullptr) return;
    ::usleep(300'000);  // for threads that have just ended
    const int open = Entries("/proc/self/fd");
    const int threads = Entries("/proc/self/task");
    FILE* const file = std::fopen(path, "w");
    std::fprintf(file, "%d descriptors, %d threads\n", open, threads);
    std::fclose(file);
  }
} atTheEnd;

}  // namespace

extern "C" {

int clock_gettime(clockid_t clock, timespec* now) noexcept {
  if (clock == CLOCK_REALTIME) return *now = Wall(), 0;
  return static_cast<int>(::syscall(SYS_clock_gettime, clock, now));
}

time_t time(time_t* now) noexcept {
  const time_t seconds = Wall().tv_sec;
  if (now != nullptr) *now = seconds;
  return seconds;
}

ssize_t pwrite(int file, const void* bytes, size_t count, off_t offset) {
  Wait();
  return ::syscall(SYS_pwrite64, file, bytes, count, offset);
}

int fsync(int file) {
  Wait();
  return static_cast<int>(::syscall(SYS_fsync, file));
}

int fstat(int file, struct stat* status) noexcept {
  const auto result = static_cast<int>(::syscall(SYS_fstat, file, status));
  if (result == 0 && S_ISDIR(status->st_mode) && Number("MACHINE_NUMBERS") > 0) ++status->st_ino;
  return result;
}

int socket(int domain, int type, int protocol) noexcept {
  if (!HasDescriptors()) return -1;
  ++sockets;
  return static_cast<int>(::syscall(SYS_socket, domain, type, protocol));
}

int open64(const char* path, int flags, ...) {
  va_list rest;
  va_start(rest, flags);
  const mode_t mode = va_arg(rest, mode_t);
  va_end(rest);
  if (!HasDescriptors()) return -1;
  return static_cast<int>(::syscall(SYS_openat, AT_FDCWD, path, flags, mode));
}

int openat(int folder, const char* path, int flags, ...) {
  va_list rest;
  va_start(rest, flags);
  const mode_t mode = va_arg(rest, mode_t);
  va_end(rest);
  if (!HasDescriptors()) return -1;
  return static_cast<int>(::syscall(SYS_openat, folder, path, flags, mode));
}

}  // extern "C"
