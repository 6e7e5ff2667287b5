#include "mend_store.h"

#include <fcntl.h>

#include <algorithm>
#include <vector>

#include "copy_file.h"
#include "file_lock.h"
#include "mending.h"
#include "zq_trace.h"

namespace {

std::vector<CopyReading> ReadCopies(const StoreConfig& config) {
  std::vector<CopyReading> copies;
  copies.reserve(config.copies.size());
  for (const CopyPlace& place : config.copies) copies.push_back(ReadCopy(place, config.Redundant()));
  return copies;
}

Mending Decide(const std::vector<CopyReading>& copies) {
  std::vector<CopyState> states;
  states.reserve(copies.size());
  for (const CopyReading& copy : copies) states.push_back(copy.state);
  return DecideMending(states);
}

std::string PutImage(const CopyPlace& place, CopyState was, const Bytes& image, const std::string& like) {
  return was == CopyState::Missing ? MakeCopy(place, image, like) : OpenCopy(place).Write(image);
}

std::string Restore(const StoreConfig& config, const std::vector<CopyReading>& copies, size_t bad) {
  const size_t good = 1 - bad;
  const std::string& like = config.copies[good].path;
  // The good copy becomes the only one for a while, so it has to be on the disk.
  const OpenCopy source(config.copies[good]);
  std::string why = source.Sync();
  if (why.empty()) why = PutImage(config.copies[bad], copies[bad].state, copies[good].image, like);
  if (why.empty()) {
    zq_Trace(0, ZQ_TRACE_NORMAL, 1, true, "nvram: %s: mended from %s", copies[bad].why.c_str(), like.c_str());
    return {};
  }
  zq_Trace(0, ZQ_TRACE_FAILURE, 1, true, "nvram: %s and cannot be mended: %s", copies[bad].why.c_str(),
           why.c_str());
  // The library passes over a damaged copy by itself.
  return copies[bad].state == CopyState::Damaged ? std::string() : copies[bad].why + "; " + why;
}

std::string Apply(const StoreConfig& config, const std::vector<CopyReading>& copies) {
  switch (Decide(copies)) {
    case Mending::Nothing:
      return {};
    case Mending::FirstFromSecond:
      return Restore(config, copies, 0);
    case Mending::SecondFromFirst:
      return Restore(config, copies, 1);
    case Mending::Make:
      zq_Trace(0, ZQ_TRACE_NORMAL, 1, true, "nvram: making the empty store %s",
               config.copies[0].path.c_str());
      return EraseStore(config);
    case Mending::Lost:
      break;
  }
  std::string why = "no good copy is left: " + copies.front().why;
  if (copies.size() > 1) why += ", " + copies.back().why;
  return why;
}

}  // namespace

std::string MendStore(const StoreConfig& config) {
  if (Decide(ReadCopies(config)) == Mending::Nothing) return {};
  // What looks damaged may be a tool's write under way: look again when it is no tool's turn.
  const FileLock tools(kToolsLock, O_WRONLY | O_CREAT);
  return Apply(config, ReadCopies(config));
}

std::string EraseStore(const StoreConfig& config) {
  uint8_t counter = 1;  // the first copy is the newer one
  for (const CopyPlace& place : config.copies) {
    const CopyState state = ReadCopy(place, config.Redundant()).state;
    std::string why = PutImage(place, state, EmptyImage(place.size, config.Redundant(), counter--), {});
    if (!why.empty()) return why;
  }
  return {};
}

bool HoldsStore(const StoreConfig& config) {
  const std::vector<CopyReading> copies = ReadCopies(config);
  return std::any_of(copies.begin(), copies.end(),
                     [](const CopyReading& copy) { return copy.state == CopyState::Good; });
}
