#pragma once

#include "app/shared/Alerts.h"
#include "remote/UserQuestion.h"

namespace corvane {

/// What a session asks its user, as an alert.
[[nodiscard]] Alerts::Question AlertFor(const UserQuestion::Subject& subject);

/// The answer that a button of that alert gives, with or without its check box set.
[[nodiscard]] UserQuestion::Answer AnswerOf(UserQuestion::Kind kind, int button, bool ticked);

}  // namespace corvane
