// What the environment says about proxies.
#ifndef ZQWWW_ENVIRONMENT_H
#define ZQWWW_ENVIRONMENT_H

#include "proxy_rule.h"

// Read now. A thread that sets variables meanwhile is the callers' to keep away, as with every getenv.
ProxySettings ReadProxySettings();

#endif
