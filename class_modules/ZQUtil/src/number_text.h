// Numbers in text that others wrote.
#ifndef ZQUTIL_NUMBER_TEXT_H
#define ZQUTIL_NUMBER_TEXT_H

#include <cstdint>

// The decimal number at the start of the text: white space and a sign may lead, it ends at the first
// character that is no digit, no digits are 0. Numbers beyond the range are its ends.
int32_t DecimalNumber(const char* text);

#endif
