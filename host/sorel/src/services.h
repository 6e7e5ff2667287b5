// The service table that modules get.
#ifndef SOREL_SERVICES_H
#define SOREL_SERVICES_H

#include <array>

#include "engine.h"
#include "words.h"

namespace sorel {

using ServiceTable = std::array<Word, ZQ_ENGINE_SLOTS>;

// `classObject`: the handle of the class on which the module defines its methods.
ServiceTable MakeServiceTable(Word classObject);

}  // namespace sorel

#endif
