// TCP client sockets whose connection is reported to a queue, and the machine's network interfaces. Any
// thread.
#ifndef ZQ_SOCKET_H
#define ZQ_SOCKET_H

#include <stddef.h>
#include <stdint.h>

#include "zq_api.h"

#ifdef __cplusplus
extern "C" {
#endif

enum { ZQ_ADDRESS_TEXT = 46, ZQ_MAC_TEXT = 18 };

// Resolves a host name or a dotted address to the text of its first IPv4 address (else IPv6). Blocks as long
// as the resolver does. False, and an empty text, when there is none.
ZQ_API bool zq_SocketLookup(const char* host, char address[ZQ_ADDRESS_TEXT]);
// Begins to connect to the address text and returns at once with a handle, or 0 when that is impossible. The
// queue gets ZQ_MSG_SOCKET_CONNECTED, or ZQ_MSG_SOCKET_FAILED when the connection is refused, times out, or
// later breaks.
ZQ_API uint32_t zq_SocketOpenTcpClient(uint32_t queue, const char* address, uint16_t port, const char* file,
                                       int line);
// For traces; copied.
ZQ_API void zq_SocketSetName(uint32_t socket, const char* name);
// Bytes that the system may hold for the socket before it is read.
ZQ_API void zq_SocketSetReceiveLimit(uint32_t socket, uint32_t bytes);
// The connected socket's descriptor, non-blocking, owned by the handle; -1 when the handle is gone.
ZQ_API int zq_SocketDescriptor(uint32_t socket);
// 0 and handles that are gone are ignored. No message about the socket comes after this returns, unless it is
// in the handler's hand.
ZQ_API void zq_SocketClose(uint32_t socket);

// The machine's interfaces, the loopback not counted.
ZQ_API int zq_SocketGetInterfaceCount(void);
// The interface's index, or -1.
ZQ_API int zq_SocketFindInterfaceByName(const char* name);
// The hardware address as six colon-separated pairs of lower-case hexadecimal digits. False, and an empty
// text, when the interface is gone or has none.
ZQ_API bool zq_GetMACofInterface(int index, char text[ZQ_MAC_TEXT]);
// The hardware address of the first interface, by index, that has one and is not the loopback.
ZQ_API bool zq_GetMACAddress(char text[ZQ_MAC_TEXT]);

#ifdef __cplusplus
}
#endif

#endif
