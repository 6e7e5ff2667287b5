// How a thread that may outlive the singleton uses it: the singleton's end waits for the holds that threads have on it,
// and none can be had once it has begun. A hold is for work that ends by itself; the engine is not called under it,
// because the thread that waits is the script thread.
#ifndef ZQUTIL_SINGLETON_HOLD_H
#define ZQUTIL_SINGLETON_HOLD_H

class ZQUtil;

class SingletonHold {
 public:
  // Of the singleton at that address, if it is the living one. Any thread.
  explicit SingletonHold(void* singleton);
  SingletonHold(const SingletonHold&) = delete;
  SingletonHold& operator=(const SingletonHold&) = delete;
  ~SingletonHold();

  explicit operator bool() const { return singleton_ != nullptr; }
  ZQUtil* operator->() const { return singleton_; }

 private:
  ZQUtil* singleton_;
};

// The singleton is whole: holds can be had. The thread that builds it.
void BeginSingletonHolds(ZQUtil* singleton);
// None can be had from now on; returns when the last is given back. Script thread.
void EndSingletonHolds();

#endif
