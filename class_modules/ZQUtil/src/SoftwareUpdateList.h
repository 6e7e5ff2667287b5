// The updates of the server's last answer, for readers and writers on any thread.
//
// A list never changes. A new answer's list takes its place, and the one before goes when nobody reads any more:
//
//   writer   puts the new list in place, sets the old one aside, frees what is aside if there is no reader
//   reader   counts itself, then looks; the last one to leave frees what is aside
//
// Whoever frees first takes what is aside and then looks for readers: one that begins after that finds the newer list.
#ifndef ZQUTIL_SOFTWARE_UPDATE_LIST_H
#define ZQUTIL_SOFTWARE_UPDATE_LIST_H

#include <vector>

#include "UpdateResponse.h"

// Any thread. Lists are read for a moment, and the script's thread may be within one when another replaces it.
class SoftwareUpdateListReader {
 public:
  SoftwareUpdateListReader();
  SoftwareUpdateListReader(const SoftwareUpdateListReader&) = delete;
  SoftwareUpdateListReader& operator=(const SoftwareUpdateListReader&) = delete;
  ~SoftwareUpdateListReader();

  // In the order of the answer; good as long as this object.
  const std::vector<OfferedUpdate>& Updates() const { return *updates_; }
  // The first with that id; null when there is none.
  const OfferedUpdate* Find(int32_t id) const;

 private:
  const std::vector<OfferedUpdate>* updates_;
};

// A new list in place of the one that was.
void ReplaceSoftwareUpdateList(std::vector<OfferedUpdate> updates);
// Forgets the list.
void ReleaseSoftwareUpdateList();

#endif
