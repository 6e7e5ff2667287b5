// A class module for tests of what native methods make: its one method does what a text says, a command a line.
#include <cstdlib>
#include <map>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include "services.h"
#include "words.h"

#define BUILDER_EXPORT extern "C" __attribute__((visibility("default")))

namespace probe {
namespace {

// What commands call by a name. Kept from call to call, as modules keep handles in fields; each thread has its own.
thread_local std::map<std::string, zq_Value> g_values;
std::vector<std::thread> g_storm;

void* Handle(const std::string& name) {
  return reinterpret_cast<void*>(g_values[name]);
}

int32_t SetElement(const std::string& array, uint32_t index, zq_Value value) {
  return g_services.Get<zq_SetElement>(ZQ_SLOT_SET_ELEMENT)(Handle(array), index, &value);
}

zq_Value NewText(const std::string& text) {
  zq_Value value = ZQ_VALUE_VOID;
  String(text.c_str(), &value);
  return value;
}

// Many objects of one kind in a new array, the words being NAME COUNT: {A: "a<i>", B: i, C: null, D: undefined}.
void MakeMany(std::istream& words) {
  std::string name;
  uint32_t count = 0;
  words >> name >> count;
  g_values[name] = ValueOf(g_services.Get<zq_NewArray>(ZQ_SLOT_NEW_ARRAY)(0, nullptr));
  for (uint32_t i = 0; i < count; ++i) {
    void* const object = g_services.Get<zq_NewObject>(ZQ_SLOT_NEW_OBJECT)();
    SetProperty(object, "A", NewText("a" + std::to_string(i)));
    SetProperty(object, "B", ZQ_VALUE_FROM_INT(i));
    SetProperty(object, "C", ZQ_VALUE_NULL);
    SetProperty(object, "D", ZQ_VALUE_VOID);
    SetElement(name, i, ValueOf(object));
  }
}

// As a thread of a module's own: calls the listener's method with an object.
int32_t CallWithinRequest(void* listener, const std::string& method) {
  g_services.Get<zq_BeginRequest>(ZQ_SLOT_BEGIN_REQUEST)(g_services.ClassObject());
  void* const made = g_services.Get<zq_NewObject>(ZQ_SLOT_NEW_OBJECT)();
  SetProperty(made, "Of", NewText("a worker"));
  zq_Value argument = ValueOf(made);
  const int32_t called = Call(listener, method.c_str(), 1, &argument, nullptr);
  g_services.Get<zq_EndRequest>(ZQ_SLOT_END_REQUEST)(g_services.ClassObject());
  return called;
}

// 1 or 0, as the services answer.
int32_t Do(const std::string& command, std::istream& words, uint32_t argc, const zq_Value* argv,
           zq_Value* rval) {
  std::string name;
  std::string key;
  std::string text;
  uint32_t index = 0;
  int number = 0;
  if (command == "many") return MakeMany(words), 1;
  words >> name;
  if (command == "object") {
    g_values[name] = ValueOf(g_services.Get<zq_NewObject>(ZQ_SLOT_NEW_OBJECT)());
    return g_values[name] != 0 ? 1 : 0;
  }
  if (command == "array") {
    g_values[name] = ValueOf(g_services.Get<zq_NewArray>(ZQ_SLOT_NEW_ARRAY)(0, nullptr));
    return g_values[name] != 0 ? 1 : 0;
  }
  if (command == "argument") {  // NAME INDEX: the word itself
    words >> index;
    g_values[name] = index < argc ? argv[index] : ZQ_VALUE_VOID;
    return 1;
  }
  if (command == "handle") {  // NAME: of the object that the word stands for
    void* object = nullptr;
    const int32_t found = Object(g_values[name], &object);
    if (found == 1) g_values[name] = ValueOf(object);
    return found;
  }
  if (command == "same") {  // NAME NAME: one handle
    words >> key;
    return g_values[name] == g_values[key] ? 1 : 0;
  }
  if (command == "text") {  // NAME: the rest of the line
    std::getline(words >> std::ws, text);
    g_values[name] = NewText(text);
    return 1;
  }
  if (command == "int") {  // OBJECT KEY NUMBER
    words >> key >> number;
    return SetProperty(Handle(name), key.c_str(), ZQ_VALUE_FROM_INT(number));
  }
  if (command == "set") {  // OBJECT KEY NAME
    words >> key >> text;
    return SetProperty(Handle(name), key.c_str(), g_values[text]);
  }
  if (command == "element") {  // ARRAY INDEX NAME
    words >> index >> text;
    return SetElement(name, index, g_values[text]);
  }
  if (command == "class") {  // KEY NAME: a property of the class
    words >> text;
    return SetProperty(g_services.ClassObject(), name.c_str(), g_values[text]);
  }
  if (command == "call") {  // OBJECT METHOD NAME: with that argument, and the result in its place
    words >> key >> text;
    zq_Value argument = g_values[text];
    return Call(Handle(name), key.c_str(), 1, &argument, &g_values[text]);
  }
  if (command == "from") {  // LISTENER METHOD: another thread calls that, while this one waits
    words >> key;
    int32_t called = 0;
    std::thread([&called, &key, listener = Handle(name)] {
      called = CallWithinRequest(listener, key);
    }).join();
    return called;
  }
  if (command == "storm") {  // LISTENER METHOD COUNT: two threads call that so often, and nobody waits
    words >> key >> number;
    for (int thread = 0; thread < 2; ++thread) {
      g_storm.emplace_back([key, number, listener = Handle(name)] {
        for (int i = 0; i < number; ++i) CallWithinRequest(listener, key);
      });
    }
    return 1;
  }
  if (command == "calm") {  // waits for that to end
    for (std::thread& thread : g_storm) thread.join();
    g_storm.clear();
    return 1;
  }
  if (command == "worker") {  // OBJECT: another thread sets its property "W"
    int32_t served = 0;
    std::thread([&served, object = Handle(name)] {
      g_services.Get<zq_BeginRequest>(ZQ_SLOT_BEGIN_REQUEST)(g_services.ClassObject());
      served = SetProperty(object, "W", ZQ_VALUE_FROM_INT(1));
      g_services.Get<zq_EndRequest>(ZQ_SLOT_END_REQUEST)(g_services.ClassObject());
    }).join();
    return served;
  }
  if (command == "place") {  // NAME: answers the place of its handle in the host's table
    *rval = ZQ_VALUE_FROM_INT(static_cast<int32_t>(sorel::ObjectLayout::Parts(g_values[name]).index));
    return 1;
  }
  if (command == "answer") return *rval = g_values[name], 1;
  return 0;
}

int32_t Constructor(void*, uint32_t, zq_Value*, zq_Value*) {
  return 1;
}

// Answers what "answer" says; otherwise which commands were refused, by their numbers.
int32_t Run(void*, uint32_t argc, zq_Value* argv, zq_Value* rval) {
  std::istringstream lines(Text(argv[0]));
  std::string refused;
  bool answered = false;
  int number = 0;
  for (std::string line; std::getline(lines, line, ';'); ++number) {
    std::istringstream words(line);
    std::string command;
    words >> command;
    if (Do(command, words, argc, argv, rval) == 0) refused += " " + std::to_string(number);
    answered |= command == "answer" || command == "place";
  }
  if (!answered) String(("refused:" + refused).c_str(), rval);
  return 1;
}

}  // namespace
}  // namespace probe

BUILDER_EXPORT void MM_Load() {}
BUILDER_EXPORT void MM_Unload() {}
BUILDER_EXPORT int32_t MM_InitWrapper(void* table, uint32_t bytes) {
  using namespace probe;
  g_services.Copy(table, bytes);
  const auto define = g_services.Get<zq_DefineMethod>(ZQ_SLOT_DEFINE_METHOD);
  define(g_services.ClassObject(), "constructor", Constructor, 0);
  return define(g_services.ClassObject(), "run", Run, 1);
}
BUILDER_EXPORT int32_t MM_TermWrapper() {
  return 1;
}
