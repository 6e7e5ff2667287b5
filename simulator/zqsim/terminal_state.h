// How the terminal was when this was made: a program that is killed may leave it otherwise.
#ifndef ZQSIM_TERMINAL_STATE_H
#define ZQSIM_TERMINAL_STATE_H

#include <termios.h>
#include <unistd.h>

class TerminalState {
 public:
  TerminalState() : known_(tcgetattr(STDIN_FILENO, &state_) == 0) {}
  void Restore() const {
    if (known_) tcsetattr(STDIN_FILENO, TCSADRAIN, &state_);
  }

 private:
  termios state_{};
  bool known_;
};

#endif
