#include <algorithm>
#include <utility>

#include "ftp/EngineLease.h"
#include "ftp/MFtp.h"
#include "net/NLException.h"
#include "net/NLLookup.h"
#include "util/ErrorText.h"

namespace corvane {

EngineLease::EngineLease(MFtp& engine) : hold_(engine.lease_) {}

std::string Reason(const NLException& error) {
  const std::string_view message = error.message;
  constexpr std::string_view kMarker = " failed: ";
  const std::size_t marker = message.find(kMarker);
  return std::string(marker == std::string_view::npos ? message
                                                      : message.substr(marker + kMarker.size()));
}

void SendAll(NLEndpoint& endpoint, std::string_view bytes) {
  while (!bytes.empty()) {
    const long sent = endpoint.send(bytes.data(), bytes.size());
    bytes.remove_prefix(static_cast<std::size_t>(sent));
  }
}

MFtp::MFtp(std::string host, std::uint16_t port, const std::string& user,
           const std::string& password, bool passive)
    : host_(std::move(host)),
      port_(port),
      userCommand_("USER " + user + "\n"),
      passCommand_("PASS " + password + "\n"),
      passive_(passive),
      controlEndpoint_(NLEndpoint::stream),
      replies_(controlEndpoint_) {}

MFtp::MFtp(std::string host, std::uint16_t port, const std::string& user,
           const std::string& password, bool passive, std::shared_ptr<BrowserUi> browser)
    : MFtp(std::move(host), port, user, password, passive) {
  browser_ = std::move(browser);
}

MFtp::MFtp(std::string host, std::uint16_t port, const std::string& user,
           const std::string& password, bool passive, std::shared_ptr<TransferUi> row)
    : MFtp(std::move(host), port, user, password, passive) {
  row_ = std::move(row);
}

MFtp::~MFtp() = default;

OwnerUi& MFtp::Owner() const {
  return browser_ ? static_cast<OwnerUi&>(*browser_) : static_cast<OwnerUi&>(*row_);
}

// A command with its line feed made the full line end that strict servers wait for.
std::string MFtp::WithLineEnd(std::string_view command) {
  std::string line(command.substr(0, command.size() - 1));
  if (!line.ends_with('\r')) line += '\r';
  return line + '\n';
}

bool MFtp::IsOneLine(std::string_view command) {
  constexpr std::string_view kForbidden("\r\n\0", 3);
  const std::string_view body = command.substr(0, command.empty() ? 0 : command.size() - 1);
  // "LIST\r\n" is a command of the engine's own, complete with its line end.
  const bool complete = body == "LIST\r";
  if (command.ends_with('\n') && (complete || body.find_first_of(kForbidden) == body.npos))
    return true;
  Fail("A name or text with a line break cannot be sent to the server.");
  Warn("A name or text with a line break cannot be sent to the server.\n");
  return false;
}

int MFtp::Send(std::string_view command) {
  if (!IsOneLine(command)) return 0;
  ReadOwedReply();
  SendControl(command);
  return 1;
}

int MFtp::SendCommand(std::string_view command) {
  if (!IsOneLine(command)) return 0;
  UpdateLog(command);
  SendLine(command);
  const int code = ReadResponse();
  if (command == BINARY) binary_ = code >= 200 && code < 300;
  return code;
}

int MFtp::SendPassword(std::string_view command) {
  if (!IsOneLine(command)) return 0;
  UpdateLog("PASS\n");
  SendLine(command);
  return ReadResponse();
}

std::string MFtp::ReturnResponse(std::string_view command) {
  if (!IsOneLine(command)) return {};
  UpdateLog(command);
  SendLine(command);
  return ReadReply().text;
}

int MFtp::ReadResponse() {
  return ReadReply().code;
}

void MFtp::SendLine(std::string_view command) {
  ReadOwedReply();
  SendControl(WithLineEnd(command));
}

void MFtp::SendControl(std::string_view bytes) {
  if (lost_) {
    throw NLException("MFtp::SendControl",
                      lostWhy_.empty() ? "The connection is closed" : lostWhy_);
  }
  try {
    SendAll(controlEndpoint_, bytes);
  } catch (const NLException&) {
    lost_ = true;
    throw;
  }
}

Reply MFtp::ReadReply() {
  try {
    Reply reply = replies_.Read([this](std::string_view line) { UpdateLog(line); });
    lastReplyText_ = reply.lastText;
    lastCode_ = reply.code;
    if (reply.code == 421) {
      lost_ = true;
      lostWhy_ = lastReplyText_;
      controlEndpoint_.close();
    }
    return reply;
  } catch (const NLException&) {
    if (replies_.GaveUp()) {
      ++owedReplies_;
    } else {
      lost_ = true;
      controlEndpoint_.close();
    }
    throw;
  }
}

void MFtp::ReadOwedReply() {
  while (owedReplies_ > 0) {
    --owedReplies_;
    const int code = ReadReply().code;
    // The completion follows.
    if (code >= 100 && code < 200) ++owedReplies_;
    if (owedReplies_ > 0 || !std::exchange(returnOwed_, false)) continue;
    if (code < 200 || code >= 300) GiveUp("The server does not lead back to its directory");
  }
}

void MFtp::GiveUp(std::string_view why) {
  lost_ = true;
  controlEndpoint_.close();
  throw NLException("MFtp::GiveUp", why);
}

void MFtp::HurryWhen(const std::atomic<bool>* cancelled) {
  hurry_ = cancelled;
  replies_.HurryWhen(cancelled, silenceLimit);
}

void MFtp::ReadPendingReplies() {
  for (int i = 0; i < 2 && isDataPending(); ++i) {
    if (owedReplies_ > 0)
      ReadOwedReply();
    else
      (void)ReadReply();
  }
}

int MFtp::CheckResult(int code) {
  switch (code) {
    case 120:
    case 125:
    case 150:
    case 200:
    case 211:
    case 212:
    case 213:
    case 214:
    case 215:
    case 220:
    case 221:
    case 225:
    case 226:
    case 227:
    case 230:
    case 250:
    case 257:
    case 350: return 1;
    case 421:
      warned_ = true;
      PostLost("Service not available, closing control connection!\n");
      return 0;
    case 425: return 0;
    case 426:
    case 450:
    case 451:
    case 452:
    case 500:
    case 501: Warn("Error in parameters\n"); return 0;
    case 502: Warn("Command not implemented!\n"); return 0;
    case 503: Warn("Bad sequence of commands!\n"); return 0;
    case 504: Warn(lastReplyText_); return 0;
    case 530:
    case 532:
    case 550:
      // A transfer on this connection, which disables the listing, makes its directories; one that
      // is there already is as good as made.
      if (browser_ && lastReplyText_.find("already exists.") != std::string::npos &&
          !browser_->IsListingEnabled())
        return 1;
      Warn(lastReplyText_);
      return 0;
    case 551:
    case 552:
    case 553: return 0;
    default: return code;
  }
}

bool MFtp::Accepted(int code, std::string_view failed) {
  warned_ = false;
  const int result = CheckResult(code);
  if (result == 1 || (result != 0 && code < 400)) return true;
  if (!warned_) Warn(std::string(failed).append("\n\n").append(lastReplyText_));
  return false;
}

bool MFtp::Succeeded(int code, std::string_view failed, int kind) {
  if (code / 100 == kind) return true;
  if (code == 421) {
    ReportGone();
  } else if (code != 0) {
    Warn(std::string(failed).append("\n\n").append(lastReplyText_));
  }
  return false;
}

void MFtp::Warn(std::string_view text) {
  warned_ = true;
  if (!browser_) return;
  Message warning("GERR"_what);
  warning.AddString("warning", text);
  browser_->PostMessage(std::move(warning));
}

void MFtp::UpdateLog(std::string_view text) {
  if (browser_) browser_->AppendLog(text);
}

bool MFtp::UpdateStatus(std::string_view text) {
  if (browser_) return browser_->SetStatus(text);
  row_->SetLabel(text);
  return true;
}

bool MFtp::isDataPending() {
  constexpr long kMilliseconds = 700;
  return controlEndpoint_.isDataPending(kMilliseconds);
}

void MFtp::Fail(std::string_view why) {
  failure_ = why;
  while (failure_.ends_with('\n')) failure_.pop_back();
}

void MFtp::FailFrom(const NLException& error) {
  Fail(Reason(error));
}

void MFtp::ReportLost(const NLException& error) {
  lost_ = true;
  controlEndpoint_.close();
  if (aborted_) return;
  FailFrom(error);
  lostWhy_ = failure_;
  ReportGone();
}

void MFtp::ReportGone() {
  std::string text = "The connection to " + host_ + " was lost.\n";
  std::string_view why = lostWhy_;
  while (why.ends_with('\n') || why.ends_with('.')) why.remove_suffix(1);
  if (!why.empty()) text.append("\n").append(why).append(".\n");
  PostLost(text);
}

void MFtp::PostLost(std::string_view text) {
  if (!browser_) return;
  UpdateStatus("Connection lost.");
  Message lost("LOST"_what);
  lost.AddString("warning", text);
  browser_->PostMessage(std::move(lost));
}

}  // namespace corvane
