#include "app/DirectSave.h"

#include <xcb/xcb.h>

#include <QGuiApplication>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <string_view>

namespace corvane {
namespace {

constexpr std::uint32_t kMostBytes = 64 * 1024;

struct Free {
  void operator()(void* reply) const { std::free(reply); }  // NOLINT: the library allocates so
};
template <typename Reply>
using ReplyPtr = std::unique_ptr<Reply, Free>;

xcb_connection_t* Display() {
  if (qGuiApp == nullptr || QGuiApplication::platformName() != "xcb") return nullptr;
  const auto* x11 = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
  return x11 == nullptr ? nullptr : x11->connection();
}

xcb_atom_t Atom(xcb_connection_t* display, std::string_view name) {
  const auto cookie =
      xcb_intern_atom(display, 0, static_cast<std::uint16_t>(name.size()), name.data());
  const ReplyPtr<xcb_intern_atom_reply_t> reply(xcb_intern_atom_reply(display, cookie, nullptr));
  return reply == nullptr ? xcb_atom_t{XCB_ATOM_NONE} : reply->atom;
}

xcb_atom_t Property(xcb_connection_t* display) {
  return Atom(display, "XdndDirectSave0");
}

xcb_window_t Owner(xcb_connection_t* display) {
  const auto cookie = xcb_get_selection_owner(display, Atom(display, "XdndSelection"));
  const ReplyPtr<xcb_get_selection_owner_reply_t> reply(
      xcb_get_selection_owner_reply(display, cookie, nullptr));
  return reply == nullptr ? xcb_window_t{XCB_WINDOW_NONE} : reply->owner;
}

}  // namespace

bool DirectSave::Available() {
  return Display() != nullptr;
}

void DirectSave::Propose(const std::string& name) {
  xcb_connection_t* display = Display();
  if (display == nullptr) return;
  const xcb_window_t owner = Owner(display);
  if (owner == XCB_WINDOW_NONE) return;
  xcb_change_property(display, XCB_PROP_MODE_REPLACE, owner, Property(display),
                      Atom(display, "text/plain"), 8, static_cast<std::uint32_t>(name.size()),
                      name.data());
  xcb_flush(display);
}

std::string DirectSave::Read() {
  xcb_connection_t* display = Display();
  if (display == nullptr) return {};
  const auto cookie = xcb_get_property(display, 0, Owner(display), Property(display),
                                       XCB_GET_PROPERTY_TYPE_ANY, 0, kMostBytes / 4);
  const ReplyPtr<xcb_get_property_reply_t> reply(xcb_get_property_reply(display, cookie, nullptr));
  if (reply == nullptr || reply->format != 8 || reply->bytes_after != 0) return {};
  std::string value(static_cast<const char*>(xcb_get_property_value(reply.get())),
                    static_cast<std::size_t>(xcb_get_property_value_length(reply.get())));
  if (value.ends_with('\0')) value.pop_back();  // some targets write the end of their string too
  return value;
}

void DirectSave::Remove() {
  xcb_connection_t* display = Display();
  if (display == nullptr) return;
  const xcb_window_t owner = Owner(display);
  if (owner == XCB_WINDOW_NONE) return;
  xcb_delete_property(display, owner, Property(display));
  xcb_flush(display);
}

}  // namespace corvane
