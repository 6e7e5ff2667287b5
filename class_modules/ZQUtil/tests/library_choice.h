// Which application-log library the loader gives out.
#ifndef ZQUTIL_TEST_LIBRARY_CHOICE_H
#define ZQUTIL_TEST_LIBRARY_CHOICE_H

enum class AppLogLibrary {
  kPlatforms,       // the one beside the platform's
  kStub,            // one that notes what it is asked; this program is linked with it
  kWithoutSymbols,  // a library of the platform that has none of the entry points
  kMissing
};

// From the next load on.
void ChooseAppLogLibrary(AppLogLibrary library);

#endif
