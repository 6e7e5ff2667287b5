// The lock behind the script's turn: one that is let go in the middle. Any thread.
//
//   free --Enter--> held --Leave--> free
//                   held --Pause--> free, one pause more --Resume--> held, one pause less
//
// Pauses end in the reverse order of their beginnings, whatever their threads, as the engine's own do: a thread that
// resumed before a younger pause has ended would hold the lock while the engine makes it wait for just that pause.
//
// First come, first served among those that can be: a thread that waits is handed the lock by the next that lets go,
// which then waits behind it. So a loop of method calls keeps no listener waiting, nor the other way round.
//
// The script thread has the lock nearly always, and pauses for each method that a script calls. As long as no other
// thread is about, it does so by its own word alone, without the mutex: it writes the word and reads whether there are
// others, a thread that comes says that it is there and reads the word, so that not both can miss each other.
#ifndef SOREL_TURN_LOCK_H
#define SOREL_TURN_LOCK_H

#include <atomic>
#include <cstdint>
#include <mutex>

#include "script_thread.h"

namespace sorel {

class TurnLock {
 public:
  // False when it would have had to wait, and nobody may any more.
  bool Enter() { return (OnScriptThread() && TakeAlone()) || Await(kAnyPauses); }
  void Leave() {
    if (!HeldAlone()) return LeaveAmongOthers();
    own_.exchange(own_.load(std::memory_order_relaxed) - kHeld);
    if (others_.load() != 0) Serve();
  }
  // What Resume takes; never 0.
  uint32_t Pause() {
    if (!HeldAlone()) return PauseAmongOthers();
    const uint32_t word = own_.load(std::memory_order_relaxed) - kHeld + kPause;
    own_.exchange(word);
    if (others_.load() != 0) Serve();
    return word / kPause;
  }
  void Resume(uint32_t pauses) {
    if (OnScriptThread() && TakeAlone()) {
      own_.store(own_.load(std::memory_order_relaxed) - kPause, std::memory_order_relaxed);
    } else {
      Await(pauses);
    }
  }
  // From now on nobody waits to enter: those that do give up. Who has paused still resumes.
  void RefuseEntries();

 private:
  // A thread in the queue; on its stack.
  struct Waiter;

  static constexpr uint32_t kHeld = 1;
  static constexpr uint32_t kPause = 2;
  static constexpr uint32_t kAnyPauses = 0;

  bool HeldAlone() const { return OnScriptThread() && (own_.load(std::memory_order_relaxed) & kHeld) != 0; }
  // The script thread: true, and it has the lock, when no other thread is about.
  bool TakeAlone() {
    const uint32_t word = own_.load(std::memory_order_relaxed);
    own_.exchange(word + kHeld);
    if (others_.load() == 0) return true;
    own_.store(word, std::memory_order_release);
    return false;
  }
  void LeaveAmongOthers();
  uint32_t PauseAmongOthers();
  // Until the lock is free, with as many pauses as `pauses` says, and the caller's.
  bool Await(uint32_t pauses);
  void Serve();

  // With the mutex.
  uint32_t Pauses() const { return own_.load() / kPause + pausesOfOthers_; }
  // Hands a free lock to the first that can have it.
  void HandOver();
  void Remove(const Waiter* waiter);

  // Of the script thread: its pauses, and whether it holds the lock without the mutex.
  std::atomic<uint32_t> own_{0};
  // Other threads that hold the lock, have paused, or wait.
  std::atomic<uint32_t> others_{0};

  std::mutex mutex_;
  bool held_ = false;            // by whichever thread, among others
  uint32_t pausesOfOthers_ = 0;  // of other threads than the script's
  Waiter* first_ = nullptr;
  bool refuses_ = false;
};

}  // namespace sorel

#endif
