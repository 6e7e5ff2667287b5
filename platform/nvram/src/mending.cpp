#include "mending.h"

#include <algorithm>

Mending DecideMending(std::span<const CopyState> states) {
  const auto all = [states](CopyState wanted) {
    return std::all_of(states.begin(), states.end(), [wanted](CopyState state) { return state == wanted; });
  };
  const auto any = [states](CopyState wanted) {
    return std::find(states.begin(), states.end(), wanted) != states.end();
  };
  if (all(CopyState::Good) || any(CopyState::Device)) return Mending::Nothing;
  if (all(CopyState::Missing)) return Mending::Make;
  if (!any(CopyState::Good)) return Mending::Lost;
  return states[0] == CopyState::Good ? Mending::SecondFromFirst : Mending::FirstFromSecond;
}
