// Who has the turn when, of threads that do what they are told one step at a time.
#include "script_turn.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <atomic>
#include <condition_variable>
#include <fstream>
#include <functional>
#include <mutex>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

namespace sorel {
namespace {

class Player {
 public:
  Player() : thread_([this] { Play(); }) {}
  Player(const Player&) = delete;
  Player& operator=(const Player&) = delete;
  ~Player() {
    Do([this] { ended_ = true; });
    thread_.join();
  }

  // To its end.
  void Do(std::function<void()> step) {
    Start(std::move(step));
    Await();
  }
  // Until it sleeps in it.
  void Wait(std::function<void()> step) {
    Start(std::move(step));
    while (!begun_.load()) std::this_thread::yield();
    for (int asleep = 0; asleep < 3; asleep = Sleeps() ? asleep + 1 : 0) usleep(1000);
    EXPECT_FALSE(done_.load());
  }
  // The end of the step that it waits in.
  void Await() const { done_.wait(false); }

 private:
  void Start(std::function<void()> step) {
    const std::lock_guard lock(mutex_);
    step_ = std::move(step);
    begun_.store(false);
    done_.store(false);
    changed_.notify_one();
  }
  void Play() {
    id_.store(gettid());
    while (!ended_) {
      std::unique_lock lock(mutex_);
      changed_.wait(lock, [this] { return step_ != nullptr; });
      const std::function<void()> step = std::move(step_);
      step_ = nullptr;
      lock.unlock();
      begun_.store(true);
      step();
      done_.store(true);
      done_.notify_all();
    }
  }
  bool Sleeps() const {
    std::ifstream file("/proc/self/task/" + std::to_string(id_.load()) + "/stat");
    std::stringstream text;
    text << file.rdbuf();
    // "ID (NAME) STATE ..."
    return text.str().substr(text.str().rfind(')') + 2, 1) == "S";
  }

  std::mutex mutex_;
  std::condition_variable changed_;
  std::function<void()> step_;
  std::atomic<pid_t> id_{0};
  std::atomic<bool> begun_{false};
  std::atomic<bool> done_{true};
  bool ended_ = false;
  std::thread thread_;
};

// The parameter says which of the players is the script thread, which has ways of its own.
class Turn : public testing::TestWithParam<size_t> {
 protected:
  Turn() {
    const std::vector<Player*> players = {&first, &second, &third};
    players[GetParam()]->Do(BecomeScriptThread);
  }
  // Enters, says who it is, and leaves.
  std::function<void()> Visit(const char* name) {
    return [this, name] {
      lock.Enter();
      said += name;
      lock.Leave();
    };
  }

  TurnLock lock;
  std::string said;  // by whoever has the lock
  Player first, second, third;
};

TEST_P(Turn, WhoWaitsHasTheLockBeforeItsHolderHasItAgain) {
  first.Do([this] { lock.Enter(); });
  second.Wait(Visit("second,"));
  first.Do([this] { lock.Resume(lock.Pause()); });
  first.Do([this] { said += "first,"; });
  second.Await();
  EXPECT_EQ(said, "second,first,");
  third.Wait(Visit("third,"));
  first.Do([this] { lock.Leave(); });
  third.Await();
  EXPECT_EQ(said, "second,first,third,");
}

TEST_P(Turn, WhoWaitsToResumeHasTheLockBeforeItsHolderHasItAgain) {
  uint32_t paused = 0;
  first.Do([&] {
    lock.Enter();
    paused = lock.Pause();
  });
  second.Do([&] { lock.Enter(); });
  first.Wait([&] {
    lock.Resume(paused);
    said += "first,";
    lock.Leave();
  });
  second.Do([&] { lock.Leave(); });
  second.Do(Visit("second,"));
  first.Await();
  EXPECT_EQ(said, "first,second,");
}

TEST_P(Turn, ThoseThatWaitHaveTheLockInTheOrderOfTheirComing) {
  Player fourth;
  first.Do([this] { lock.Enter(); });
  fourth.Wait(Visit("fourth,"));
  second.Wait(Visit("second,"));
  third.Wait(Visit("third,"));
  first.Do([this] { lock.Leave(); });
  first.Do(Visit("first,"));
  EXPECT_EQ(said, "fourth,second,third,first,");
}

TEST_P(Turn, PausesEndInTheReverseOrderOfTheirBeginnings) {
  uint32_t older = 0;
  uint32_t younger = 0;
  first.Do([&] {
    lock.Enter();
    older = lock.Pause();
  });
  second.Do([&] {
    lock.Enter();
    younger = lock.Pause();
  });
  first.Wait([&] {
    lock.Resume(older);
    said += "older,";
    lock.Leave();
  });
  third.Do(Visit("free for others,"));
  second.Do([&] {
    lock.Resume(younger);
    said += "younger,";
    lock.Leave();
  });
  first.Await();
  EXPECT_EQ(said, "free for others,younger,older,");
}

TEST_P(Turn, ListenersOfMethodsOfListenersNest) {
  std::vector<uint32_t> pauses;
  for (int depth = 0; depth < 3; ++depth) {
    for (Player* player : {&first, &second}) {
      player->Do([&] {
        lock.Enter();
        pauses.push_back(lock.Pause());
      });
    }
  }
  EXPECT_EQ(pauses, (std::vector<uint32_t>{1, 2, 3, 4, 5, 6}));
  for (int depth = 0; depth < 3; ++depth) {
    for (Player* player : {&second, &first}) {
      player->Do([&] {
        lock.Resume(pauses.back());
        pauses.pop_back();
        lock.Leave();
      });
    }
  }
  first.Do([&] {
    lock.Enter();
    pauses.push_back(lock.Pause());
    lock.Resume(1);
    lock.Leave();
  });
  EXPECT_EQ(pauses, std::vector<uint32_t>{1}) << "none is left";
}

TEST_P(Turn, NobodyWaitsToEnterOnceEntriesAreRefused) {
  bool entered = true;
  const auto enter = [&] { entered = lock.Enter(); };
  first.Do([this] { lock.Enter(); });
  second.Wait(enter);
  third.Do([this] { lock.RefuseEntries(); });
  second.Await();
  EXPECT_FALSE(entered) << "who waited before";
  entered = true;
  third.Do(enter);
  EXPECT_FALSE(entered) << "who comes after";
  first.Do([this] { lock.Leave(); });
  second.Do(enter);
  EXPECT_TRUE(entered) << "who need not wait";
  second.Do([this] { lock.Leave(); });
}

TEST_P(Turn, WhoHasPausedResumesThoughEntriesAreRefused) {
  uint32_t paused = 0;
  first.Do([&] {
    lock.Enter();
    paused = lock.Pause();
  });
  second.Do([this] { lock.Enter(); });
  first.Wait([&] {
    lock.Resume(paused);
    said += "first";
    lock.Leave();
  });
  third.Do([this] { lock.RefuseEntries(); });
  second.Do([this] { lock.Leave(); });
  first.Await();
  EXPECT_EQ(said, "first");
}

TEST_P(Turn, OneThreadOfManyHasIt) {
  constexpr int kRounds = 5000;
  int inside = 0;
  int wrong = 0;
  int entered = 0;
  const auto check = [&] {
    wrong += inside++ != 0 ? 1 : 0;
    ++entered;
    --inside;
  };
  std::atomic<int> ready{0};
  const auto storm = [&] {
    ++ready;
    while (ready.load() < 2) std::this_thread::yield();
    for (int round = 0; round < kRounds; ++round) {
      lock.Enter();
      check();
      const uint32_t paused = lock.Pause();
      if (round % 16 == 0) std::this_thread::yield();
      lock.Resume(paused);
      check();
      lock.Leave();
    }
  };
  std::thread other(storm);
  first.Do(storm);
  other.join();
  EXPECT_EQ(entered, kRounds * 2 * 2);
  EXPECT_EQ(wrong, 0);
}

INSTANTIATE_TEST_SUITE_P(ScriptThreads, Turn, testing::Values(0, 1, 2));

TEST(ScriptTurns, ATurnWithinATurnIsTheSame) {
  const ScriptTurn outer;
  { const ScriptTurn inner; }
  EXPECT_TRUE(outer);
  Player other;
  bool others = true;
  const auto enter = [&others] { others = static_cast<bool>(ScriptTurn()); };
  g_turn.RefuseEntries();
  other.Do(enter);
  EXPECT_FALSE(others);
  {
    const TurnPause pause;
    other.Do(enter);
    EXPECT_TRUE(others) << "while the turn is let go";
    const ScriptTurn again;
    EXPECT_TRUE(again) << "in a listener that the method calls";
    other.Do(enter);
    EXPECT_FALSE(others);
    const TurnPause pauseOfThat;
    other.Do(enter);
    EXPECT_TRUE(others) << "while that calls a method";
  }
  EXPECT_TRUE(outer);
  other.Do(enter);
  EXPECT_FALSE(others);
}

}  // namespace
}  // namespace sorel
