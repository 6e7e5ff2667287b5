// Text between UTF-8 and UTF-16, over plain values.
#ifndef SOREL_TEXT_H
#define SOREL_TEXT_H

#include <string>
#include <string_view>

namespace sorel {

bool IsAscii(std::string_view bytes);
// True when the bytes are whole UTF-8 characters (no overlong forms, no surrogates, nothing above U+10FFFF).
bool IsUtf8(std::string_view bytes);
// UTF-8 characters as they are; each byte that is part of none becomes the Latin-1 character of its number.
std::u16string DecodeLenient(std::string_view bytes);
// Surrogates without a partner become U+FFFD.
std::string EncodeUtf8(std::u16string_view text);

}  // namespace sorel

#endif
