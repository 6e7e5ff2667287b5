// The transport library's global state, held as long as somebody uses it.
#ifndef ZQWWW_LIBRARIES_H
#define ZQWWW_LIBRARIES_H

// Counted: each of the first two is paired with one ReleaseLibraries. Any thread.
//
// Keeps what is ready ready; makes nothing ready itself.
void AddLibrariesUser();
// Loads and prepares what is not yet. False when it cannot be.
bool AcquireLibraries();
void ReleaseLibraries();

// A user's hold.
class LibrariesHold {
 public:
  LibrariesHold() : held_(AcquireLibraries()) {}
  LibrariesHold(const LibrariesHold&) = delete;
  LibrariesHold& operator=(const LibrariesHold&) = delete;
  ~LibrariesHold() {
    if (held_) ReleaseLibraries();
  }
  bool Held() const { return held_; }

 private:
  bool held_;
};

#endif
