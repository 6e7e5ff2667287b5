#include "system_side.h"

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <system_error>

#include "keeper.h"
#include "launch.h"

namespace fs = std::filesystem;

namespace {

// The scripts find the device's tools as they would on a board; the device's own word on how the board works counts.
void PrepareEnvironment(const fs::path& root, const Places& places) {
  PutToolsOnPath(places);
  std::error_code error;
  if (fs::exists(root / "etc/zq/board.sh", error)) {
    unsetenv("ZQ_BOARD");
  } else {
    setenv("ZQ_BOARD", places.board.c_str(), 1);
  }
}

}  // namespace

SystemSide::SystemSide(const fs::path& root, const Places& places, bool boot) : root_(root) {
  int lifeline[2];
  int requests[2];
  if (pipe2(lifeline, O_CLOEXEC) == 0) {
    lifeline_ = OwnedDescriptor(lifeline[1]);
    const OwnedDescriptor keepers(lifeline[0]);
    if (pipe2(requests, O_CLOEXEC) == 0) {
      requests_ = OwnedDescriptor(requests[0]);
      const OwnedDescriptor scripts(requests[1]);
      keeper_ = fork();
      if (keeper_ == 0) {
        lifeline_.Close();
        requests_.Close();
        PrepareEnvironment(root, places);
        Keep({root, places.system / "zq-system", boot, keepers.Get(), scripts.Get()});
      }
    }
  }
  // Here and in the keeper, so that it is done whichever runs first.
  if (keeper_ > 0) setpgid(keeper_, keeper_);
  if (keeper_ < 0) fprintf(stderr, "zqsim: the device's system cannot be started: %s\n", strerror(errno));
}

SystemSide::~SystemSide() {
  lifeline_.Close();
  if (keeper_ < 0) return;
  while (waitpid(-keeper_, nullptr, 0) > 0 || errno == EINTR) {
  }
}

bool SystemSide::HasMoreToDo() const {
  std::error_code error;
  return fs::exists(root_ / "tmp/reboot", error) || fs::exists(root_ / "tmp/factory_reset", error);
}
