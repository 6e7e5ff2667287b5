// A script engine without scripts: the service table over plain C++ objects, for tests that call a class
// module the way a host does. Services can be taken out one by one. What the module does with the engine is
// recorded.
//
// One instance at a time; services may be called from any thread.
#ifndef ZQ_TEST_BARE_ENGINE_H
#define ZQ_TEST_BARE_ENGINE_H

#include <cstdint>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

#include "engine.h"

class BareEngine {
 public:
  // An object or array handle. Its address is the value's word.
  struct Object {
    std::map<std::string, zq_Value> properties;
    std::vector<std::string> order;  // of the properties, as set
    std::map<uint32_t, zq_Value> elements;
    std::map<std::string, std::pair<zq_NativeMethod, uint32_t>> methods;
    std::vector<std::string> methodOrder;
    void* attached = nullptr;
    bool hasPrivate = false;
    zq_Finalizer finalizer = nullptr;
  };

  BareEngine();
  BareEngine(const BareEngine&) = delete;
  BareEngine& operator=(const BareEngine&) = delete;
  ~BareEngine();

  // The table as the host would hand it over: ZQ_ENGINE_SLOTS words and some more, filled with a pattern.
  uintptr_t* Table() { return table_.data(); }
  static uint32_t TableBytes() { return ZQ_ENGINE_SLOTS * sizeof(uintptr_t); }
  // Takes a service out of the table; to be done before the table is handed over.
  void Remove(zq_EngineSlot slot) { table_[slot] = 0; }

  Object& ClassObject() { return *classObject_; }
  Object& NewObject();
  zq_Value String(const std::string& text);
  static zq_Value Word(Object& object) { return reinterpret_cast<zq_Value>(&object); }
  // What a string value says; "<void>", "<null>", "<int n>" or "<object>" for the others.
  std::string Show(zq_Value value);
  // The length that NewString was given for this string; 0 for strings that a test made.
  uint32_t LengthGiven(zq_Value value);

  // `new Class(...)`: the native constructor on a fresh object.
  Object& Construct(int32_t* result = nullptr, zq_Value* rval = nullptr);
  // The collector took the object: its finalizer runs.
  static int32_t Finalize(Object& object);
  // Calls a defined method by its script name. -1 when there is none of that name.
  int32_t Call(Object& self, const std::string& method, std::vector<zq_Value> arguments, zq_Value* rval);
  // The same, giving back what Show makes of the result.
  std::string Answer(Object& self, const std::string& method, std::vector<zq_Value> arguments = {});

  // HostLog lines and calls of listeners' methods ("onResult(1)"), each since the last call.
  std::string TakeLog();
  std::string TakeCalls();

 private:
  friend struct BareEngineServices;

  std::recursive_mutex mutex_;
  std::vector<uintptr_t> table_;
  std::unordered_map<const void*, std::unique_ptr<Object>> objects_;
  std::unordered_map<zq_Value, std::unique_ptr<std::pair<std::string, uint32_t>>> strings_;
  Object* classObject_;
  std::string log_;
  std::string calls_;
};

#endif
