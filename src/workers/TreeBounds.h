#pragma once

#include <cstddef>
#include <cstdint>

namespace corvane {

/// How much of a tree is gone through by one deletion, walk or transfer, on either side. More than
/// any tree that people keep, and little enough that a server that makes directories up ends it
/// before this machine's memory does.
struct TreeBounds {
  std::int64_t entries = 5'000'000;  ///< in all its directories
  std::size_t depth = 128;           ///< levels
};

}  // namespace corvane
