// The device's clock settings.
#ifndef ZQUTIL_ZQDATETIME_H
#define ZQUTIL_ZQDATETIME_H

#include "module_api.h"
#include "zq_list.h"

class ZQUTIL_API ZQDateTime {
 public:
  // The flag is not used.
  explicit ZQDateTime(bool live);
  ZQDateTime(const ZQDateTime&) = delete;
  ZQDateTime& operator=(const ZQDateTime&) = delete;
  ~ZQDateTime();

 private:
  zq_List* timeZones;  // installed time zones in display order
};

#endif
