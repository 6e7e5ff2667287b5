#include "readline_library.h"

#include "zq_lazy_library.h"

namespace {

zq_LazyLibrary g_readline("libreadline.so.8");

}  // namespace

namespace sorel {

bool LoadReadline() {
  return g_readline.Load();
}

void* ReadlineVariable(const char* name) {
  return g_readline.Symbol(name);
}

}  // namespace sorel

extern "C" {

ZQ_PASS_ON(g_readline, void, add_history, (const char* line), (line))
ZQ_PASS_ON(g_readline, int, read_history, (const char* file), (file))
ZQ_PASS_ON(g_readline, void, stifle_history, (int lines), (lines))
ZQ_PASS_ON(g_readline, void, using_history, (), ())
ZQ_PASS_ON(g_readline, int, write_history, (const char* file), (file))

ZQ_PASS_ON(g_readline, void, rl_callback_handler_install, (const char* prompt, rl_vcpfunc_t* onLine),
           (prompt, onLine))
ZQ_PASS_ON(g_readline, void, rl_callback_handler_remove, (), ())
ZQ_PASS_ON(g_readline, void, rl_callback_read_char, (), ())
ZQ_PASS_ON(g_readline, void, rl_callback_sigcleanup, (), ())
ZQ_PASS_ON(g_readline, char**, rl_completion_matches, (const char* word, rl_compentry_func_t* next),
           (word, next))
ZQ_PASS_ON(g_readline, void, rl_deprep_terminal, (), ())
ZQ_PASS_ON(g_readline, int, rl_forced_update_display, (), ())
ZQ_PASS_ON(g_readline, void, rl_free_line_state, (), ())
ZQ_PASS_ON(g_readline, void, rl_get_screen_size, (int* rows, int* columns), (rows, columns))
ZQ_PASS_ON(g_readline, int, rl_on_new_line, (), ())
ZQ_PASS_ON(g_readline, void, rl_prep_terminal, (int eightBits), (eightBits))
ZQ_PASS_ON(g_readline, void, rl_redisplay, (), ())
ZQ_PASS_ON(g_readline, void, rl_replace_line, (const char* text, int clearUndo), (text, clearUndo))
ZQ_PASS_ON(g_readline, int, rl_set_prompt, (const char* prompt), (prompt))

}  // extern "C"
