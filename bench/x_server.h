#pragma once

#include <xcb/xcb.h>

#include <chrono>
#include <memory>

#include "support/child_process.h"

namespace tarvo::bench {

/// An X server in memory, for this process and those that it starts. Needs Xvfb.
class XServer {
 public:
  /// Throws when the server does not start.
  XServer();
  XServer(const XServer&) = delete;
  XServer& operator=(const XServer&) = delete;
  ~XServer();

  /// Forgets what was mapped so far.
  void Forget();
  /// Waits until a window of a program is mapped; throws when none is for a while.
  void WaitForWindow();

 private:
  struct Disconnect {
    void operator()(xcb_connection_t* connection) const { xcb_disconnect(connection); }
  };

  test::ChildProcess server_;
  std::unique_ptr<xcb_connection_t, Disconnect> connection_;
};

}  // namespace tarvo::bench
