// The turn at the list of networks. A scan on the queue thread renews it while scripts read it, scan, or set up a network
// that is looked for in it: one of them at a time, for the list knows no threads.
//
// A turn is taken before the key store is opened, never while it is open: readers of the list open it.
#ifndef ZQUTIL_ESSID_LIST_TURN_H
#define ZQUTIL_ESSID_LIST_TURN_H

class ESSIDListTurn {
 public:
  enum class Patience {
    kWaits,    // as long as the turn before takes, a scan of seconds too
    kDoesNot,  // may come out without the turn
  };

  explicit ESSIDListTurn(Patience patience);
  ESSIDListTurn(const ESSIDListTurn&) = delete;
  ESSIDListTurn& operator=(const ESSIDListTurn&) = delete;
  ~ESSIDListTurn();

  bool Mine() const { return mine_; }

 private:
  bool mine_;
};

#endif
