// The driver of the radio "ra0": what the kernel's wireless extensions answer on a socket.
#ifndef ZQSIM_WIRELESS_DRIVER_H
#define ZQSIM_WIRELESS_DRIVER_H

// Whether the request is the driver's: one of the wireless extensions, on a socket of a process that has a device.
bool IsWirelessRequest(int descriptor, unsigned long request);
// The request: 0, or -1 and errno. `argument` is ioctl's.
int AnswerWireless(unsigned long request, void* argument);

#endif
