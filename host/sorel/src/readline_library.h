// readline is for the prompt alone, and its thousand references by name are the loader's work at the start of each
// process: it is loaded when there is a prompt. Its functions are called under their own names, which
// readline_library.cpp defines to pass on; its variables are reached by SOREL_READLINE.
#ifndef SOREL_READLINE_LIBRARY_H
#define SOREL_READLINE_LIBRARY_H

// readline's header wants this one first.
#include <cstdio>
// After it.
#include <readline/history.h>
#include <readline/readline.h>

namespace sorel {

// False when this system lacks it. Before anything of it is used. Script thread.
bool LoadReadline();
// Of a library that is loaded.
void* ReadlineVariable(const char* name);

}  // namespace sorel

// A variable of readline's, by its own name.
#define SOREL_READLINE(variable) (*static_cast<decltype(::variable)*>(::sorel::ReadlineVariable(#variable)))

#endif
