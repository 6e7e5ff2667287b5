#include "prompt.h"

#include <termios.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cctype>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "completion.h"
#include "errors.h"
#include "js_text.h"
#include "method_help.h"
#include "output.h"
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
constexpr char kHelp[] =
    "Type a piece of script; its value is shown. One that is not finished goes on in the next line; Ctrl-C "
    "drops it.\n"
    "Tab completes names and, after a dot, methods; after \"(\" it shows the arguments.\n"
    "  new ZQUtil()   the device's services, by methods of this object\n"
    "  load(\"FILE\")   run a script      exit(STATUS)   end\n"
    "  .help          this              .help METHOD   what a method does\n"
    "  .exit          end, as Ctrl-D does";
constexpr char kHelpOfMethod[] = ".help ";
// Wider values are shown an element a line.
constexpr int kLeastWidth = 40;
constexpr int kBySignal = 128;

// readline's callbacks carry no data: the one prompt of the process.
JSContextRef g_context = nullptr;
std::vector<std::string> g_candidates;
std::vector<MethodHelp> g_help;
termios g_terminal{};
std::string g_begun;                // lines of a piece of script that is not finished
std::set<std::string> g_declared;   // by const, let and class, in what was typed
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
  for (const std::string& name : DeclaredNames(script)) g_declared.insert(name);
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

void ShowHelpOf(std::string name) {
  name.erase(0, name.find_first_not_of(" \t"));
  // "util.getIP()" as well as "getIP"
  name = name.substr(0, name.find_first_of("( \t"));
  name = name.substr(name.rfind('.') + 1);
  const MethodHelp* const help = FindHelp(g_help, name);
  WriteLine(help != nullptr ? ShowHelp(*help)
                            : "no help for \"" + name + "\": type .help and Tab for what there is",
            false);
}

// What begins with a dot and a letter is the prompt's own.
void Command(std::string line) {
  line.erase(line.find_last_not_of(" \t") + 1);
  if (line == ".exit") {
    Runtime::Get().RequestExit(EXIT_SUCCESS);
  } else if (line == ".help") {
    WriteLine(kHelp, false);
  } else if (line.starts_with(kHelpOfMethod)) {
    ShowHelpOf(line.substr(sizeof kHelpOfMethod - 1));
  } else {
    WriteLine("no command " + line + ": .help says what there is", false);
  }
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
  if (g_begun.empty() && line[0] == '.' && line.size() > 1 &&
      isalpha(static_cast<unsigned char>(line[1])) != 0)
    Command(line);
  else
    AddLine(line);
  // The next prompt is shown by readline itself.
  TakeDisturbed();
}

char* NextCandidate(const char*, int state) {
  static size_t next = 0;
  if (state == 0) next = 0;
  return next < g_candidates.size() ? strdup(g_candidates[next++].c_str()) : nullptr;
}

// Shows the arguments of the function that the line is about to call; false when it is about to call none that there
// is help for.
bool ShowArguments(std::string_view line) {
  const std::string called = CalledFunction(line);
  const MethodHelp* const help = called.empty() ? nullptr : FindHelp(g_help, called);
  if (help == nullptr || help->name != called) return false;
  fprintf(SOREL_READLINE(rl_outstream), "\n  %s\n", help->signature.c_str());
  rl_on_new_line();
  rl_redisplay();
  return true;
}

char** Complete(const char* word, int start, int end) {
  SOREL_READLINE(rl_attempted_completion_over) = 1;
  SOREL_READLINE(rl_completion_append_character) = '\0';
  const std::string_view line(SOREL_READLINE(rl_line_buffer), static_cast<size_t>(end));
  const Unfinished unfinished = FindUnfinished(line);
  if (ShowArguments(line)) return nullptr;
  // What readline takes for the word ends in our prefix, and may begin with the object.
  const std::string before(word, static_cast<size_t>(end - start) - unfinished.prefix.size());
  g_candidates.clear();
  if (std::string_view(SOREL_READLINE(rl_line_buffer)).starts_with(kHelpOfMethod)) {
    for (const MethodHelp& help : g_help) {
      if (help.name.starts_with(unfinished.prefix)) g_candidates.push_back(before + help.name);
    }
  } else {
    for (const std::string& name : PropertyNames(g_context, unfinished))
      g_candidates.push_back(before + name);
    for (const std::string& name : g_declared) {
      if (unfinished.object.empty() && name.starts_with(unfinished.prefix) && Exists(g_context, name))
        g_candidates.push_back(before + name);
    }
  }
  return rl_completion_matches(word, NextCandidate);
}

// The candidates, a line each, with the arguments of those that there is help for.
void ShowCandidates(char** matches, int count, int /*longest*/) {
  std::string shown;
  for (int i = 1; i <= count; ++i) {
    const std::string name = std::string(matches[i]).substr(std::string(matches[i]).rfind('.') + 1);
    const MethodHelp* const help = FindHelp(g_help, name);
    shown += "\n  " + (help != nullptr && help->name == name ? help->signature : name);
  }
  fprintf(SOREL_READLINE(rl_outstream), "%s\n", shown.c_str());
  rl_forced_update_display();
}

void TakeTerminal() {
  if (tcgetattr(STDIN_FILENO, &g_terminal) == 0) g_taken.store(true);
  at_quick_exit(RestoreTerminal);
  SOREL_READLINE(rl_readline_name) = "sorel";
  SOREL_READLINE(rl_catch_signals) = 0;
  SOREL_READLINE(rl_attempted_completion_function) = Complete;
  SOREL_READLINE(rl_completion_display_matches_hook) = ShowCandidates;
  SOREL_READLINE(rl_completer_word_break_characters) = " \t\n\"'`()[]{}<>=+-*/%&|^!~?:;,";
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
  g_help = ReadTypingsFolder(TypingsFolder());
  TakeTerminal();
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
