#include <arpa/inet.h>
#include <poll.h>
#include <sys/socket.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <map>

#include "support/ScriptedSession.h"

namespace corvane {

namespace {

constexpr std::uint32_t kStranger = 0x7F000002;  // 127.0.0.2

const std::map<std::string_view, const char*> kFixedReplies = {
    {"greeting", "220 Ready.\r\n"}, {"USER", "331 Password, please.\r\n"},
    {"PASS", "230 Logged in.\r\n"}, {"SYST", "215 UNIX Type: L8\r\n"},
    {"TYPE", "200 Type set.\r\n"},  {"PASV", "227 Entering Passive Mode (127,0,0,1,{port}).\r\n"},
    {"SITE", "200 Done.\r\n"},      {"NOOP", "200 Still here.\r\n"},
    {"QUIT", "221 Bye.\r\n"}};

std::string Quoted(const std::string& path) {
  std::string text = "\"";
  for (const char c : path) text += c == '"' ? std::string("\"\"") : std::string(1, c);
  return text + "\"";
}

}  // namespace

void ScriptedSession::Dispatch(const std::string& verb, const std::string& argument) {
  if (const auto fixed = kFixedReplies.find(verb); fixed != kFixedReplies.end()) {
    Say(fixed->second);
    if (verb == "QUIT") control_.reset();
  } else if (verb == "PWD") {
    Say("257 " + Quoted(directory_) + " is here.\r\n");
  } else if (verb == "PORT") {
    Port(argument);
  } else if (verb == "REST") {
    restart_ = std::strtoull(argument.c_str(), nullptr, 10);
    Say("350 Restarting there.\r\n");
  } else if (!AboutPath(verb, argument) && !AboutTarget(verb, argument)) {
    Say("502 Not known here.\r\n");
  }
}

void ScriptedSession::Port(const std::string& argument) {
  std::array<unsigned, 6> n{};
  const int count = std::sscanf(argument.c_str(), "%3u,%3u,%3u,%3u,%3u,%3u", &n[0], &n[1], &n[2],
                                &n[3], &n[4], &n[5]);
  if (count != 6) return Say("501 Six numbers, please.\r\n");
  passive_.reset();
  active_.sin_family = AF_INET;
  active_.sin_addr.s_addr = htonl(n[0] << 24 | n[1] << 16 | n[2] << 8 | n[3]);
  active_.sin_port = htons(static_cast<std::uint16_t>(n[4] << 8 | n[5]));
  Say("200 Port noted.\r\n");
}

bool ScriptedSession::AboutTarget(const std::string& verb, const std::string& argument) {
  VirtualTree& tree = server_.Tree();
  const bool option = verb == "LIST" && argument.starts_with('-');
  const std::string path = tree.Resolve(directory_, option ? "" : argument);
  const std::optional<std::string> bytes = tree.File(path);
  if (verb == "CWD" || verb == "CDUP") {
    const std::string target = verb == "CDUP" ? tree.Resolve(directory_, "..") : path;
    Judge(tree.IsDirectory(target), "250 Changed.\r\n");
    if (tree.IsDirectory(target)) directory_ = target;
  } else if (verb == "LIST") {
    SendData(tree.IsDirectory(path) ? tree.Listing(path) : "");
  } else if (verb == "SIZE") {
    Judge(bytes.has_value(), "213 " + std::to_string(bytes ? bytes->size() : 0) + "\r\n");
  } else if (verb == "RETR" && !bytes && !action_.data) {
    Say("550 No such file.\r\n");
  } else if (verb == "RETR") {
    SendData(bytes ? bytes->substr(std::min(restart_, bytes->size())) : "");
  } else if (verb == "STOR" || verb == "APPE") {
    ReceiveData(path, bytes.value_or("").substr(0, verb == "STOR" ? restart_ : std::string::npos));
  } else {
    return false;
  }
  return true;
}

bool ScriptedSession::AboutPath(const std::string& verb, const std::string& argument) {
  VirtualTree& tree = server_.Tree();
  const std::string path = tree.Resolve(directory_, argument, false);
  if (verb == "DELE") {
    Judge(tree.RemoveFile(path), "250 Deleted.\r\n");
  } else if (verb == "RMD") {
    Judge(tree.RemoveDirectory(path), "250 Removed.\r\n");
  } else if (verb == "MKD" && tree.Exists(path)) {
    Say("550 " + argument + ": already exists.\r\n");
  } else if (verb == "MKD") {
    tree.AddDirectory(path);
    Say("257 " + Quoted(path) + " made.\r\n");
  } else if (verb == "RNFR") {
    renameFrom_ = path;
    Judge(tree.Exists(path), "350 And the new name?\r\n");
  } else if (verb == "RNTO") {
    Judge(tree.Rename(renameFrom_, path), "250 Renamed.\r\n");
  } else {
    return false;
  }
  return true;
}

void ScriptedSession::Judge(bool done, const std::string& success) {
  Say(done ? success : "550 Cannot do that.\r\n");
}

UniqueFd ScriptedSession::Connect(std::uint32_t from) const {
  UniqueFd data(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0));
  sockaddr_in source{};
  source.sin_family = AF_INET;
  source.sin_addr.s_addr = htonl(from);
  ::bind(data.get(), reinterpret_cast<const sockaddr*>(&source), sizeof source);
  const auto* const target = reinterpret_cast<const sockaddr*>(&active_);
  return ::connect(data.get(), target, sizeof active_) == 0 ? std::move(data) : UniqueFd();
}

UniqueFd ScriptedSession::BeginData() {
  restart_ = 0;
  const std::string preliminary = action_.preliminary.value_or("150 Here it comes.\r\n");
  if (action_.dataEnd == DataEnd::Never) {
    Say(preliminary);
    if (!Stall(-1)) return {};
    Say(action_.completion.value_or("425 No data connection.\r\n"));
    return {};
  }
  UniqueFd data;
  if (!passive_) {
    if (action_.strangerFirst) Write(Connect(kStranger).get(), "rubbish");
    data = Connect(INADDR_LOOPBACK);
  } else if (Wait(passive_.get(), POLLIN)) {
    data.reset(::accept4(passive_.get(), nullptr, nullptr, SOCK_CLOEXEC));
    passive_.reset();
  }
  Say(data ? preliminary : "425 No data connection.\r\n");
  return data;
}

void ScriptedSession::EndData(UniqueFd data, bool whole) {
  if (action_.dataEnd == DataEnd::Reset) MakeCloseReset(data.get());
  data.reset();
  Say(action_.completion.value_or(whole ? "226 Done.\r\n" : "426 Broken off.\r\n"));
}

void ScriptedSession::SendData(const std::string& bytes) {
  UniqueFd data = BeginData();
  if (!data) return;
  const std::string_view all = action_.data ? *action_.data : bytes;
  const std::string_view first = all.substr(0, action_.dataLimit);
  bool whole = Write(data.get(), first);
  if (whole && action_.dataEnd == DataEnd::Stall) {
    whole = Stall(data.get()) && Write(data.get(), all.substr(first.size()));
  }
  EndData(std::move(data), whole);
}

bool ScriptedSession::Read(int fd, std::size_t limit, std::string& bytes) const {
  std::array<char, 65536> block;
  while (limit > 0) {
    if (!Wait(fd, POLLIN)) return false;
    const ssize_t count = ::recv(fd, block.data(), std::min(limit, block.size()), 0);
    if (count <= 0) return count == 0;
    bytes.append(block.data(), static_cast<std::size_t>(count));
    limit -= static_cast<std::size_t>(count);
  }
  return true;
}

void ScriptedSession::ReceiveData(const std::string& path, std::string bytes) {
  UniqueFd data = BeginData();
  if (!data) return;
  const bool limited = action_.dataLimit != std::string::npos;
  bool whole = Read(data.get(), action_.dataLimit, bytes);
  if (whole && action_.dataEnd == DataEnd::Stall) {
    whole = Stall(limited ? data.get() : -1) &&
            (!limited || Read(data.get(), std::string::npos, bytes));
  }
  server_.Tree().AddFile(path, std::move(bytes));
  EndData(std::move(data), whole);
}

}  // namespace corvane
