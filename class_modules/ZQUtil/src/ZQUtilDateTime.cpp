// The date and time methods of the script class. Without the clock settings' object each returns success and does
// nothing.
#include "OwnedText.h"
#include "ZQDateTime.h"
#include "ZQUtil.h"
#include "ZQUtilTrace.h"
#include "script_values.h"

namespace {

// The first argument's text; null when it is missing or cannot be text.
const char* TextArgument(uint32_t argc, const zq_Value* argv) {
  return ScriptArguments(argc, argv).PresentText(0);
}

void ReturnText(const OwnedText& text, zq_Value* rval) {
  ReturnString(text != nullptr ? text.get() : "", rval);
}

void ReturnFlag(bool flag, zq_Value* rval) {
  ReturnString(flag ? "YES" : "NO", rval);
}

// An object {Name, Description}; null when the host makes none.
void* NewZoneObject(const TimeZoneNode& node) {
  void* const object = NewScriptObject();
  if (object == nullptr) return nullptr;
  SetTextProperty(object, "Name", node.path);
  SetTextProperty(object, "Description", node.description);
  return object;
}

void FillZones(void* array, const zq_List* list) {
  const auto setElement = engine::SetElement();
  if (list == nullptr || setElement == nullptr) return;
  uint32_t index = 0;
  for (const auto* place = list->First(); place != nullptr; place = list->Next(place)) {
    void* const object = NewZoneObject(*static_cast<const TimeZoneNode*>(list->Record(place)));
    if (object == nullptr) return;
    zq_Value element = ObjectValue(object);
    setElement(array, index++, &element);
  }
}

}  // namespace

int32_t ZQUtil::GetTZList(void* /*self*/, uint32_t /*argc*/, zq_Value* /*argv*/, zq_Value* rval) {
  ZQUTIL_TRACE("ZQUtil GUI Call to GetTZList\n");
  const auto newArray = engine::NewArray();
  if (dateTime == nullptr || newArray == nullptr || rval == nullptr) return 1;
  void* const array = newArray(0, nullptr);
  if (array == nullptr) return 1;
  FillZones(array, dateTime->getTZList());
  *rval = ObjectValue(array);
  return 1;
}

int32_t ZQUtil::GetNTPEnabled(void* /*self*/, uint32_t /*argc*/, zq_Value* /*argv*/, zq_Value* rval) {
  ZQUTIL_TRACE("ZQUtil GUI Call to GetNTPEnabled\n");
  if (dateTime != nullptr) ReturnFlag(dateTime->isNTPEnabled(), rval);
  return 1;
}

int32_t ZQUtil::SetNTPEnabled(void* /*self*/, uint32_t argc, zq_Value* argv, zq_Value* /*rval*/) {
  ZQUTIL_TRACE("ZQUtil GUI Call to SetNTPEnabled\n");
  const char* const text = TextArgument(argc, argv);
  if (dateTime != nullptr && text != nullptr) dateTime->setNTPEnabled(SaysYes(text));
  return 1;
}

int32_t ZQUtil::GetPrimaryNTPServer(void* /*self*/, uint32_t /*argc*/, zq_Value* /*argv*/, zq_Value* rval) {
  ZQUTIL_TRACE("ZQUtil GUI Call to GetPrimaryNTPServer\n");
  if (dateTime != nullptr) ReturnText(OwnedText(dateTime->getPrimaryNTPServer()), rval);
  return 1;
}

int32_t ZQUtil::SetPrimaryNTPServer(void* /*self*/, uint32_t argc, zq_Value* argv, zq_Value* /*rval*/) {
  ZQUTIL_TRACE("ZQUtil GUI Call to SetPrimaryNTPServer\n");
  const char* const text = TextArgument(argc, argv);
  if (dateTime != nullptr && text != nullptr) dateTime->setPrimaryNTPServer(text);
  return 1;
}

int32_t ZQUtil::GetSecondaryNTPServer(void* /*self*/, uint32_t /*argc*/, zq_Value* /*argv*/, zq_Value* rval) {
  ZQUTIL_TRACE("ZQUtil GUI Call to GetSecondaryNTPServer\n");
  if (dateTime != nullptr) ReturnText(OwnedText(dateTime->getSecondaryNTPServer()), rval);
  return 1;
}

int32_t ZQUtil::SetSecondaryNTPServer(void* /*self*/, uint32_t argc, zq_Value* argv, zq_Value* /*rval*/) {
  ZQUTIL_TRACE("ZQUtil GUI Call to SetSecondaryNTPServer\n");
  const char* const text = TextArgument(argc, argv);
  if (dateTime != nullptr && text != nullptr) dateTime->setSecondaryNTPServer(text);
  return 1;
}

int32_t ZQUtil::SetTime(void* /*self*/, uint32_t argc, zq_Value* argv, zq_Value* /*rval*/) {
  ZQUTIL_TRACE("ZQUtil GUI Call to SetTime\n");
  const char* const text = TextArgument(argc, argv);
  if (dateTime != nullptr && text != nullptr) dateTime->setTime(text);
  return 1;
}

// Takes a zoneinfo path, the "Name" of a zone; GetTZ gives back what users see.
int32_t ZQUtil::SetTZ(void* /*self*/, uint32_t argc, zq_Value* argv, zq_Value* /*rval*/) {
  ZQUTIL_TRACE("ZQUtil GUI Call to SetTZ\n");
  const char* const text = TextArgument(argc, argv);
  if (dateTime == nullptr || text == nullptr) return 1;
  ZQUTIL_TRACE("ZQUtil setting TZ to %s\n", text);
  dateTime->setTZ(text);
  return 1;
}

int32_t ZQUtil::GetTZ(void* /*self*/, uint32_t /*argc*/, zq_Value* /*argv*/, zq_Value* rval) {
  ZQUTIL_TRACE("ZQUtil GUI Call to GetTZ\n");
  if (dateTime != nullptr) ReturnText(OwnedText(dateTime->getTZDesc()), rval);
  return 1;
}

int32_t ZQUtil::GetMilitaryTimeEnabled(void* /*self*/, uint32_t /*argc*/, zq_Value* /*argv*/,
                                       zq_Value* rval) {
  ZQUTIL_TRACE("ZQUtil GUI Call to GetMilitaryTimeEnabled\n");
  if (dateTime != nullptr) ReturnFlag(dateTime->isMilitaryTimeEnabled(), rval);
  return 1;
}

int32_t ZQUtil::SetMilitaryTimeEnabled(void* /*self*/, uint32_t argc, zq_Value* argv, zq_Value* /*rval*/) {
  ZQUTIL_TRACE("ZQUtil GUI Call to SetMilitaryTimeEnabled\n");
  const char* const text = TextArgument(argc, argv);
  if (dateTime != nullptr && text != nullptr) dateTime->setMilitaryTimeEnabled(SaysYes(text));
  return 1;
}
