// The bus that the light sensor is on: what the kernel's user-space interface answers to its requests.
#ifndef ZQSIM_I2C_BUS_H
#define ZQSIM_I2C_BUS_H

#include "device_table.h"

bool IsI2cRequest(unsigned long request);
// The request on an open bus: 0, or -1 and errno. `argument` is ioctl's.
int AnswerI2c(OpenDevice& bus, unsigned long request, void* argument);

#endif
