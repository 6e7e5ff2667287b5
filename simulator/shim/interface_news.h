// The kernel's notices about network interfaces (a NETLINK_ROUTE socket that has joined groups), from the files in hw/: the
// descriptor is inotify's, so that it can be waited for like a socket, and what is received of it are notices.
#ifndef ZQSIM_INTERFACE_NEWS_H
#define ZQSIM_INTERFACE_NEWS_H

#include <sys/types.h>

#include <cstddef>

// A descriptor that has no news yet; -1 and errno. `type` is socket's.
int OpenInterfaceNews(int type);
// From now on changes of the interfaces' files are news.
void WatchInterfaces(int news);
// One notice, an RTM_NEWLINK message for each interface of the device, when their files have changed since the last.
// Waits for it, unless the descriptor or `flags` (recv's) say otherwise. -1 and errno. What does not fit is cut off.
ssize_t ReceiveInterfaceNews(int news, void* buffer, size_t size, int flags);

#endif
