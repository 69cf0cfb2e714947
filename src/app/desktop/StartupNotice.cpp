#include "app/desktop/StartupNotice.h"

#include <QWidget>
#include <algorithm>
#include <charconv>
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "app/shared/X11.h"

namespace corvane {
namespace {

xcb_client_message_event_t MessageTo(xcb_window_t window, xcb_atom_t type, std::uint8_t format) {
  xcb_client_message_event_t event{};
  event.response_type = XCB_CLIENT_MESSAGE;
  event.format = format;
  event.window = window;
  event.type = type;
  return event;
}

void SendToRoot(xcb_connection_t* display, std::uint32_t mask,
                const xcb_client_message_event_t& event) {
  const xcb_window_t root = xcb_setup_roots_iterator(xcb_get_setup(display)).data->root;
  xcb_send_event(display, 0, root, mask, reinterpret_cast<const char*>(&event));
}

/// Says "remove: ID=..." in pieces of 20 bytes, the last with a NUL (freedesktop.org, startup
/// notification).
void TellThatItIsOver(xcb_connection_t* display, xcb_window_t window, std::string_view id) {
  std::string text = "remove: ID=\"";
  for (const char byte : id) {
    if (byte == '"' || byte == '\\') text += '\\';
    text += byte;
  }
  text += '"';
  text += '\0';
  const char* type = "_NET_STARTUP_INFO_BEGIN";
  for (std::size_t at = 0; at < text.size(); at += sizeof(xcb_client_message_data_t::data8)) {
    auto event = MessageTo(window, X11::Atom(display, type), 8);
    text.copy(reinterpret_cast<char*>(event.data.data8), sizeof event.data.data8, at);
    SendToRoot(display, XCB_EVENT_MASK_PROPERTY_CHANGE, event);
    type = "_NET_STARTUP_INFO";
  }
}

/// The time of the user's act, which ends the id; 0 when it has none.
std::uint32_t TimeIn(std::string_view id) {
  constexpr std::string_view kMark = "_TIME";
  const std::size_t at = id.rfind(kMark);
  std::uint32_t time = 0;
  if (at != id.npos) std::from_chars(id.data() + at + kMark.size(), id.data() + id.size(), time);
  return time;
}

/// The toolkit would name the time of this program's last event, after which the user may have
/// worked elsewhere: the window manager then keeps the window back.
void Activate(xcb_connection_t* display, xcb_window_t window, std::uint32_t time) {
  constexpr std::uint32_t kFromApplication = 1;
  auto event = MessageTo(window, X11::Atom(display, "_NET_ACTIVE_WINDOW"), 32);
  event.data.data32[0] = kFromApplication;
  event.data.data32[1] = time;
  SendToRoot(display, XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY | XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT,
             event);
}

}  // namespace

std::string StartupNotice::Id() {
  for (const char* name : {"XDG_ACTIVATION_TOKEN", "DESKTOP_STARTUP_ID"}) {
    const char* const value = std::getenv(name);
    const std::string_view id = value != nullptr ? value : "";
    if (!id.empty() && id.size() <= kLongest) return std::string(id);
  }
  return {};
}

void StartupNotice::Complete(const std::string& id, QWidget* window) {
  if (id.empty()) return;
  if (xcb_connection_t* display = X11::Display(); display != nullptr) {
    const auto shown = static_cast<xcb_window_t>(window->winId());
    TellThatItIsOver(display, shown, id);
    if (const std::uint32_t time = TimeIn(id); time != 0) Activate(display, shown, time);
    xcb_flush(display);
    return;
  }
  // The toolkit takes it from there, on Wayland, when a window is activated.
  qputenv("XDG_ACTIVATION_TOKEN", QByteArray::fromStdString(id));
  window->activateWindow();
}

}  // namespace corvane
