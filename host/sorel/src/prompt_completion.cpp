#include "prompt_completion.h"

#include <cstdio>
#include <cstring>
#include <set>
#include <string>
#include <vector>

#include "completion.h"
#include "method_help.h"
#include "prompt_commands.h"
#include "readline_library.h"

namespace sorel {
namespace {

// readline's callbacks carry no data: the one prompt of the process.
JSContextRef g_context = nullptr;
std::vector<std::string> g_candidates;
std::set<std::string> g_declared;  // by const, let and class, in what was typed

char* NextCandidate(const char*, int state) {
  static size_t next = 0;
  if (state == 0) next = 0;
  return next < g_candidates.size() ? strdup(g_candidates[next++].c_str()) : nullptr;
}

// Shows the arguments of the function that the line is about to call; false when it is about to call none that there
// is help for.
bool ShowArguments(std::string_view line) {
  const std::string called = CalledFunction(line);
  const MethodHelp* const help = called.empty() ? nullptr : FindHelp(AllHelp(), called);
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
    for (const MethodHelp& help : AllHelp()) {
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
    const MethodHelp* const help = FindHelp(AllHelp(), name);
    shown += "\n  " + (help != nullptr && help->name == name ? help->signature : name);
  }
  fprintf(SOREL_READLINE(rl_outstream), "%s\n", shown.c_str());
  rl_forced_update_display();
}

}  // namespace

void SetUpCompletion(JSContextRef context) {
  g_context = context;
  SOREL_READLINE(rl_attempted_completion_function) = Complete;
  SOREL_READLINE(rl_completion_display_matches_hook) = ShowCandidates;
  SOREL_READLINE(rl_completer_word_break_characters) = " \t\n\"'`()[]{}<>=+-*/%&|^!~?:;,";
}

void RememberDeclared(std::string_view script) {
  for (const std::string& name : DeclaredNames(script)) g_declared.insert(name);
}

}  // namespace sorel
