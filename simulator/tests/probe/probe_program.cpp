#include <dlfcn.h>
#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>

#include "probe.h"

namespace {

char kName[] = "program";
char* kArguments[] = {kName, nullptr};

bool Ended(pid_t child) {
  int status = 0;
  return waitpid(child, &status, 0) == child && WIFEXITED(status) && WEXITSTATUS(status) == kProgramStatus;
}

template <typename Execute>
bool Runs(Execute execute) {
  const pid_t child = fork();
  if (child == 0) {
    execute();
    _exit(1);
  }
  return child > 0 && Ended(child);
}

// The device's program is the second in $PATH that could be meant, and the first that there is.
void LookInFolder() {
  setenv("PATH", "/usr/bin:" PROBE_FOLDER ":/bin", 1);
}

template <typename Spawn>
bool Spawns(Spawn spawn) {
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  pid_t child = 0;
  const bool runs = spawn(&child, &actions) == 0 && Ended(child);
  posix_spawn_file_actions_destroy(&actions);
  return runs;
}

#define RUNS(call) [] { return Runs([] { call; }); }

const ProbeRow kRows[] = {
    {"execve", RUNS(execve(PROBE_PROGRAM, kArguments, environ))},
    {"execv", RUNS(execv(PROBE_PROGRAM, kArguments))},
    {"execvp", RUNS(LookInFolder(); execvp("program", kArguments))},
    {"execvpe", RUNS(execvpe(PROBE_PROGRAM, kArguments, environ))},
    {"execl", RUNS(execl(PROBE_PROGRAM, "program", "a", "b", nullptr))},
    {"execlp", RUNS(LookInFolder(); execlp("program", "program", nullptr))},
    {"execle", RUNS(execle(PROBE_PROGRAM, "program", "a", nullptr, environ))},
    {"posix_spawn",
     [] {
       return Spawns([](pid_t* child, posix_spawn_file_actions_t* actions) {
         return posix_spawn(child, PROBE_PROGRAM, actions, nullptr, kArguments, environ);
       });
     }},
    {"posix_spawnp",
     [] {
       LookInFolder();
       return Spawns([](pid_t* child, posix_spawn_file_actions_t* actions) {
         return posix_spawnp(child, "program", actions, nullptr, kArguments, environ);
       });
     }},
    {"posix_spawn_file_actions_addopen",
     [] {
       return Spawns([](pid_t* child, posix_spawn_file_actions_t* actions) {
         const int wrong = posix_spawn_file_actions_addopen(actions, 0, PROBE_GIVEN, O_RDONLY, 0);
         return wrong != 0 ? wrong : posix_spawn(child, PROBE_PROGRAM, actions, nullptr, kArguments, environ);
       });
     }},
    {"posix_spawn_file_actions_addchdir_np",
     [] {
       return Spawns([](pid_t* child, posix_spawn_file_actions_t* actions) {
         const int wrong = posix_spawn_file_actions_addchdir_np(actions, PROBE_FOLDER);
         return wrong != 0 ? wrong : posix_spawn(child, "./program", actions, nullptr, kArguments, environ);
       });
     }},
    {"dlopen",
     [] {
       void* library = dlopen(PROBE_LIBRARY, RTLD_NOW);
       return library != nullptr && dlclose(library) == 0;
     }},
};

}  // namespace

std::span<const ProbeRow> ProgramRows() {
  return kRows;
}
