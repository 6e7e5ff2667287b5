// Strings of the engine: an owner, and conversions from and to UTF-8. Any thread.
#ifndef SOREL_JS_TEXT_H
#define SOREL_JS_TEXT_H

#include <string>
#include <string_view>
#include <utility>

#include "jsc.h"

namespace sorel {

// Owns one reference to an engine string; may be empty-handed.
class JsText {
 public:
  JsText() = default;
  explicit JsText(JSStringRef adopted) : string_(adopted) {}
  JsText(JsText&& other) noexcept : string_(std::exchange(other.string_, nullptr)) {}
  JsText& operator=(JsText&& other) noexcept {
    std::swap(string_, other.string_);
    return *this;
  }
  JsText(const JsText&) = delete;
  JsText& operator=(const JsText&) = delete;
  ~JsText() {
    if (string_ != nullptr) JSStringRelease(string_);
  }
  // Of UTF-8; see DecodeLenient for other bytes. The bytes end at a NUL.
  static JsText Of(std::string_view bytes);

  JSStringRef Get() const { return string_; }
  JSStringRef Release() { return std::exchange(string_, nullptr); }

 private:
  JSStringRef string_ = nullptr;
};

// The bytes end at the first NUL, or after `length` bytes; those there must be readable up to and with the
// one that ends them.
JSStringRef MakeJsString(const char* bytes, size_t length);
std::string ToUtf8(JSStringRef string);
// What String(value) gives; false, and the script's exception in `exception` when asked for, when that
// throws.
bool ToUtf8(JSContextRef context, JSValueRef value, std::string* text, JSValueRef* exception = nullptr);
JSValueRef MakeJsValue(JSContextRef context, std::string_view text);

}  // namespace sorel

#endif
