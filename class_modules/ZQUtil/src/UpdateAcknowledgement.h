// The word to the update server that an update is installed.
#ifndef ZQUTIL_UPDATE_ACKNOWLEDGEMENT_H
#define ZQUTIL_UPDATE_ACKNOWLEDGEMENT_H

#include <cstdint>
#include <string>

// The body of the message; it opens with a line that is no XML declaration, which the server expects.
std::string AcknowledgementBody(int32_t updateId, int32_t deviceId);
// The whole request but for the header fields that every request has.
std::string AcknowledgementRequest(const std::string& host, int32_t port, const std::string& body);

// Sends it. When the server cannot be reached it is put into the key store instead, for the next check. A thread of
// the update.
void AcknowledgeUpdate(int32_t updateId, int32_t deviceId);

#endif
