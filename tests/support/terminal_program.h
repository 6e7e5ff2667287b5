// A program that runs on a terminal of its own, to be typed at and watched.
#ifndef ZQ_TEST_TERMINAL_PROGRAM_H
#define ZQ_TEST_TERMINAL_PROGRAM_H

#include <sys/types.h>

#include <string>
#include <vector>

class TerminalProgram {
 public:
  // `environment`: "NAME=VALUE" each, added to what is inherited. Throws when the system gives no terminal.
  explicit TerminalProgram(const std::vector<std::string>& words,
                           const std::vector<std::string>& environment = {});
  TerminalProgram(const TerminalProgram&) = delete;
  TerminalProgram& operator=(const TerminalProgram&) = delete;
  // Kills it when it still runs.
  ~TerminalProgram();

  // Waits until the text is on the screen, after what earlier waits found. False when the program ended
  // without.
  bool Await(const std::string& text);
  void Type(const std::string& keys);
  void Signal(int number) const;
  // Whether it has ended, without waiting.
  bool HasEnded() const;
  // Waits for the end; the exit status, or minus the signal's number.
  int AwaitEnd();
  // All that was shown.
  const std::string& Screen() const { return screen_; }
  // True while typed characters are neither echoed nor gathered to lines by the terminal.
  bool IsRaw() const;
  // Stops the program, as Ctrl-Z would; SIGCONT lets it go on.
  void Stop() const;
  // Makes the terminal echo and gather lines, as a shell would that takes it over.
  void MakeCooked() const;

 private:
  bool ReadMore();

  pid_t child_ = -1;
  int terminal_ = -1;
  int held_ = -1;  // its other side, kept open so that its settings can be read after the end
  std::string screen_;
  size_t seen_ = 0;
};

#endif
