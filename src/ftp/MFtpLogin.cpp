#include <charconv>
#include <optional>
#include <utility>

#include "ftp/MFtp.h"
#include "net/NLException.h"
#include "net/NLLookup.h"
#include "settings/ProcessSettings.h"

namespace corvane {
namespace {

// A decimal port as far as its digits go, cut to 16 bits.
std::uint16_t PortFrom(const std::string& text) {
  unsigned value = 0;
  std::from_chars(text.data(), text.data() + text.size(), value);
  return static_cast<std::uint16_t>(value);
}

}  // namespace

std::int32_t MFtp::Login() {
  const std::int32_t result = TryLogin();
  if (result != 1) {
    lost_ = true;
    controlEndpoint_.close();
  }
  return result;
}

std::int32_t MFtp::TryLogin() {
  lost_ = false;
  path_.clear();
  lostWhy_.clear();
  owedReplies_ = 0;
  returnOwed_ = false;
  binary_ = false;
  if (!UpdateStatus("Resolving address.") || !Resolve()) return 0;
  if (!UpdateStatus("Connecting to host.")) return 0;
  try {
    if ((controlEndpoint_.state() & NLEndpoint::s_connected) != 0) controlEndpoint_.close();
    controlEndpoint_.setSilenceLimit(silenceLimit);
    controlEndpoint_.connect(serverAddress_);
    if (!UpdateStatus("Connected.")) return 0;
    return Identify();
  } catch (const NLException& error) {
    FailFrom(error);
    return FailConnection();
  }
}

// Finds the address of the server, or of the proxy in front of it.
bool MFtp::Resolve() {
  const SettingsValues settings = ProcessSettings::Get();
  const bool viaProxy = settings.useProxy && !settings.proxyAddress.empty();
  const std::string& target = viaProxy ? settings.proxyAddress : host_;
  const std::uint16_t port = viaProxy ? PortFrom(settings.proxyPort) : port_;
  try {
    auto lookup = std::make_shared<NLLookup>(target, port);
    {
      MutexLock hold(reach_);
      lookup_ = lookup;
      if (aborted_) lookup->cancel();
    }
    serverAddress_ = lookup->get();
    return true;
  } catch (const NLException& error) {
    // Names the server even where it was the proxy that could not be found.
    const std::string text = "Could not resolve the address for:\n\n " + host_;
    Fail(text);
    if (!aborted_) PostError(text);
    return false;
  }
}

// From the greeting to the password's reply.
std::int32_t MFtp::Identify() {
  const SettingsValues settings = ProcessSettings::Get();
  int code = ReadResponse();
  // "120 Service ready in nnn minutes": the greeting proper is still to come.
  while (code >= 100 && code < 200) code = ReadResponse();
  if (code >= 400) {
    Fail(lastReplyText_);
    return FailConnection();
  }
  if (!UpdateStatus("Sending Username.")) return 0;
  const std::string user =
      settings.useProxy ? userCommand_.substr(0, userCommand_.size() - 1) + "@" + host_ + "\n"
                        : userCommand_;
  code = SendCommand(user);
  if (code == 530) {
    const std::string text = "Login to: " + host_ + " failed.\n\nUsername is invalid";
    RefusedLogin(text, lastReplyText_, false);
    PostError(text, lastReplyText_);
    return 0;
  }
  if (code == 0 || code >= 400)
    return RefusedLogin("Login to: " + host_ + " failed.\n\n" + lastReplyText_, {}, true);

  if (!UpdateStatus("Sending Password.")) return 0;
  code = SendPassword(passCommand_);
  if (code == 530) {
    const std::string text = "Login to: " + host_ + " failed.\nInvalid Username or Password.";
    RefusedLogin(text, lastReplyText_, false);
    if (browser_) PostError(text, lastReplyText_);
    return 0;
  }
  if (code == 550)
    return RefusedLogin("Login to: " + host_ + " as anonymous failed.", lastReplyText_, true);
  if (code == 0 || code >= 400)
    return RefusedLogin("Login to: " + host_ + " failed.\n\n" + lastReplyText_, {}, true);
  Owner().PlaySound(settings.loginSsnd);
  return 1;
}

// The failure sound, the text and the server's words kept as the failure and, with `tellOwner`,
// shown.
std::int32_t MFtp::RefusedLogin(const std::string& text, const std::string& words, bool tellOwner) {
  Fail(words.empty() ? text : text + "\n" + words);
  Owner().PlaySound(ProcessSettings::Get().loginFsnd);
  if (!tellOwner) return 0;
  if (browser_) {
    PostError(text, words);
    return 0;
  }
  UpdateStatus("Login failed.");
  return -1;
}

std::int32_t MFtp::FailConnection() {
  lost_ = true;
  if (aborted_) return 0;
  if (!browser_) {
    UpdateStatus("Connection failed.");
    return -1;
  }
  PostError("Connection to:  " + host_ + " FAILED!\n", failure_);
  browser_->PlaySound(ProcessSettings::Get().loginFsnd);
  return 0;
}

void MFtp::PostError(std::string_view text, std::string_view detail) {
  Message error("FERR"_what);
  error.AddString("error", text);
  if (!detail.empty()) error.AddString("detail", detail);
  Owner().PostMessage(std::move(error));
}

void MFtp::GetServerType() {
  std::string text = ReturnResponse("SYST\n");
  const int code = ReplyCode(text, 0);
  text.erase(0, 4);
  const std::string_view word = std::string_view(text).substr(0, text.find_first_of(" \n"));
  serverType_ = code == 215 && word == "Windows_NT" ? kWindowsNT : kUnix;
  listCommand_ = serverType_ == kWindowsNT ? "LIST\n" : "LIST -la\n";
  if (text == "UNIX AppleShare IP FTP Server\n") {
    serverType_ = kAppleShare;
    listCommand_ = passive_ ? "LIST\r\n" : "LIST\n";
  }
}

// The path of a PWD reply (RFC 959, appendix II); nothing when the server does not tell.
std::optional<std::string> MFtp::AskPath() {
  std::string text = ReturnResponse("PWD\n");
  if (ReplyCode(text, 0) >= 400) return std::nullopt;
  const std::size_t open = text.find('"');
  if (open == std::string::npos) {
    // A server without quotes: what stands behind the code is all there is.
    text.erase(0, 4);
    while (!text.empty() && (text.back() == '\n' || text.back() == ' ')) text.pop_back();
  } else {
    const std::size_t close = text.rfind('"');
    text = text.substr(open + 1, close > open ? close - open - 1 : text.find('\n') - open - 1);
    // A quote inside the path is written twice.
    for (std::size_t at = text.find("\"\""); at != std::string::npos;
         at = text.find("\"\"", at + 1))
      text.erase(at, 1);
  }
  return text;
}

bool MFtp::SetPWD() {
  auto path = AskPath();
  if (!path) return false;
  path_ = std::move(*path);
  if (browser_) browser_->SetPath(path_);
  return true;
}

void MFtp::AssumePWD(std::string_view directory) {
  if (directory == "..") {
    const std::size_t slash = path_.rfind('/');
    path_.resize(slash == std::string::npos ? 0 : slash);
  } else if (directory.starts_with('/')) {
    path_ = directory;
  } else if (directory != ".") {
    if (!path_.ends_with('/')) path_ += '/';
    path_ += directory;
  }
  if (path_.empty()) path_ = "/";
  if (browser_) browser_->SetPath(path_);
}

void MFtp::Quit() {
  UpdateLog("QUIT\n");
  SendLine("QUIT\n");
  if (isDataPending()) ReadResponse();
}

int MFtp::ChangeDir(std::string_view directory) {
  return SendCommand("CWD " + std::string(directory) + "\n");
}

void MFtp::Close() {
  aborted_ = true;
  controlEndpoint_.abort();
  MutexLock hold(reach_);
  if (dataEndpoint_) dataEndpoint_->abort();
  if (lookup_) lookup_->cancel();
}

}  // namespace corvane
