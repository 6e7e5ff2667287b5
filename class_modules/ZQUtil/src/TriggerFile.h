// Trigger files: by creating a file in /tmp that holds the single character "1" the module asks the system's scripts to
// act. They remove it, or answer with a file of their own; the module leaves it alone. Any thread.
#ifndef ZQUTIL_TRIGGER_FILE_H
#define ZQUTIL_TRIGGER_FILE_H

// Creates or empties the file and writes the "1". False, and nothing is traced, when it cannot be opened.
bool CreateTriggerFile(const char* path);

// The same between the two traces of a whole request, "creating" and "done"; the second comes also without a file.
void RaiseTrigger(const char* path);

#endif
