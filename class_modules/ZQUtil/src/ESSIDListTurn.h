// The turn at the list of networks. A scan on the queue thread renews it while scripts read it, scan, or set up a network
// that is looked for in it: one of them at a time, for the list knows no threads.
//
// A turn is taken before the key store is opened, never while it is open: readers of the list open it.
#ifndef ZQUTIL_ESSID_LIST_TURN_H
#define ZQUTIL_ESSID_LIST_TURN_H

class ESSIDListTurn {
 public:
  enum class Use {
    kReads,    // takes as long as a script array does; comes out without the turn when a scan is under way
    kLooksUp,  // waits for its turn, a scan's end too
    kScans     // the same; takes seconds, and the list is empty meanwhile
  };

  explicit ESSIDListTurn(Use use);
  ESSIDListTurn(const ESSIDListTurn&) = delete;
  ESSIDListTurn& operator=(const ESSIDListTurn&) = delete;
  ~ESSIDListTurn();

  bool Mine() const { return mine_; }
  // Whoever looked something up finds that it must scan for it.
  void TurnsToScan();

 private:
  bool mine_ = false;
};

#endif
