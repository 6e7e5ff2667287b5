// What a message from thread to thread costs: there and back between two queues, beside the same between two
// threads on bare eventfds (the floor: one system call to wake, one to sleep) and between two GLib main loops
// (what a user would take instead). A trip is two hand-overs in all three. The three take turns in slices of
// one run, and the ratios are medians over the slices, so that what else the machine does touches all three
// alike.
#include <benchmark/benchmark.h>
#include <glib.h>
#include <sys/eventfd.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdint>
#include <semaphore>
#include <thread>
#include <utility>
#include <vector>

#include "zq_memory.h"
#include "zq_msgq.h"

namespace {

constexpr uint32_t kBall = 1000;
constexpr uint32_t kLast = 1001;

// Two threads that hand each other a number over eventfds.
class EventfdPair {
 public:
  EventfdPair() {
    threads_[0] = std::thread([this] { Play(0); });
    threads_[1] = std::thread([this] { Play(1); });
  }
  EventfdPair(const EventfdPair&) = delete;
  EventfdPair& operator=(const EventfdPair&) = delete;
  ~EventfdPair() {
    over_ = true;
    for (const int fd : fds_) eventfd_write(fd, 1);
    for (std::thread& thread : threads_) thread.join();
    for (const int fd : fds_) close(fd);
  }

  void Trips(int count) {
    left_ = 2 * count;
    eventfd_write(fds_[0], 1);
    done_.acquire();
  }

 private:
  void Play(int side) {
    eventfd_t value = 0;
    while (eventfd_read(fds_[side], &value) == 0 && !over_) {
      if (--left_ == 0) {
        done_.release();
      } else {
        eventfd_write(fds_[1 - side], 1);
      }
    }
  }

  const int fds_[2] = {eventfd(0, EFD_CLOEXEC), eventfd(0, EFD_CLOEXEC)};
  std::atomic<bool> over_ = false;
  std::atomic<int> left_ = 0;
  std::binary_semaphore done_{0};
  std::thread threads_[2];
};

class Player : public zq_MsgQ {
 public:
  Player() : zq_MsgQ("player", nullptr) { Create(nullptr, 0); }
  ~Player() override { Destroy(true); }
  void Play(const Player& other) { other_ = other.Handle(); }

  void MessageHandler(MSG_COMMON* message) override {
    const uint32_t type = message->type;
    const uint32_t left = message->param1;
    zq__free(message, __FILE__, __LINE__);
    if (type == kLast || (type == kBall && left == 1)) {
      done_.release();
    } else if (type == kBall) {
      zq__MsgCreateCommonAndSend(other_, 0, kBall, left - 1, 0, 0, false, 0, __FILE__, __LINE__);
    }
  }
  std::binary_semaphore& Done() { return done_; }

 private:
  uint32_t other_ = 0;
  std::binary_semaphore done_{0};
};

class QueuePair {
 public:
  QueuePair() {
    one_.Play(two_);
    two_.Play(one_);
  }
  void Trips(int count) {
    zq__MsgCreateCommonAndSend(one_.Handle(), 0, kBall, static_cast<uint32_t>(2 * count), 0, 0, false, 0,
                               __FILE__, __LINE__);
    two_.Done().acquire();
  }

 private:
  Player one_;
  Player two_;
};

// A GLib main loop in a thread of its own.
class Loop {
 public:
  Loop() : thread_([this] { Run(); }) {}
  Loop(const Loop&) = delete;
  Loop& operator=(const Loop&) = delete;
  ~Loop() {
    g_main_context_invoke(context_, &Loop::Quit, loop_);
    thread_.join();
    g_main_loop_unref(loop_);
    g_main_context_unref(context_);
  }
  void Invoke(GSourceFunc function, void* data) { g_main_context_invoke(context_, function, data); }

 private:
  void Run() {
    g_main_context_push_thread_default(context_);
    g_main_loop_run(loop_);
    g_main_context_pop_thread_default(context_);
  }
  static gboolean Quit(void* loop) {
    g_main_loop_quit(static_cast<GMainLoop*>(loop));
    return G_SOURCE_REMOVE;
  }

  GMainContext* const context_ = g_main_context_new();
  GMainLoop* const loop_ = g_main_loop_new(context_, FALSE);
  std::thread thread_;
};

class GlibPair {
 public:
  void Trips(int count) {
    left_ = 2 * count;
    loops_[0].Invoke(&GlibPair::Play, this);
    done_.acquire();
  }

 private:
  static gboolean Play(void* data) {
    auto* const self = static_cast<GlibPair*>(data);
    if (--self->left_ == 0) {
      self->done_.release();
    } else {
      self->loops_[self->left_ % 2].Invoke(&GlibPair::Play, self);
    }
    return G_SOURCE_REMOVE;
  }

  std::atomic<int> left_ = 0;
  std::binary_semaphore done_{0};
  Loop loops_[2];
};

double SecondsOf(const auto& work) {
  const auto start = std::chrono::steady_clock::now();
  work();
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

double Median(std::vector<double> values) {
  const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
  std::nth_element(values.begin(), middle, values.end());
  return *middle;
}

void ThereAndBack(benchmark::State& state) {
  constexpr int kTrips = 500;
  EventfdPair eventfds;
  QueuePair queues;
  GlibPair glib;
  std::vector<double> floor, ours, theirs, overFloor, overGlib;
  while (state.KeepRunning()) {
    floor.push_back(SecondsOf([&] { eventfds.Trips(kTrips); }) / kTrips * 1e6);
    ours.push_back(SecondsOf([&] { queues.Trips(kTrips); }) / kTrips * 1e6);
    theirs.push_back(SecondsOf([&] { glib.Trips(kTrips); }) / kTrips * 1e6);
    overFloor.push_back(ours.back() / floor.back());
    overGlib.push_back(ours.back() / theirs.back());
  }
  state.counters["eventfd_us"] = Median(std::move(floor));
  state.counters["queue_us"] = Median(std::move(ours));
  state.counters["glib_us"] = Median(std::move(theirs));
  state.counters["queue/eventfd"] = Median(std::move(overFloor));
  state.counters["queue/glib"] = Median(std::move(overGlib));
}
BENCHMARK(ThereAndBack)->Iterations(200)->Unit(benchmark::kMillisecond)->UseRealTime();

gboolean Ignore(void* /*data*/) {
  return G_SOURCE_REMOVE;
}

gboolean Release(void* done) {
  static_cast<std::binary_semaphore*>(done)->release();
  return G_SOURCE_REMOVE;
}

// A million posts as fast as one thread can, until the last is handled; beside as many to a GLib loop.
void Burst(benchmark::State& state) {
  constexpr uint32_t kPosts = 1'000'000;
  std::vector<double> ours, theirs, ratio;
  while (state.KeepRunning()) {
    Player queue;
    ours.push_back(
        SecondsOf([&] {
          for (uint32_t i = 0; i < kPosts; ++i) {
            zq__MsgCreateCommonAndSend(queue.Handle(), 0, kBall + 2, i, 0, 0, false, 0, __FILE__, __LINE__);
          }
          zq__MsgCreateCommonAndSend(queue.Handle(), 0, kLast, 0, 0, 0, false, 0, __FILE__, __LINE__);
          queue.Done().acquire();
        }) /
        kPosts * 1e9);
    Loop loop;
    std::binary_semaphore done{0};
    theirs.push_back(SecondsOf([&] {
                       for (uint32_t i = 0; i < kPosts; ++i) loop.Invoke(&Ignore, nullptr);
                       loop.Invoke(&Release, &done);
                       done.acquire();
                     }) /
                     kPosts * 1e9);
    ratio.push_back(ours.back() / theirs.back());
  }
  state.counters["queue_ns"] = Median(std::move(ours));
  state.counters["glib_ns"] = Median(std::move(theirs));
  state.counters["queue/glib"] = Median(std::move(ratio));
}
BENCHMARK(Burst)->Iterations(3)->Unit(benchmark::kMillisecond)->UseRealTime();

}  // namespace

BENCHMARK_MAIN();
