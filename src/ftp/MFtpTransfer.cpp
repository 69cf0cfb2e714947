#include <algorithm>
#include <charconv>
#include <vector>

#include "ftp/MFtp.h"
#include "ftp/TransferPump.h"
#include "net/NLException.h"
#include "settings/ProcessSettings.h"
#include "util/ErrorText.h"
#include "util/LocalFile.h"

namespace corvane {

// The frame of every transfer: opens the data connection, lets `move` do its work on it, closes it
// and hears the server's verdict. 1 only when both the data and the verdict are good.
int MFtp::Transfer(const std::string& command, const std::atomic<bool>& cancelled,
                   const std::function<bool()>& move) {
  failure_.clear();
  try {
    const DataState state = OpenData(command, command, cancelled);
    if (state == DataState::Refused) {
      DropRefused();
      return lost_ || cancelled ? -1 : 0;
    }
    bool moved = false;
    std::string why = failure_;
    if (state == DataState::Open) {
      try {
        moved = move();
        why = failure_;
      } catch (const NLException& error) {
        why = Reason(error);
      }
    }
    if (cancelled) {
      // The server may be silent for long; its answer is taken when it comes.
      DataCommClose();
      if (completionDue_ && !isDataPending()) {
        completionDue_ = false;
        ++owedReplies_;
      }
      why = "Cancelled.";
    }
    const bool confirmed = FinishData();
    if (moved && confirmed && !cancelled) return 1;
    // Where the data broke off the server mostly knows why, as when its disk is full.
    if (cancelled || localFailure_ || confirmed) Fail(why);
    return -1;
  } catch (const NLException& error) {
    if (cancelled)
      Fail("Cancelled.");
    else if (!localFailure_)
      FailFrom(error);
    DataCommClose();
    return -1;
  }
}

int MFtp::Download(TransferUi& row, LocalFile& file, DownloadJob job,
                   const std::atomic<bool>& cancelled) {
  const int result = Fetch(row, file, job, cancelled);
  if (!ignoredOffset_ || cancelled || lost_) return result;
  job.offset = 0;
  job.empty = true;
  row.Progress().start = 0;
  try {
    return PrepareTransfer() ? Fetch(row, file, job, cancelled) : -1;
  } catch (const NLException& error) {
    FailFrom(error);
    return -1;
  }
}

int MFtp::Fetch(TransferUi& row, LocalFile& file, const DownloadJob& job,
                const std::atomic<bool>& cancelled) {
  localFailure_ = false;
  ignoredOffset_ = false;
  std::int64_t received = 0;
  const int result = Transfer("RETR " + job.name + "\n", cancelled, [&] {
    const bool moved = Receive(row, file, job, cancelled);
    received = row.Progress().done;
    return moved;
  });
  if (result != 1) return result;
  try {
    return CameWhole(job, received) ? 1 : -1;
  } catch (const NLException& error) {
    FailFrom(error);
    return -1;
  }
}

bool MFtp::Receive(TransferUi& row, LocalFile& file, const DownloadJob& job,
                   const std::atomic<bool>& cancelled) {
  auto failed = [this](int error) {
    if (error == 0) return false;
    localFailure_ = true;
    Fail("Could not write the file: " + ErrorText(error));
    return true;
  };
  if (job.empty && failed(file.StartAfresh())) return false;
  const bool bounded = job.offset > 0 && job.expected >= 0;
  std::int64_t room = job.expected - job.offset;
  NLEndpoint* endpoint = DataEndpoint();
  TransferPump pump(row.Progress(), ProcessSettings::Get().buffersize);
  while (endpoint != nullptr && !cancelled) {
    const std::span<char> buffer = pump.Buffer();
    const long count = endpoint->recv(buffer.data(), buffer.size());
    if (count <= 0) return !cancelled && !aborted_;
    const auto bytes = static_cast<std::size_t>(count);
    room -= count;
    if (bounded && room < 0) {
      // It is the whole file that comes: what was written of it must not stay in the middle.
      if (failed(file.StartAfresh())) return false;
      ignoredOffset_ = true;
      Fail("The server does not resume.");
      return false;
    }
    if (failed(file.Write(buffer.first(bytes)))) return false;
    pump.Count(bytes);
    pump.Grow(bytes);
  }
  return false;
}

// A file shorter than listed may have shrunk since; the server is asked once.
bool MFtp::CameWhole(const DownloadJob& job, std::int64_t received) {
  const std::int64_t have = job.offset + received;
  if (job.expected < 0 || have == job.expected) return true;
  // One that is resumed never gets longer than listed.
  if (have > job.expected || GetFileSize(job.name) == have) return true;
  Fail("Only " + std::to_string(have) + " of " + std::to_string(job.expected) + " bytes came.");
  return false;
}

int MFtp::Upload(TransferUi& row, LocalFile& file, const std::string& name,
                 const std::atomic<bool>& cancelled) {
  localFailure_ = false;
  return Transfer("STOR " + name + "\n", cancelled, [&] { return SendFile(row, file, cancelled); });
}

bool MFtp::SendFile(TransferUi& row, LocalFile& file, const std::atomic<bool>& cancelled) {
  std::int64_t missing = file.InitialSize() - file.Position();
  NLEndpoint* endpoint = DataEndpoint();
  TransferPump pump(row.Progress(), ProcessSettings::Get().buffersize);
  while (endpoint != nullptr && !cancelled) {
    std::size_t count = 0;
    const std::span<char> buffer = pump.Buffer();
    if (const int error = file.Read(buffer, count); error != 0) {
      row.SetTrailing("  *Could not open file for reading!*");
      localFailure_ = true;
      Fail("Could not read the file: " + ErrorText(error));
      return false;
    }
    if (count == 0) {
      if (missing <= 0) return true;
      localFailure_ = true;
      Fail("The file became shorter while it was being sent.");
      return false;
    }
    missing -= static_cast<std::int64_t>(count);
    SendAll(*endpoint, std::string_view(buffer.data(), count));
    pump.Count(count);
    pump.Grow(count);
  }
  return false;
}

std::int64_t MFtp::GetFileSize(std::string_view name) {
  const std::string reply = ReturnResponse("SIZE " + std::string(name) + "\n");
  if (ReplyCode(reply, 0) != 213) return -1;
  const std::size_t digits = reply.find_first_not_of(' ', reply.find(' '));
  std::int64_t size = -1;
  if (digits != std::string::npos)
    std::from_chars(reply.data() + digits, reply.data() + reply.size(), size);
  return size;
}

int MFtp::ViewFile(const std::string& name) {
  if (!browser_ || !SetUpData()) return 0;
  const std::string command = "RETR " + name + "\n";
  const DataState state = OpenData(command, command, aborted_);
  if (state == DataState::Refused) {
    DropRefused();
    return 0;
  }
  if (state == DataState::Open) {
    const auto viewer = browser_->OpenViewer(name);
    std::string missing;
    try {
      if (viewer) FillViewer(*viewer);
    } catch (const NLException& error) {
      missing = Reason(error);
    }
    const auto end = [&viewer](const std::string& why) {
      if (viewer) viewer->End(why.empty() ? "" : "The file is not complete: " + why);
    };
    try {
      if (!FinishData() && missing.empty()) missing = failure_;
    } catch (const NLException& error) {
      end(missing.empty() ? Reason(error) : missing);
      throw;
    }
    end(missing);
    return 1;
  }
  Warn("\"" + name + "\" cannot be shown: " + failure_ + "\n");
  FinishData();
  return 1;
}

// Until the data ends, or the text window has enough or is closed.
void MFtp::FillViewer(TextSink& viewer) {
  constexpr long kStep = 250;  // milliseconds
  NLEndpoint* endpoint = DataEndpoint();
  std::vector<char> buffer(std::size_t{64} * 1024);
  while (endpoint != nullptr) {
    for (long waited = 0; waited < silenceLimit && !endpoint->isDataPending(kStep);
         waited += kStep) {
      if (!viewer.Append({})) return;
    }
    const long count = endpoint->recv(buffer.data(), buffer.size());
    if (count <= 0) return;
    const auto end = std::remove(buffer.begin(), buffer.begin() + count, '\r');
    if (!viewer.Append({buffer.data(), static_cast<std::size_t>(end - buffer.begin())})) return;
  }
}

}  // namespace corvane
