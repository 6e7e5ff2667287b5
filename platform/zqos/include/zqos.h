// All of libzqos.
#ifndef ZQOS_H
#define ZQOS_H

#include "zq_clock.h"
#include "zq_file.h"
#include "zq_ini.h"
#include "zq_lazy_library.h"
#include "zq_list.h"
#include "zq_memory.h"
#include "zq_msgq.h"
#include "zq_socket.h"
#include "zq_string.h"
#include "zq_system.h"
#include "zq_thread.h"
#include "zq_timer.h"
#include "zq_trace.h"

#endif
