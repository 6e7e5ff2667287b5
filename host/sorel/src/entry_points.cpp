#include "entry_points.h"

#include <array>
#include <cstddef>
#include <utility>

namespace sorel {
namespace {

constexpr size_t kEntryPoints = 1024;
std::array<const NativeMethod*, kEntryPoints> g_methods;
size_t g_used = 0;

template <size_t kIndex>
JSValueRef EntryPoint(JSContextRef context, JSObjectRef, JSObjectRef self, size_t count,
                      const JSValueRef arguments[], JSValueRef* exception) {
  return CallNative(*g_methods[kIndex], context, self, count, arguments, exception);
}

template <size_t... kIndices>
constexpr std::array<JSObjectCallAsFunctionCallback, sizeof...(kIndices)> MakeEntryPoints(
    std::index_sequence<kIndices...>) {
  return {EntryPoint<kIndices>...};
}

constexpr auto kFunctions = MakeEntryPoints(std::make_index_sequence<kEntryPoints>());

}  // namespace

JSObjectCallAsFunctionCallback AssignEntryPoint(const NativeMethod* method) {
  if (g_used == kEntryPoints) return nullptr;
  g_methods[g_used] = method;
  return kFunctions[g_used++];
}

}  // namespace sorel
