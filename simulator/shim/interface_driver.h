// The requests about network interfaces that any socket answers (SIOCGIF...): the device's interfaces, never this
// machine's. Requests that would change an interface or a route are refused, so that no program on the device changes
// the machine's.
#ifndef ZQSIM_INTERFACE_DRIVER_H
#define ZQSIM_INTERFACE_DRIVER_H

// Those of wireless interfaces alone are not among them.
bool IsInterfaceRequest(unsigned long request);
// True for a socket of a process on a device. Keeps errno.
bool IsDeviceSocket(int descriptor);
// 0, or -1 and errno. `argument` is ioctl's.
int AnswerInterface(unsigned long request, void* argument);

#endif
