// A port where connections are neither made nor refused.
#ifndef ZQWWW_TEST_BLACKHOLE_H
#define ZQWWW_TEST_BLACKHOLE_H

#include <vector>

class Blackhole {
 public:
  Blackhole();
  Blackhole(const Blackhole&) = delete;
  Blackhole& operator=(const Blackhole&) = delete;
  ~Blackhole();
  int Port() const { return port_; }

 private:
  int listener_;
  int port_ = 0;
  std::vector<int> crowd_;  // the connections that fill its queue
};

#endif
