// The device's clock settings, in the key store, and the list of its time zones.
//
// After a change the class asks the system's time service, by the trigger file /tmp/do_time, to apply what is stored.
#ifndef ZQUTIL_ZQDATETIME_H
#define ZQUTIL_ZQDATETIME_H

#include "module_api.h"
#include "zq_list.h"

// The servers that the clock is set by when the key store names none.
constexpr char kDefaultPrimaryNTPServer[] = "0.pool.ntp.org";
constexpr char kDefaultSecondaryNTPServer[] = "pool.ntp.org";

// One time zone of the list, with its strings the platform allocator's.
struct TimeZoneNode {
  char* path;         // zoneinfo file
  char* description;  // what users see
};

class ZQUTIL_API ZQDateTime {
 public:
  // Builds the list of time zones (TimeZoneList.cpp). The flag is not used.
  explicit ZQDateTime(bool live);
  ZQDateTime(const ZQDateTime&) = delete;
  ZQDateTime& operator=(const ZQDateTime&) = delete;
  ~ZQDateTime();

  // What the key store says, which is opened for each and closed again. A store that cannot be opened gives false or
  // null. New strings are the caller's (zq__free). Any thread.
  bool isNTPEnabled();           // unless the store says no
  bool isMilitaryTimeEnabled();  // 24-hour display, if the store says yes
  char* getPrimaryNTPServer();
  char* getSecondaryNTPServer();
  char* getTZ();  // zoneinfo file, "" when none was chosen

  // Each writes to the key store and asks for the change to be applied; does nothing when the store cannot be opened.
  // Script thread.
  void setNTPEnabled(bool enabled);
  void setMilitaryTimeEnabled(bool enabled);
  // Null or "" goes back to the default.
  void setPrimaryNTPServer(const char* host);
  void setSecondaryNTPServer(const char* host);
  // Null forgets the choice; "" is stored.
  void setTZ(const char* path);
  // A text of 12 characters goes to the time service, another length only asks it to apply; null does nothing.
  void setTime(const char* text);
  void restartDateTime();

  // The installed zones that the table has (TimeZoneNode), in display order. Owned by this object, and unchanged
  // while it lives. Any thread.
  zq_List* getTZList();
  // What users see for the current zone; the zoneinfo path itself for a zone that is not in the list. With none chosen,
  // the zone of the device's edition. The caller's (zq__free); null when memory runs out. Any thread.
  char* getTZDesc();
  // Adds a TimeZoneNode for each file below the folder that is in the table.
  static void ConstructTimeZoneTable(const char* directory, zq_List* list);

 private:
  zq_List* timeZones;
};

#endif
