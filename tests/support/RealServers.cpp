#include "support/RealServers.h"

#include <fcntl.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <csignal>
#include <cstdlib>
#include <sstream>
#include <stdexcept>

#include "support/WaitFor.h"
#include "util/UniqueFd.h"

namespace corvane {

namespace {

namespace fs = std::filesystem;

fs::path Prefix() {
  const char* const named = std::getenv("CORVANE_TEST_SERVERS");
  return named && *named ? named : CORVANE_TEST_SERVERS;
}

/// Starts the script in a process group of its own that ends with this program.
pid_t Start(const std::string& name, const fs::path& root, const UniqueFd& output) {
  const pid_t parent = ::getpid();
  const pid_t child = ::fork();
  if (child != 0) return child;
  ::setpgid(0, 0);
  ::prctl(PR_SET_PDEATHSIG, SIGTERM);
  if (::getppid() != parent) ::_exit(1);
  ::dup2(output.get(), STDOUT_FILENO);
  ::execl("/usr/bin/python3", "python3", "-I", CORVANE_TEST_SERVER_SCRIPT, name.c_str(),
          root.c_str(), nullptr);
  ::_exit(127);
}

}  // namespace

std::string RealServer::Obstacle(const std::string& name) {
  const fs::path program = Prefix() / "usr/sbin" / name;
  if (!fs::exists(program)) return "run tools/install-test-servers: no " + program.string();
  if (name == "pure-ftpd" && ::geteuid() != 0) return "Pure-FTPd starts for root only";
  return "";
}

RealServer::RealServer(const std::string& name, const fs::path& root) {
  std::array<int, 2> ends;
  if (::pipe2(ends.data(), O_CLOEXEC) != 0) throw std::runtime_error("no pipe");
  const UniqueFd input(ends[0]);
  UniqueFd output(ends[1]);
  process_ = Start(name, root, output);
  output.reset();
  std::string line;  // stays empty where the server does not start
  for (char c = 0; c != '\n' && ::read(input.get(), &c, 1) == 1;) line += c;
  if (std::istringstream(line) >> port >> user >> password) return;
  Stop();
  throw std::runtime_error(name + " did not start");
}

RealServer::~RealServer() {
  Stop();
}

void RealServer::Stop() {
  if (process_ <= 0) return;
  ::kill(process_, SIGTERM);
  const bool ended = WaitFor([this] { return ::waitpid(process_, nullptr, WNOHANG) == process_; });
  // Sessions are processes of their own.
  ::kill(-process_, SIGKILL);
  if (!ended) ::waitpid(process_, nullptr, 0);
  process_ = -1;
}

}  // namespace corvane
