// In a sanitizer build every program of the device gets the sanitizer's runtime, because the shim must not
// come before it. A tool of the machine, which was built without, is not judged for the memory it leaves at
// its end.
#include <elf.h>
#include <link.h>

#include <cstring>

extern "C" void __lsan_disable() __attribute__((weak));

namespace {

bool NeedsRuntime(const ElfW(Dyn) * entry) {
  const char* names = nullptr;
  for (const ElfW(Dyn)* it = entry; it->d_tag != DT_NULL; ++it) {
    if (it->d_tag == DT_STRTAB) names = reinterpret_cast<const char*>(it->d_un.d_ptr);
  }
  if (names == nullptr) return false;
  for (const ElfW(Dyn)* it = entry; it->d_tag != DT_NULL; ++it) {
    if (it->d_tag == DT_NEEDED && strstr(names + it->d_un.d_val, "libasan") != nullptr) return true;
  }
  return false;
}

// The program is the first that is visited.
int LookAtProgram(dl_phdr_info* program, size_t, void* needsRuntime) {
  for (int i = 0; i < program->dlpi_phnum; ++i) {
    const ElfW(Phdr)& part = program->dlpi_phdr[i];
    if (part.p_type != PT_DYNAMIC) continue;
    *static_cast<bool*>(needsRuntime) =
        NeedsRuntime(reinterpret_cast<const ElfW(Dyn)*>(program->dlpi_addr + part.p_vaddr));
  }
  return 1;
}

[[gnu::constructor]] void ExcuseForeignPrograms() {
  if (__lsan_disable == nullptr) return;
  bool needsRuntime = false;
  dl_iterate_phdr(LookAtProgram, &needsRuntime);
  if (!needsRuntime) __lsan_disable();
}

}  // namespace
