// Receives an answer over a connection.
#ifndef ZQWWW_ANSWER_H
#define ZQWWW_ANSWER_H

#include "connection.h"
#include "response_reader.h"

// True when the body is whole; else the reason is in the trace, unless it was cancelled. `server`: for the
// trace.
bool ReceiveAnswer(Connection& connection, const ResponseRules& rules, const ResponseReader::Sink& sink,
                   const char* server);

#endif
