#pragma once

#include <span>

#include "remote/Diagnosis.h"

namespace corvane {

/// What is to be done about what the steps of a diagnosis of `site` have found.
[[nodiscard]] Advice AdviceFor(const Site& site, std::span<const DiagnosisStep> steps);

}  // namespace corvane
