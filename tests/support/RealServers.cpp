#include "support/RealServers.h"

#include <fcntl.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <csignal>
#include <sstream>
#include <stdexcept>

#include "support/WaitFor.h"
#include "util/UniqueFd.h"

namespace corvane {

namespace {

/// Starts the script in a process group of its own that ends with this program.
pid_t Start(const char* name, const char* root, const UniqueFd& output) {
  const pid_t parent = ::getpid();
  const pid_t child = ::fork();
  if (child != 0) return child;
  ::setpgid(0, 0);
  ::prctl(PR_SET_PDEATHSIG, SIGTERM);
  if (::getppid() != parent) ::_exit(1);
  ::dup2(output.get(), STDOUT_FILENO);
  ::execl("/usr/bin/python3", "python3", "-I", CORVANE_TEST_SERVER_SCRIPT, name, root, nullptr);
  ::_exit(127);
}

}  // namespace

RealServer::RealServer(const std::string& name, const std::filesystem::path& root) {
  std::array<int, 2> ends;
  if (::pipe2(ends.data(), O_CLOEXEC) != 0) throw std::runtime_error("no pipe");
  const UniqueFd input(ends[0]);
  UniqueFd output(ends[1]);
  process_.id = Start(name.c_str(), root.c_str(), output);
  output.reset();
  std::string line;  // stays empty where the server does not start
  for (char c = 0; c != '\n' && ::read(input.get(), &c, 1) == 1;) line += c;
  if (std::istringstream(line) >> port >> user >> password) return;
  throw std::runtime_error(name + " did not start: has tools/install-test-servers been run?");
}

RealServer::Process::~Process() {
  if (id <= 0) return;
  ::kill(id, SIGTERM);
  const bool ended = WaitFor([this] { return ::waitpid(id, nullptr, WNOHANG) == id; });
  // Sessions are processes of their own.
  ::kill(-id, SIGKILL);
  if (!ended) ::waitpid(id, nullptr, 0);
}

}  // namespace corvane
