#include "support/RealServers.h"

#include <fcntl.h>
#include <poll.h>
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

/// Starts the command in a process group of its own that ends with this program.
pid_t Start(std::vector<std::string> command, const UniqueFd& output) {
  const std::string prefix = "CORVANE_TEST_SERVERS=" + Prefix().string();
  char* const environment[] = {const_cast<char*>(prefix.c_str()), nullptr};
  std::vector<char*> arguments;
  for (std::string& word : command) arguments.push_back(word.data());
  arguments.push_back(nullptr);
  const pid_t parent = ::getpid();
  const pid_t child = ::fork();
  if (child != 0) return child;
  ::setpgid(0, 0);
  ::prctl(PR_SET_PDEATHSIG, SIGTERM);
  if (::getppid() != parent) ::_exit(1);
  ::dup2(output.get(), STDOUT_FILENO);
  ::execve(arguments[0], arguments.data(), environment);
  ::_exit(127);
}

/// One line, or what came within ten seconds.
std::string ReadLine(const UniqueFd& input) {
  std::string line;
  pollfd wait = {input.get(), POLLIN, 0};
  for (char c = 0; ::poll(&wait, 1, 10'000) == 1 && ::read(input.get(), &c, 1) == 1 && c != '\n';) {
    line += c;
  }
  return line;
}

}  // namespace

const std::vector<std::string>& RealServer::Names() {
  static const std::vector<std::string> names = {"vsftpd", "proftpd", "pure-ftpd"};
  return names;
}

std::string RealServer::Obstacle(const std::string& name) {
  const fs::path program = Prefix() / "usr/sbin" / name;
  if (!fs::exists(program)) return "run tools/install-test-servers: no " + program.string();
  if (name == "pure-ftpd" && ::geteuid() != 0) return "Pure-FTPd starts for root only";
  return "";
}

RealServer::RealServer(const std::string& which, const fs::path& directory)
    : name(which), root(directory) {
  std::array<int, 2> ends;
  if (::pipe2(ends.data(), O_CLOEXEC) != 0) throw std::runtime_error("no pipe");
  const UniqueFd input(ends[0]);
  UniqueFd output(ends[1]);
  process_ = Start({"/usr/bin/python3", CORVANE_TEST_SERVER_SCRIPT, name, root}, output);
  output.reset();
  std::istringstream line(ReadLine(input));
  if (line >> port >> user >> password) return;
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
