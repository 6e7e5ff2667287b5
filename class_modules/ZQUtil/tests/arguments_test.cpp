// Every method with every kind of argument in every place: each call ends as the method promises, and the
// module lives on.
#include <gtest/gtest.h>

#include <filesystem>
#include <functional>
#include <map>

#include "module_fixture.h"

namespace {

using Arguments = std::vector<zq_Value>;

bool Present(const Arguments& arguments, size_t index) {
  return index < arguments.size() && arguments[index] != ZQ_VALUE_VOID && arguments[index] != ZQ_VALUE_NULL;
}

// Methods whose one argument, when it is there, must be an object that the host can convert.
bool TakesListener(const std::string& method) {
  return method.rfind("register", 0) == 0 || method == "backgroundGetESSIDList";
}

// Methods whose result is not a text.
bool AnswersNoText(const std::string& method) {
  for (const char* other : {"batteryPct", "getTZList", "getESSIDList", "getCachedESSIDList", "getESSID",
                            "getWirelessSecurity", "getSignalStrength", "GetUpdateList", "GetVersion"}) {
    if (method == other) return true;
  }
  return false;
}

// What a method returns for its arguments: 1, unless it refuses them. `isObject` is about the first one.
int32_t PromisedFor(const std::string& method, const Arguments& arguments, bool isObject) {
  if (TakesListener(method)) return arguments.size() != 1 || !Present(arguments, 0) || isObject ? 1 : 0;
  const auto atLeast = [&](size_t count) {
    for (size_t i = 0; i < count; ++i) {
      if (!Present(arguments, i)) return false;
    }
    return true;
  };
  if (method == "getIniSetting") return atLeast(2) ? 1 : 0;
  if (method == "setIniSetting") return arguments.size() == 3 && atLeast(2) ? 1 : 0;
  if (method == "deleteIniFile" || method == "writeFile") return arguments.size() == 2 && atLeast(2) ? 1 : 0;
  if (method == "deleteFile" || method == "utf8Encode") return arguments.size() == 1 && atLeast(1) ? 1 : 0;
  return 1;
}

class ArgumentsTest : public ModuleTest {
 protected:
  // Without a radio a scan ends at once.
  ArgumentsTest() { std::filesystem::remove(OnThisMachine("/hw/ra0/link.ini")); }

  int32_t Promised(const std::string& method, const Arguments& arguments) {
    const bool isObject = !arguments.empty() && engine.Show(arguments[0]) == "<object>" &&
                          engine.Table()[ZQ_SLOT_VALUE_TO_OBJECT] != 0;
    return PromisedFor(method, arguments, isObject);
  }

  // Calls every method with 0 to 4 arguments, one of them of each kind in each place. The others are texts.
  void CallAll(const std::function<void(const std::string&, const Arguments&)>& call) {
    const std::map<std::string, zq_Value> kinds = {
        {"void", ZQ_VALUE_VOID},
        {"null", ZQ_VALUE_NULL},
        {"integer", N(-7)},
        {"object", BareEngine::Word(engine.NewObject())},
        {"string", S("12")},
        {"over-long string", S(std::string(70000, 'x'))},
        {"string with newline", S("a\nb=c\n[d]\n")},
        {"invalid UTF-8", S("\xFF\xC3(\x80")},
    };
    for (const std::string& method : engine.ClassObject().methodOrder) {
      if (method == "constructor") continue;
      call(method, {});
      for (size_t count = 1; count <= 4; ++count) {
        for (size_t place = 0; place < count; ++place) {
          for (const auto& [name, value] : kinds) {
            SCOPED_TRACE(method + " of " + std::to_string(count) + ", at " + std::to_string(place) + ": " +
                         name);
            Arguments arguments(count, S("text"));
            arguments[place] = value;
            call(method, arguments);
          }
        }
      }
    }
  }
};

TEST_F(ArgumentsTest, EveryMethodEndsAsItPromises) {
  Object& util = New();
  CallAll([&](const std::string& method, const Arguments& arguments) {
    zq_Value result = ZQ_VALUE_VOID;
    EXPECT_EQ(engine.Call(util, method, arguments, &result), Promised(method, arguments));
    EXPECT_NE(engine.Show(result), "<unknown word>");
  });
  Settle();
  EXPECT_EQ(engine.Answer(util, "isTablet"), "no");
}

TEST_F(ArgumentsTest, EveryMethodDoesWithoutAResultSlot) {
  Object& util = New();
  CallAll([&](const std::string& method, const Arguments& arguments) {
    EXPECT_EQ(engine.Call(util, method, arguments, nullptr), Promised(method, arguments));
  });
}

TEST_F(ArgumentsTest, AFailedCallStoresNoResult) {
  Object& util = New();
  CallAll([&](const std::string& method, const Arguments& arguments) {
    zq_Value result = 0x77777770;
    if (engine.Call(util, method, arguments, &result) == 0) {
      EXPECT_EQ(result, 0x77777770U);
    }
  });
}

// The services that a host may lack, each in turn.
class MissingServiceTest : public ArgumentsTest, public testing::WithParamInterface<zq_EngineSlot> {};

TEST_P(MissingServiceTest, EveryMethodEndsAsItPromises) {
  const zq_EngineSlot missing = GetParam();
  engine.Remove(missing);
  Load();
  engine.TakeLog();
  if (missing == ZQ_SLOT_DEFINE_METHOD || missing == ZQ_SLOT_CLASS_OBJECT) {
    EXPECT_TRUE(engine.ClassObject().methodOrder.empty());
    return;
  }
  Object& util = New();
  const bool reachable = missing != ZQ_SLOT_GET_PRIVATE && missing != ZQ_SLOT_SET_PRIVATE;
  CallAll([&](const std::string& method, const Arguments& arguments) {
    zq_Value result = ZQ_VALUE_VOID;
    EXPECT_EQ(engine.Call(util, method, arguments, &result),
              reachable || method == "GetVersion" ? Promised(method, arguments) : 0);
    if (missing == ZQ_SLOT_NEW_STRING && !AnswersNoText(method)) {
      EXPECT_EQ(result, ZQ_VALUE_VOID);
    }
  });
  if (missing == ZQ_SLOT_VALUE_TO_STRING) {
    EXPECT_EQ(engine.Answer(util, "utf8Encode", {S("a")}), "<void>");
    EXPECT_EQ(engine.Answer(util, "getIniSetting", {S("a"), S("b")}), "<void>");
    std::string answers;
    for (const char* getter :
         {"getPhoneVolume", "getMicVolume", "getBrightness", "getContrast", "getDimMode", "getFirstTime"}) {
      answers += engine.Answer(util, getter) + " ";
    }
    EXPECT_EQ(answers, "75 50 100 2 FALSE No ") << "no setter set anything";
    EXPECT_TRUE(std::filesystem::is_empty("cache"));
    EXPECT_FALSE(std::filesystem::exists("text.ini"));
  }
  if (missing == ZQ_SLOT_HOST_LOG) {
    EXPECT_EQ(engine.TakeLog(), "");
  }
  // Listeners without the services that call them.
  ZQUtil& singleton = *ZQUtil::m_pInstance;
  singleton.connectivityListener = &engine.NewObject();
  singleton.getessidListener = &engine.NewObject();
  for (const uint32_t type : {uint32_t{kMsgUpdateServerReached}, uint32_t{kMsgBackgroundScan}})
    PostToQueue(type, 0);
  Settle();
  EXPECT_TRUE(singleton.connectivityReported);
  EXPECT_EQ(singleton.getessidListener, nullptr);
  if (missing == ZQ_SLOT_SET_FINALIZER) ZQUtil::Dereference();
}

INSTANTIATE_TEST_SUITE_P(EachInTurn, MissingServiceTest,
                         testing::Values(ZQ_SLOT_CLASS_OBJECT, ZQ_SLOT_DEFINE_METHOD, ZQ_SLOT_VALUE_TO_INT,
                                         ZQ_SLOT_VALUE_TO_OBJECT, ZQ_SLOT_NEW_ARRAY, ZQ_SLOT_SET_ELEMENT,
                                         ZQ_SLOT_VALUE_TO_STRING, ZQ_SLOT_NEW_STRING, ZQ_SLOT_NEW_OBJECT,
                                         ZQ_SLOT_SET_PROPERTY, ZQ_SLOT_CALL_METHOD,
                                         ZQ_SLOT_CALL_METHOD_WITH_ARGS, ZQ_SLOT_SET_PRIVATE,
                                         ZQ_SLOT_GET_PRIVATE, ZQ_SLOT_SET_FINALIZER, ZQ_SLOT_BEGIN_REQUEST,
                                         ZQ_SLOT_END_REQUEST, ZQ_SLOT_HOST_LOG),
                         [](const auto& slot) { return "Slot" + std::to_string(slot.param); });

}  // namespace
