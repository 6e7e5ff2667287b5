#include "prompt.h"

#include <termios.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <utility>

#include "errors.h"
#include "js_text.h"
#include "output.h"
#include "prompt_commands.h"
#include "prompt_completion.h"
#include "readline_library.h"
#include "runtime.h"
#include "script.h"
#include "script_turn.h"
#include "show.h"
#include "unfinished_input.h"

namespace sorel {
namespace {

constexpr char kGreeting[] = "sorel " SOREL_VERSION ": .help helps, Tab completes, Ctrl-D ends";
constexpr char kPrompt[] = "> ";
// After a line that only more lines can complete.
constexpr char kMorePrompt[] = "... ";
constexpr int kHistoryLines = 1000;
// Wider values are shown an element a line.
constexpr int kLeastWidth = 40;
constexpr int kBySignal = 128;

// readline's callbacks carry no data: the one prompt of the process.
JSContextRef g_context = nullptr;
termios g_terminal{};
std::string g_begun;                // lines of a piece of script that is not finished
std::atomic<bool> g_typing{false};  // something is typed that a key may drop
std::atomic<bool> g_drop{false};    // it shall be dropped
std::atomic<bool> g_retake{false};  // another process may have changed the terminal
std::atomic<bool> g_taken{false};   // the terminal is readline's, to be given back as g_terminal says

// Where lines are remembered; "" for nowhere.
std::string HistoryFile() {
  const char* state = getenv("XDG_STATE_HOME");
  if (state != nullptr && *state != '\0') return std::string(state) + "/sorel_history";
  const char* home = getenv("HOME");
  return home != nullptr && *home != '\0' ? std::string(home) + "/.sorel_history" : "";
}

size_t ScreenWidth() {
  int rows = 0;
  int columns = 0;
  rl_get_screen_size(&rows, &columns);
  return static_cast<size_t>(std::max(columns, kLeastWidth));
}

void EvaluateTyped(const std::string& script) {
  const ScriptTurn turn;
  JSValueRef thrown = nullptr;
  JSValueRef value = Evaluate(g_context, {script, ""}, &thrown);
  if (Runtime::Get().ExitRequested()) return;
  if (thrown != nullptr) {
    WriteLine(DescribeError(g_context, thrown), false);
  } else if (!JSValueIsUndefined(g_context, value)) {
    WriteLine(Show(g_context, value, ScreenWidth()), false);
  }
  RememberDeclared(script);
}

void AddLine(const std::string& line) {
  g_begun += line + "\n";
  if (IsUnfinished(g_context, g_begun)) {
    rl_set_prompt(kMorePrompt);
    return;
  }
  rl_set_prompt(kPrompt);
  EvaluateTyped(std::exchange(g_begun, ""));
}

// On a new line of the screen; what was typed is neither run nor remembered.
void DropTyped() {
  rl_callback_sigcleanup();
  rl_free_line_state();
  g_begun.clear();
  fputs("^C\n", SOREL_READLINE(rl_outstream));
  rl_set_prompt(kPrompt);
  rl_replace_line("", 0);
  rl_on_new_line();
  rl_redisplay();
  g_typing.store(false);
}

void OnLine(char* typed) {
  g_typing.store(false);
  if (typed == nullptr) {
    WriteLine("", false);
    Runtime::Get().RequestExit(EXIT_SUCCESS);
    return;
  }
  const std::string line = typed;
  // readline allocates with malloc.
  free(typed);
  const bool blank = line.find_first_not_of(" \t") == std::string::npos;
  if (!blank) add_history(line.c_str());
  if (g_begun.empty() && blank) return;
  if (g_begun.empty() && IsCommand(line))
    RunCommand(line);
  else
    AddLine(line);
  // The next prompt is shown by readline itself.
  TakeDisturbed();
}

void TakeTerminal() {
  if (tcgetattr(STDIN_FILENO, &g_terminal) == 0) g_taken.store(true);
  at_quick_exit(RestoreTerminal);
  SOREL_READLINE(rl_readline_name) = "sorel";
  SOREL_READLINE(rl_catch_signals) = 0;
}

void ReadKey() {
  rl_callback_read_char();
  g_typing.store(SOREL_READLINE(rl_end) > 0 || !g_begun.empty());
}

void BeforeWaiting() {
  if (g_drop.exchange(false)) DropTyped();
  if (g_retake.exchange(false)) {
    // Whatever the terminal is now, it is taken as at the start.
    rl_deprep_terminal();
    rl_prep_terminal(1);
    rl_forced_update_display();
  }
  if (!TakeDisturbed()) return;
  rl_on_new_line();
  rl_redisplay();
}

}  // namespace

void RunPrompt(JSContextRef context, Loop& loop) {
  if (!LoadReadline()) {
    WriteLine("no prompt without libreadline; a script can be run, or read from standard input", true);
    Runtime::Get().RequestExit(EXIT_FAILURE);
    return;
  }
  g_context = context;
  TakeTerminal();
  SetUpCompletion(context);
  const std::string history = HistoryFile();
  using_history();
  stifle_history(kHistoryLines);
  if (!history.empty()) read_history(history.c_str());
  WriteLine(kGreeting, false);
  rl_callback_handler_install(kPrompt, OnLine);
  ShowAbovePrompt(true);
  loop.WatchInput(STDIN_FILENO, ReadKey, BeforeWaiting);
  while (JSValueRef thrown = loop.Run(context)) {
    const ScriptTurn turn;
    WriteLine(DescribeError(context, thrown), false);
  }
  ShowAbovePrompt(false);
  rl_callback_handler_remove();
  // A signal leaves the prompt standing on its line.
  if (Runtime::Get().ExitStatus() > kBySignal) WriteLine("", false);
  g_taken.store(false);
  if (!history.empty()) write_history(history.c_str());
}

bool DropTypedLine() {
  if (!g_typing.load() || g_drop.exchange(true)) return false;
  Runtime::Get().Wake();
  return true;
}

void RetakeTerminal() {
  if (!g_taken.load()) return;
  g_retake.store(true);
  Runtime::Get().Wake();
}

void RestoreTerminal() {
  if (g_taken.load()) tcsetattr(STDIN_FILENO, TCSANOW, &g_terminal);
}

}  // namespace sorel
