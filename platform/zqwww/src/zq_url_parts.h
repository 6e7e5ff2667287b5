// What a zq_URL knows.
#ifndef ZQWWW_ZQ_URL_PARTS_H
#define ZQWWW_ZQ_URL_PARTS_H

#include <string>

#include "proxy_rule.h"
#include "url_parts.h"
#include "zqwww.h"

struct zq_URL::Parts {
  UrlParts url;
  Route route;
  std::string requestTarget;
};

#endif
