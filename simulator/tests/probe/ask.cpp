// Ends with 0 when the library named by the argument finds the other one beside itself.
#include <dlfcn.h>

int main(int count, char** arguments) {
  void* asker = count == 2 ? dlopen(arguments[1], RTLD_NOW) : nullptr;
  if (asker == nullptr) return 2;
  auto* ask = reinterpret_cast<int (*)()>(dlsym(asker, "zqsim_probe_ask"));
  return ask != nullptr && ask() == 1 ? 0 : 1;
}
