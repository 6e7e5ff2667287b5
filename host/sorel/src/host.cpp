#include "host.h"

#include <unistd.h>

#include <algorithm>
#include <cstdlib>

#include "device.h"
#include "errors.h"
#include "finalizers.h"
#include "globals.h"
#include "output.h"
#include "prompt.h"
#include "runtime.h"
#include "script_turn.h"
#include "signals.h"
#include "stack_scrub.h"
#include "zq_thread.h"

namespace sorel {
namespace {

constexpr int kFailure = 1;

// What nobody handled ends the program.
void Fail(JSContextRef context, JSValueRef thrown) {
  ReportError(context, thrown);
  Runtime::Get().RequestExit(kFailure);
}

// Called by the engine with the promise and the reason.
JSValueRef ReportRejection(JSContextRef context, JSObjectRef, JSObjectRef, size_t count,
                           const JSValueRef arguments[], JSValueRef*) {
  if (count > 1) WriteLine(DescribeError(context, arguments[1]), false);
  return JSValueMakeUndefined(context);
}

JSValueRef FailOnRejection(JSContextRef context, JSObjectRef, JSObjectRef, size_t count,
                           const JSValueRef arguments[], JSValueRef*) {
  if (count > 1) Fail(context, arguments[1]);
  return JSValueMakeUndefined(context);
}

}  // namespace

bool Host::Start(const Options& options, std::string* error) {
  const bool fromStdin = options.script == "-" || (options.script.empty() && isatty(STDIN_FILENO) == 0);
  interactive_ = options.script.empty() && !fromStdin;
  if (fromStdin && !ReadScriptFromStdin(&script_, error)) return false;
  if (!fromStdin && !interactive_ && !ReadScript(options.script, &script_, error)) {
    if (OnDevice() && !options.script.starts_with('/')) *error += " (looked for in the device's folder)";
    return false;
  }

  HoldSignals();
  SetUpOutput();
  BecomeScriptThread();
  Runtime::Create();
  Runtime& runtime = Runtime::Get();
  CatchSignals({RestoreTerminal, DropTypedLine, RetakeTerminal});
  JSContextRef context = runtime.Context();
  AddGlobals(context, runtime.Global());
  const auto onRejection = interactive_ ? ReportRejection : FailOnRejection;
  JSGlobalContextSetUnhandledRejectionCallback(
      runtime.Context(), JSObjectMakeFunctionWithCallback(context, nullptr, onRejection), nullptr);
  std::vector<std::string> paths = options.modules;
  if (paths.empty()) paths.push_back(DefaultModulePath());
  for (const std::string& path : paths) {
    std::unique_ptr<Module> module = Module::Load(path, error);
    if (module == nullptr) {
      EndModules();
      return false;
    }
    modules_.push_back(std::move(module));
  }
  return true;
}

void Host::Run() {
  JSContextRef context = Runtime::Get().Context();
  if (interactive_) {
    RunPrompt(context, loop_);
    return;
  }
  JSValueRef thrown = nullptr;
  Evaluate(context, script_, &thrown);
  ScrubStack();
  if (thrown == nullptr) thrown = loop_.Run(context);
  if (thrown != nullptr) Fail(context, thrown);
}

void Host::End() {
  Runtime& runtime = Runtime::Get();
  runtime.RequestExit(EXIT_SUCCESS);
  FinalizeAll();
  EndModules();
  // A reader may take its time with a program that ends by itself.
  FlushOutput();
  zq_ExitProcess(runtime.ExitStatus());
}

void Host::EndModules() {
  while (!modules_.empty()) {
    modules_.back()->End();
    modules_.pop_back();
  }
}

}  // namespace sorel
