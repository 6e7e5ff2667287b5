// Code of a test in a process of its own.
#ifndef ZQ_TEST_CHILD_PROCESS_H
#define ZQ_TEST_CHILD_PROCESS_H

#include <signal.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

// Runs the body in a child process, which ends with what the body returns, or is killed with the thread that called: a
// test that breaks off leaves no process behind. A program that the body becomes keeps to that.
template <typename Body>
pid_t InChild(Body body) {
  const pid_t parent = getpid();
  const pid_t child = fork();
  if (child == 0) {
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    if (getppid() != parent) _exit(1);
    _exit(body());
  }
  return child;
}

// The child's exit status, or minus the number of the signal that ended it.
inline int AwaitChild(pid_t child) {
  int status = 0;
  waitpid(child, &status, 0);
  return WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
}

#endif
