// A system that can start no more threads.
#ifndef ZQUTIL_TESTS_NO_MORE_THREADS_H
#define ZQUTIL_TESTS_NO_MORE_THREADS_H

// While it lives zq__beginthread, of which the module finds the test's before the platform's own, starts none.
class NoMoreThreads {
 public:
  NoMoreThreads();
  NoMoreThreads(const NoMoreThreads&) = delete;
  NoMoreThreads& operator=(const NoMoreThreads&) = delete;
  ~NoMoreThreads();
};

#endif
