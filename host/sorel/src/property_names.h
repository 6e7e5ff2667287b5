// Names of properties by number: a module sets few names, again and again. The thread that has drafts.
#ifndef SOREL_PROPERTY_NAMES_H
#define SOREL_PROPERTY_NAMES_H

#include <array>
#include <cstdint>
#include <string>
#include <unordered_map>
#include <vector>

#include "jsc.h"

namespace sorel {

class PropertyNames {
 public:
  static constexpr uint32_t kNone = UINT32_MAX;

  static PropertyNames& Get() {
    static auto& names = *new PropertyNames;
    return names;
  }

  // The name's number, the same for good; kNone for one that comes when there are very many.
  uint32_t NumberOf(const char* name);
  // The engine's string of a number's name, kept alive for good. Engine lock.
  JSValueRef Key(JSContextRef context, uint32_t number);

 private:
  static constexpr size_t kMost = 4096;

  struct Name {
    std::string text;
    JSValueRef key;  // null until it is asked for
  };
  // A name is mostly a literal of the module's, known by its address; what is there is compared all the same.
  struct Recent {
    const char* address;
    uint32_t number;
  };

  std::vector<Name> names_;
  std::unordered_map<std::string, uint32_t> numbers_;
  std::array<Recent, 256> recent_{};
};

}  // namespace sorel

#endif
