// How often a storm's process is killed. What a kill leaves behind does not depend on the sanitizers, which look at each
// way through the code once: their builds, where every process starts slowly, are content with fewer.
#ifndef ZQ_TEST_STORM_ROUNDS_H
#define ZQ_TEST_STORM_ROUNDS_H

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr int kStormRounds = 100;
#else
constexpr int kStormRounds = 1000;
#endif

#endif
