#pragma once

#include <string>

#include "remote/BrowserUi.h"
#include "remote/Loss.h"
#include "remote/Outcome.h"

namespace corvane {

class RemoteSession;

/// What a browser window is told of its connection, in words. Worker threads.

/// Tells the user of an operation that was not done: a warning, or that the connection is gone.
void TellOutcome(BrowserUi& window, const RemoteSession& session, const Outcome& outcome);

/// Tells the user that the connection to `host` is gone ('LOST'), and why. `login` says why logging
/// in anew failed; empty where that was not tried.
void TellLoss(BrowserUi& window, const std::string& host, const Loss& loss, const Text& login = {});

/// Warns the user ('GERR').
void Warn(BrowserUi& window, const Text& text);

/// Warns the user that a directory cannot be entered ('GERR' with its "path").
void WarnOfPath(BrowserUi& window, const std::string& path, const Outcome& outcome);

/// What mostly helps where a connection did not come about; empty where nothing is known.
[[nodiscard]] Text AdviceFor(const Outcome& outcome);

/// How a connection was lost, in one sentence.
[[nodiscard]] Text ReasonOf(const Loss& loss);

/// That a connection was lost in this way, and stands again.
[[nodiscard]] Text LoggedInAnew(const Loss& loss);

}  // namespace corvane
