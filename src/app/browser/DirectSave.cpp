#include "app/browser/DirectSave.h"

#include <cstdint>

#include "app/shared/X11.h"

namespace corvane {
namespace {

constexpr std::uint32_t kMostBytes = 64 * 1024;

xcb_atom_t Property(xcb_connection_t* display) {
  return X11::Atom(display, "XdndDirectSave0");
}

xcb_window_t Owner(xcb_connection_t* display) {
  const auto cookie = xcb_get_selection_owner(display, X11::Atom(display, "XdndSelection"));
  const X11::ReplyPtr<xcb_get_selection_owner_reply_t> reply(
      xcb_get_selection_owner_reply(display, cookie, nullptr));
  return reply == nullptr ? xcb_window_t{XCB_WINDOW_NONE} : reply->owner;
}

}  // namespace

bool DirectSave::Available() {
  return X11::Display() != nullptr;
}

void DirectSave::Propose(const std::string& name) {
  xcb_connection_t* display = X11::Display();
  if (display == nullptr) return;
  const xcb_window_t owner = Owner(display);
  if (owner == XCB_WINDOW_NONE) return;
  xcb_change_property(display, XCB_PROP_MODE_REPLACE, owner, Property(display),
                      X11::Atom(display, "text/plain"), 8, static_cast<std::uint32_t>(name.size()),
                      name.data());
  xcb_flush(display);
}

std::string DirectSave::Read() {
  xcb_connection_t* display = X11::Display();
  if (display == nullptr) return {};
  const auto cookie = xcb_get_property(display, 0, Owner(display), Property(display),
                                       XCB_GET_PROPERTY_TYPE_ANY, 0, kMostBytes / 4);
  const X11::ReplyPtr<xcb_get_property_reply_t> reply(
      xcb_get_property_reply(display, cookie, nullptr));
  if (reply == nullptr || reply->format != 8 || reply->bytes_after != 0) return {};
  std::string value(static_cast<const char*>(xcb_get_property_value(reply.get())),
                    static_cast<std::size_t>(xcb_get_property_value_length(reply.get())));
  if (value.ends_with('\0')) value.pop_back();  // some targets write the end of their string too
  return value;
}

void DirectSave::Remove() {
  xcb_connection_t* display = X11::Display();
  if (display == nullptr) return;
  const xcb_window_t owner = Owner(display);
  if (owner == XCB_WINDOW_NONE) return;
  xcb_delete_property(display, owner, Property(display));
  xcb_flush(display);
}

}  // namespace corvane
