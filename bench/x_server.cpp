#include "bench/x_server.h"

#include <poll.h>
#include <stdlib.h>

#include <csignal>
#include <cstdint>
#include <stdexcept>
#include <string>

namespace tarvo::bench {

namespace {

struct Free {
  void operator()(void* memory) const { free(memory); }
};
using Event = std::unique_ptr<xcb_generic_event_t, Free>;

/// A menu or a tool tip is mapped past the window manager; a program's own window is not.
bool IsWindowMapped(const xcb_generic_event_t& event) {
  constexpr int kSentByClient = 0x80;
  if ((event.response_type & ~kSentByClient) != XCB_MAP_NOTIFY) return false;
  return reinterpret_cast<const xcb_map_notify_event_t&>(event).override_redirect == 0;
}

}  // namespace

XServer::XServer() : server_({"Xvfb", "-displayfd", "1", "-screen", "0", "1600x1200x24", "-nolisten", "tcp"}) {
  std::string number = server_.ReadUntil("\n");
  if (!number.ends_with('\n')) throw std::runtime_error("Xvfb does not start: " + server_.Errors());
  number.pop_back();
  const std::string display = ":" + number;
  setenv("DISPLAY", display.c_str(), 1);
  setenv("QT_QPA_PLATFORM", "xcb", 1);

  int screen = 0;
  connection_.reset(xcb_connect(display.c_str(), &screen));
  if (xcb_connection_has_error(connection_.get()) != 0) throw std::runtime_error("no connection to Xvfb");
  const xcb_window_t root = xcb_setup_roots_iterator(xcb_get_setup(connection_.get())).data->root;
  const std::uint32_t mask = XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY;
  xcb_change_window_attributes(connection_.get(), root, XCB_CW_EVENT_MASK, &mask);
  xcb_flush(connection_.get());
}

XServer::~XServer() {
  connection_.reset();
  // Killed, it would leave its lock and its socket behind.
  server_.Signal(SIGTERM);
  server_.WaitWithin();
}

void XServer::Forget() {
  // The answer to a request comes behind all events that were before it.
  const xcb_get_input_focus_cookie_t cookie = xcb_get_input_focus(connection_.get());
  const std::unique_ptr<xcb_get_input_focus_reply_t, Free> reply(
      xcb_get_input_focus_reply(connection_.get(), cookie, nullptr));
  while (const Event event{xcb_poll_for_event(connection_.get())}) {
  }
}

void XServer::WaitForWindow() {
  constexpr int kPatience = 10'000;
  while (true) {
    while (const Event event{xcb_poll_for_event(connection_.get())}) {
      if (IsWindowMapped(*event)) return;
    }
    pollfd readable{xcb_get_file_descriptor(connection_.get()), POLLIN, 0};
    if (poll(&readable, 1, kPatience) <= 0) throw std::runtime_error("no window appears");
  }
}

}  // namespace tarvo::bench
