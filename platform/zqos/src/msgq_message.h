// A message as it is posted.
#ifndef ZQ_MSGQ_MESSAGE_H
#define ZQ_MSGQ_MESSAGE_H

#include "zq_memory.h"
#include "zq_msgq.h"

// Freed with zq__free; null, traced, when there is no memory.
inline MSG_COMMON* NewMessage(const MSG_COMMON& content, const char* file, int line) {
  auto* const message = static_cast<MSG_COMMON*>(zq__calloc(1, sizeof content, file, line));
  if (message != nullptr) *message = content;
  return message;
}

#endif
