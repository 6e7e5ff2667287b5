#include "prompt.h"

#include <termios.h>
#include <unistd.h>

// readline's header wants these first.
#include <readline/history.h>
#include <readline/readline.h>

#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <string_view>
#include <vector>

#include "completion.h"
#include "errors.h"
#include "js_text.h"
#include "method_help.h"
#include "output.h"
#include "runtime.h"
#include "script.h"
#include "show.h"

namespace sorel {
namespace {

constexpr char kPrompt[] = "> ";
constexpr int kHistoryLines = 1000;
constexpr char kHelp[] =
    "Type a line of script; its value is shown. Tab completes names and, after a dot, methods.\n"
    "  new ZQUtil()   the device's services, by methods of this object\n"
    "  load(\"FILE\")   run a script      exit(STATUS)   end\n"
    "  .help          this              .help METHOD   what a method does\n"
    "  .exit          end, as Ctrl-D does";
constexpr char kHelpOfMethod[] = ".help ";

// readline's callbacks carry no data: the one prompt of the process.
JSContextRef g_context = nullptr;
std::vector<std::string> g_candidates;
std::vector<MethodHelp> g_help;
termios g_terminal{};
std::atomic<bool> g_taken{false};  // the terminal is readline's, to be given back as g_terminal says

// Where lines are remembered; "" for nowhere.
std::string HistoryFile() {
  const char* state = getenv("XDG_STATE_HOME");
  if (state != nullptr && *state != '\0') return std::string(state) + "/sorel_history";
  const char* home = getenv("HOME");
  return home != nullptr && *home != '\0' ? std::string(home) + "/.sorel_history" : "";
}

void EvaluateLine(const std::string& line) {
  JSValueRef thrown = nullptr;
  JSValueRef value = Evaluate(g_context, {line, ""}, &thrown);
  if (Runtime::Get().ExitRequested()) return;
  if (thrown != nullptr) {
    WriteLine(DescribeError(g_context, thrown), false);
  } else if (!JSValueIsUndefined(g_context, value)) {
    WriteLine(Show(g_context, value), false);
  }
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

void OnLine(char* typed) {
  if (typed == nullptr) {
    WriteLine("", false);
    Runtime::Get().RequestExit(EXIT_SUCCESS);
    return;
  }
  const std::string line = typed;
  // readline allocates with malloc.
  free(typed);
  if (line.find_first_not_of(" \t") == std::string::npos) return;
  add_history(line.c_str());
  if (line == ".exit") {
    Runtime::Get().RequestExit(EXIT_SUCCESS);
  } else if (line == ".help") {
    WriteLine(kHelp, false);
  } else if (line.starts_with(kHelpOfMethod)) {
    ShowHelpOf(line.substr(sizeof kHelpOfMethod - 1));
  } else {
    EvaluateLine(line);
  }
  // The next prompt is shown by readline itself.
  TakeDisturbed();
}

char* NextCandidate(const char*, int state) {
  static size_t next = 0;
  if (state == 0) next = 0;
  return next < g_candidates.size() ? strdup(g_candidates[next++].c_str()) : nullptr;
}

char** Complete(const char* word, int start, int end) {
  rl_attempted_completion_over = 1;
  rl_completion_append_character = '\0';
  const Unfinished unfinished = FindUnfinished({rl_line_buffer, static_cast<size_t>(end)});
  // What readline takes for the word ends in our prefix, and may begin with the object.
  const std::string before(word, static_cast<size_t>(end - start) - unfinished.prefix.size());
  g_candidates.clear();
  if (std::string_view(rl_line_buffer).starts_with(kHelpOfMethod)) {
    for (const MethodHelp& help : g_help) {
      if (help.name.starts_with(unfinished.prefix)) g_candidates.push_back(before + help.name);
    }
  } else {
    for (const std::string& name : PropertyNames(g_context, unfinished))
      g_candidates.push_back(before + name);
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
  fprintf(rl_outstream, "%s\n", shown.c_str());
  rl_forced_update_display();
}

void TakeTerminal() {
  if (tcgetattr(STDIN_FILENO, &g_terminal) == 0) g_taken.store(true);
  at_quick_exit(RestoreTerminal);
  rl_readline_name = "sorel";
  rl_catch_signals = 0;
  rl_attempted_completion_function = Complete;
  rl_completion_display_matches_hook = ShowCandidates;
  rl_completer_word_break_characters = " \t\n\"'`()[]{}<>=+-*/%&|^!~?:;,";
}

}  // namespace

void RunPrompt(JSContextRef context, Loop& loop) {
  g_context = context;
  g_help = ReadTypingsFolder(TypingsFolder());
  TakeTerminal();
  const std::string history = HistoryFile();
  using_history();
  stifle_history(kHistoryLines);
  if (!history.empty()) read_history(history.c_str());
  rl_callback_handler_install(kPrompt, OnLine);
  ShowAbovePrompt(true);
  loop.WatchInput(STDIN_FILENO, rl_callback_read_char, [] {
    if (!TakeDisturbed()) return;
    rl_on_new_line();
    rl_redisplay();
  });
  while (JSValueRef thrown = loop.Run(context)) WriteLine(DescribeError(context, thrown), false);
  ShowAbovePrompt(false);
  rl_callback_handler_remove();
  g_taken.store(false);
  if (!history.empty()) write_history(history.c_str());
}

void RestoreTerminal() {
  if (g_taken.load()) tcsetattr(STDIN_FILENO, TCSANOW, &g_terminal);
}

}  // namespace sorel
