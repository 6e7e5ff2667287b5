#include "js_text.h"

#include <cstring>

#include "text.h"

namespace sorel {

JSStringRef MakeJsString(const char* bytes, size_t length) {
  const std::string_view text(bytes, strnlen(bytes, length));
  // The engine's own conversion reads on to a NUL and answers nothing at all for bytes that are no UTF-8.
  if (bytes[text.size()] == '\0' && (IsAscii(text) || IsUtf8(text)))
    return JSStringCreateWithUTF8CString(bytes);
  const std::u16string units = DecodeLenient(text);
  static_assert(sizeof(JSChar) == sizeof(char16_t));
  return JSStringCreateWithCharacters(reinterpret_cast<const JSChar*>(units.data()), units.size());
}

JsText JsText::Of(std::string_view bytes) {
  const std::string terminated(bytes);
  return JsText(MakeJsString(terminated.c_str(), terminated.size()));
}

std::string ToUtf8(JSStringRef string) {
  const size_t units = JSStringGetLength(string);
  std::string bytes(JSStringGetMaximumUTF8CStringSize(string), '\0');
  const size_t written = JSStringGetUTF8CString(string, bytes.data(), bytes.size());
  // The engine's conversion stops at a lone surrogate without a word; as many ASCII bytes as units are all of
  // it.
  if (written == units + 1 && IsAscii({bytes.data(), units})) {
    bytes.resize(units);
    return bytes;
  }
  const auto* characters = reinterpret_cast<const char16_t*>(JSStringGetCharactersPtr(string));
  return EncodeUtf8({characters, units});
}

bool ToUtf8(JSContextRef context, JSValueRef value, std::string* text, JSValueRef* exception) {
  JSValueRef ignored = nullptr;
  const JsText string(JSValueToStringCopy(context, value, exception != nullptr ? exception : &ignored));
  if (string.Get() == nullptr) return false;
  *text = ToUtf8(string.Get());
  return true;
}

JSValueRef MakeJsValue(JSContextRef context, std::string_view text) {
  return JSValueMakeString(context, JsText::Of(text).Get());
}

}  // namespace sorel
