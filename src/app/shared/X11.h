#pragma once

#include <xcb/xcb.h>

#include <cstdlib>
#include <memory>
#include <string_view>

namespace corvane {

/// What the toolkit leaves to be said to the X server itself. GUI thread.
struct X11 {
  struct Free {
    void operator()(void* reply) const { std::free(reply); }  // NOLINT: the library allocates so
  };
  template <typename Reply>
  using ReplyPtr = std::unique_ptr<Reply, Free>;

  /// The toolkit's connection; null on other platforms.
  [[nodiscard]] static xcb_connection_t* Display();
  [[nodiscard]] static xcb_atom_t Atom(xcb_connection_t* display, std::string_view name);
};

}  // namespace corvane
