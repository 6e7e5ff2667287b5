#include "ZQDateTime.h"

namespace {

constexpr char kSourceTag[] = "class_modules/ZQUtil/ZQDateTime";

}  // namespace

ZQDateTime::ZQDateTime(bool /*live*/) : timeZones(new zq_List("Timezone List", kSourceTag, __LINE__)) {}

ZQDateTime::~ZQDateTime() {
  delete timeZones;
}
