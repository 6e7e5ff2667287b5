// An X server of a test's own, without a screen: on this machine also when the test is on a simulated device, on a
// display that it chooses. It ends with this object, and with the thread that made it.
#ifndef ZQ_TEST_X_SERVER_H
#define ZQ_TEST_X_SERVER_H

#include <sys/types.h>

#include <string>

class XServer {
 public:
  // Returns when the server takes connections. Display() is empty when it did not start.
  XServer();
  XServer(const XServer&) = delete;
  XServer& operator=(const XServer&) = delete;
  ~XServer();

  // What $DISPLAY is to be, as ":7".
  const std::string& Display() const { return display_; }
  // Ends the server; the second call does nothing.
  void End();

 private:
  pid_t process_ = -1;
  std::string display_;
};

#endif
