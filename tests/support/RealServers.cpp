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
pid_t Start(std::vector<std::string> arguments, const UniqueFd& output) {
  std::vector<char*> pointers;
  for (std::string& argument : arguments) pointers.push_back(argument.data());
  pointers.push_back(nullptr);
  const pid_t parent = ::getpid();
  const pid_t child = ::fork();
  if (child != 0) return child;
  ::setpgid(0, 0);
  ::prctl(PR_SET_PDEATHSIG, SIGTERM);
  if (::getppid() != parent) ::_exit(1);
  ::dup2(output.get(), STDOUT_FILENO);
  ::execv("/usr/bin/python3", pointers.data());
  ::_exit(127);
}

}  // namespace

RealPeer::RealPeer(const std::vector<std::string>& script) {
  std::array<int, 2> ends;
  if (::pipe2(ends.data(), O_CLOEXEC) != 0) throw std::runtime_error("no pipe");
  const UniqueFd input(ends[0]);
  UniqueFd output(ends[1]);
  std::vector<std::string> arguments = {"python3", "-I"};
  arguments.insert(arguments.end(), script.begin(), script.end());
  process_.id = Start(std::move(arguments), output);
  output.reset();
  std::string line;  // stays empty where it does not start
  for (char c = 0; c != '\n' && ::read(input.get(), &c, 1) == 1;) line += c;
  if (std::istringstream(line) >> port >> user >> password) return;
  throw std::runtime_error(script.at(1) +
                           " did not start: have tools/install-packages and "
                           "tools/install-test-servers been run?");
}

RealServer::RealServer(const std::string& name, const std::filesystem::path& root,
                       const std::vector<std::string>& options)
    : RealPeer([&] {
        std::vector<std::string> script = {CORVANE_TEST_SERVER_SCRIPT, name, root};
        script.insert(script.end(), options.begin(), options.end());
        return script;
      }()) {}

RealProxy::RealProxy(const std::string& name, bool login)
    : RealPeer(login ? std::vector<std::string>{CORVANE_TEST_PROXY_SCRIPT, name, "login"}
                     : std::vector<std::string>{CORVANE_TEST_PROXY_SCRIPT, name}) {}

RealPeer::Process::~Process() {
  if (id <= 0) return;
  ::kill(id, SIGTERM);
  const bool ended = WaitFor([this] { return ::waitpid(id, nullptr, WNOHANG) == id; });
  // Sessions are processes of their own.
  ::kill(-id, SIGKILL);
  if (!ended) ::waitpid(id, nullptr, 0);
}

}  // namespace corvane
