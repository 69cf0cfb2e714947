#include "app/shared/X11.h"

#include <QGuiApplication>
#include <cstdint>

namespace corvane {

xcb_connection_t* X11::Display() {
  if (qGuiApp == nullptr || QGuiApplication::platformName() != "xcb") return nullptr;
  const auto* x11 = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
  return x11 == nullptr ? nullptr : x11->connection();
}

xcb_atom_t X11::Atom(xcb_connection_t* display, std::string_view name) {
  const auto cookie =
      xcb_intern_atom(display, 0, static_cast<std::uint16_t>(name.size()), name.data());
  const ReplyPtr<xcb_intern_atom_reply_t> reply(xcb_intern_atom_reply(display, cookie, nullptr));
  return reply == nullptr ? xcb_atom_t{XCB_ATOM_NONE} : reply->atom;
}

}  // namespace corvane
