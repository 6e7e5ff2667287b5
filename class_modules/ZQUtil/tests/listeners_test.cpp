// Listener objects: taken, kept, called by threads of the module, and left alone once the module has ended.
#include "listeners.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <thread>

#include "ZQUtilTrace.h"
#include "bare_engine.h"

std::atomic<int> ZQUtilTraceInstance = 0;

namespace {

class ListenersTest : public testing::Test {
 protected:
  using Object = BareEngine::Object;

  // As MM_InitWrapper and MM_Init do.
  void Load() {
    std::copy_n(engine.Table(), static_cast<size_t>(ZQ_ENGINE_SLOTS), mmEnv);
    gLibObj = &engine.ClassObject();
    OpenWorkerRequests();
  }

  std::string Property(const std::string& name) {
    const auto found = engine.ClassObject().properties.find(name);
    return found != engine.ClassObject().properties.end() ? engine.Show(found->second) : "<none>";
  }

  BareEngine engine;
  std::atomic<void*> field = nullptr;
};

TEST_F(ListenersTest, AListenerIsKeptInItsFieldAndAsAProperty) {
  Load();
  Object& listener = engine.NewObject();
  EXPECT_TRUE(KeepListener(BareEngine::Word(listener), "AListener", field));
  EXPECT_EQ(field, &listener);
  EXPECT_EQ(Property("AListener"), "<object>");
  ForgetListener("AListener", field);
  EXPECT_EQ(field, nullptr);
  EXPECT_EQ(Property("AListener"), "<null>");
}

TEST_F(ListenersTest, WhatIsNoObjectLeavesTheListenerThatWas) {
  Load();
  Object& listener = engine.NewObject();
  KeepListener(BareEngine::Word(listener), "AListener", field);
  EXPECT_FALSE(KeepListener(engine.String("text"), "AListener", field));
  EXPECT_EQ(field, &listener);
  EXPECT_EQ(Property("AListener"), "<object>");
}

TEST_F(ListenersTest, AHostThatConvertsNoObjectsKeepsNone) {
  engine.Remove(ZQ_SLOT_VALUE_TO_OBJECT);
  Load();
  EXPECT_FALSE(KeepListener(BareEngine::Word(engine.NewObject()), "AListener", field));
  EXPECT_EQ(field, nullptr);
  EXPECT_EQ(Property("AListener"), "<none>");
}

TEST_F(ListenersTest, AHostWithoutPropertiesKeepsTheListenerInItsField) {
  engine.Remove(ZQ_SLOT_SET_PROPERTY);
  Load();
  Object& listener = engine.NewObject();
  EXPECT_TRUE(KeepListener(BareEngine::Word(listener), "AListener", field));
  EXPECT_EQ(field, &listener);
  ForgetListener("AListener", field);
  EXPECT_EQ(field, nullptr);
}

TEST_F(ListenersTest, AWorkerCallsBetweenBeginAndEnd) {
  Load();
  Object& listener = engine.NewObject();
  std::thread([&] {
    const WorkerRequest request;
    EXPECT_TRUE(request);
    request.Call(&listener, "onDownloading", {ZQ_VALUE_FROM_INT(7)});
    request.Call(&listener, "onInstalling");
  }).join();
  EXPECT_EQ(engine.TakeCalls(), "<begin>,onDownloading(<int 7>),onInstalling()<end>");
}

TEST_F(ListenersTest, AWorkerDoesWithoutTheServicesThatAHostLacks) {
  engine.Remove(ZQ_SLOT_BEGIN_REQUEST);
  engine.Remove(ZQ_SLOT_END_REQUEST);
  Load();
  Object& listener = engine.NewObject();
  { WorkerRequest().Call(&listener, "onInstalling"); }
  EXPECT_EQ(engine.TakeCalls(), "onInstalling()");
}

TEST_F(ListenersTest, NobodyIsCalledAfterTheModulesEndAndAgainAfterItsNextBeginning) {
  Load();
  Object& listener = engine.NewObject();
  CloseWorkerRequests();
  {
    const WorkerRequest request;
    EXPECT_FALSE(request);
    request.Call(&listener, "onInstalling");
  }
  EXPECT_EQ(engine.TakeCalls(), "");
  Load();
  { WorkerRequest().Call(&listener, "onInstalling"); }
  EXPECT_EQ(engine.TakeCalls(), "<begin>,onInstalling()<end>");
}

TEST_F(ListenersTest, TheModulesEndWaitsForACallUnderWay) {
  Load();
  std::atomic<bool> inside = false;
  std::atomic<bool> ended = false;
  std::thread worker([&] {
    const WorkerRequest request;
    inside = true;
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
    ended = true;
  });
  while (!inside) std::this_thread::yield();
  CloseWorkerRequests();
  EXPECT_TRUE(ended);
  worker.join();
}

}  // namespace
