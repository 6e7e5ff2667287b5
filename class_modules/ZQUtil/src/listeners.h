// Script listener objects: how one is taken, kept alive and called.
#ifndef ZQUTIL_LISTENERS_H
#define ZQUTIL_LISTENERS_H

#include <atomic>
#include <initializer_list>

#include "mm_env.h"

// Puts the object into the field. False, and nothing changed, when the value is no object or the host converts none.
// Script thread.
bool TakeListener(zq_Value value, std::atomic<void*>& field);
// Keeps the object alive as that property of the class object; nothing when the host sets none. Script thread.
void HoldListener(zq_Value value, const char* property);
// Both.
bool KeepListener(zq_Value value, const char* property, std::atomic<void*>& field);
// Empties the property, then the field. Any thread.
void ForgetListener(const char* property, std::atomic<void*>& field);

enum class ListenerChange {
  kKept,       // the object is the listener now
  kForgotten,  // there is none now
  kRefused     // the value is no object, or the host converts none: nothing changed
};
// What a method that takes a listener does with its arguments: one that is neither void nor null is kept, anything else
// forgets the one there is. Traced. Script thread.
ListenerChange ChangeListener(uint32_t argc, const zq_Value* argv, const char* property,
                              std::atomic<void*>& field);

// Calls the listener's method with no argument, when the host can. Queue thread: a single call is taken by the engine
// from any thread. Other threads of the module use WorkerRequest.
void CallListener(void* listener, const char* method);

// A thread of the module inside the engine: BeginRequest when it is made, EndRequest when it ends. After MM_Term, when
// the engine may be going down, there is none to be had, and its calls do nothing.
class WorkerRequest {
 public:
  WorkerRequest();
  WorkerRequest(const WorkerRequest&) = delete;
  WorkerRequest& operator=(const WorkerRequest&) = delete;
  ~WorkerRequest();

  explicit operator bool() const { return entered_; }
  // Calls the object's method; does nothing when the host cannot.
  void Call(void* object, const char* method, std::initializer_list<zq_Value> arguments = {}) const;

 private:
  const bool entered_;
};

// WorkerRequests can be had: the engine's services are in place. MM_Init.
void OpenWorkerRequests();
// None can be had from now on; returns when the last has ended, or after ten seconds. MM_Term.
void CloseWorkerRequests();

#endif
