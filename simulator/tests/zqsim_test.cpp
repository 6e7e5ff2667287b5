// The tool itself: making devices, refusing folders, starting commands.
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <string_view>
#include <thread>

#include "device_fixture.h"

namespace {

namespace fs = std::filesystem;

class Zqsim : public DeviceTest {
 protected:
  void SetUp() override {}

  // Every entry below the root, one a line; folders end with "/".
  std::string Listing() const {
    std::vector<std::string> names;
    for (const auto& entry : fs::recursive_directory_iterator(Root())) {
      names.push_back(fs::relative(entry.path(), Root()).string() + (entry.is_directory() ? "/" : ""));
    }
    std::sort(names.begin(), names.end());
    std::string text;
    for (const std::string& name : names) text += name + "\n";
    return text;
  }
  std::string Create(const std::string& folder, ProgramSetting setting = {}) const {
    const ProgramResult result = DeviceTest::Zqsim({"create", folder}, std::move(setting));
    EXPECT_EQ(result.output, "");
    return std::to_string(result.status) + " " + result.errors;
  }
};

constexpr const char* kStart = ".zq-device\nbrimvale/\nbrimvale/sorel/\ncache/\n";
constexpr const char* kBus = "dev/\ndev/i2c-0\n";
constexpr const char* kSystem =
    "etc/\netc/client.tag\netc/firmware.ver\netc/fw_env.config\netc/resolv.conf\netc/software.ver\n";
constexpr const char* kHardware = "hw/\nhw/README\nhw/display.ini\n";
constexpr const char* kWired = "hw/eth0.ini\n";
constexpr const char* kLightAndSound = "hw/light\nhw/light.ini\nhw/mixer.ini\n";
constexpr const char* kAir = "hw/ra0/\nhw/ra0/cells.ini\nhw/ra0/link.ini\n";
constexpr const char* kPlaces = "media/\nproc/\n";
constexpr const char* kRoute = "proc/net/\nproc/net/route\nrun/\nrun/lock/\nsys/\nsys/class/\n";
constexpr const char* kBattery =
    "sys/class/hwmon/\nsys/class/hwmon/hwmon5/\nsys/class/hwmon/hwmon5/device/\n"
    "sys/class/hwmon/hwmon5/device/mrst_batmon/\nsys/class/hwmon/hwmon5/device/mrst_batmon/charge\n"
    "sys/class/hwmon/hwmon5/device/mrst_batmon/vbat\n";
constexpr const char* kEnd = "tmp/\nupdates/\nvar/\nvar/lib/\nvar/lib/zq/\nvar/lock/\n";

std::string Link(const std::string& name) {
  const std::string folder = "sys/class/net/" + name + "/";
  return folder + "\n" + folder + "address\n" + folder + "carrier\n" + folder + "operstate\n";
}

constexpr const char* kRadio =
    "sys/class/net/ra0/wireless/\nsys/class/net/ra0/wireless/link\nsys/devices/\nsys/devices/virtual/\n"
    "sys/devices/virtual/net/\nsys/devices/virtual/net/ra0/\nsys/devices/virtual/net/ra0/wireless/\n"
    "sys/devices/virtual/net/ra0/wireless/link\n";

TEST_F(Zqsim, MakesAPhoneForTheHome) {
  EXPECT_EQ(Create(Root()), "0 ");
  EXPECT_EQ(Listing(), std::string(kStart) + kBus + kSystem + kHardware + kWired + kLightAndSound + kAir +
                           kPlaces + "proc/blctrl\nproc/boardrev\n" + kRoute + kBattery + "sys/class/net/\n" +
                           Link("eth0") + Link("ra0") + kRadio + kEnd);
  EXPECT_EQ(Shell("cd /sys/class/hwmon/hwmon5/device/mrst_batmon && cat charge vbat /etc/client.tag"),
            "8\n367\nhome-phone\n");
}

TEST_F(Zqsim, MakesATablet) {
  EXPECT_EQ(DeviceTest::Zqsim({"create", Root(), "--profile", "tablet"}).status, 0);
  EXPECT_EQ(Listing(), std::string(kStart) + kBus + kSystem + kHardware + kLightAndSound + kAir + kPlaces +
                           "proc/blctrl\nproc/boardrev\n" + kRoute + kBattery + "sys/class/net/\n" +
                           Link("ra0") + kRadio + kEnd);
  EXPECT_EQ(Shell("cd /sys/class/hwmon/hwmon5/device/mrst_batmon && cat charge vbat"), "2\n390\n");
}

TEST_F(Zqsim, MakesABareBoard) {
  EXPECT_EQ(DeviceTest::Zqsim({"create", "--profile=bare", Root()}).status, 0);
  EXPECT_EQ(Listing(), std::string(kStart) + kSystem + kHardware + kWired + kPlaces + kRoute +
                           "sys/class/net/\n" + Link("eth0") + kEnd);
  EXPECT_EQ(ReadFile(Place("/.zq-device")), "bare\n");
}

TEST_F(Zqsim, FoldersHaveTheirModes) {
  EXPECT_EQ(Create(Root()), "0 ");
  EXPECT_EQ(Shell("stat -c '%a %n' /tmp /updates /run/lock"), "1777 /tmp\n755 /updates\n1777 /run/lock\n");
}

TEST_F(Zqsim, ListsTheReadyProfiles) {
  EXPECT_EQ(DeviceTest::Zqsim({"profiles"}).output,
            "bare        a board with Ethernet alone: no battery, no Wi-Fi, no backlight\n"
            "home-phone  a phone for the home: battery, Wi-Fi, Ethernet, backlight\n"
            "tablet      a tablet: large battery, Wi-Fi, backlight, no Ethernet\n");
}

TEST_F(Zqsim, LeavesAnExistingDeviceAsItIs) {
  fs::create_directories(Place("/etc"));
  WriteFile(Place("/etc/firmware.ver"), "mine\n");
  EXPECT_EQ(Create(Root()), "0 ");
  EXPECT_EQ(
      DeviceTest::Zqsim({"run", Root(), "--profile", "tablet", "--", "cat", "/etc/firmware.ver"}).output,
      "mine\n");
  EXPECT_EQ(Listing(), "etc/\netc/firmware.ver\n");
}

TEST_F(Zqsim, SaysThatADeviceOfAnotherProfileStaysAsItIs) {
  EXPECT_EQ(Create(Root()), "0 ");
  const ProgramResult bare = DeviceTest::Zqsim({"create", Root(), "--profile", "bare"});
  EXPECT_EQ(bare.status, 0);
  EXPECT_EQ(bare.errors,
            "zqsim: " + std::string(Root()) + " is there already, made as home-phone, and stays as it is\n");
  EXPECT_EQ(DeviceTest::Zqsim({"create", Root(), "--profile", "home-phone"}).errors, "");
  EXPECT_EQ(Shell("cat /etc/client.tag"), "home-phone\n");
}

TEST_F(Zqsim, MakesTheDeviceInAnEmptyFolderAndInOneThatIsMissingWithItsParents) {
  fs::create_directories(folder_ / "empty");
  EXPECT_EQ(Create(folder_ / "empty"), "0 ");
  EXPECT_EQ(Create(folder_ / "a/b/c"), "0 ");
  EXPECT_TRUE(fs::exists(folder_ / "a/b/c/etc/fw_env.config"));
}

TEST_F(Zqsim, RefusesAFolderThatIsNoDevice) {
  WriteFile(folder_ / "letter", "x");
  const std::string folder = folder_.Path();
  EXPECT_EQ(Create(folder),
            "1 zqsim: " + folder + ": is no device (it has neither .zq-device nor etc) and not empty\n");
  EXPECT_EQ(Create(folder_ / "letter"),
            "1 zqsim: " + (folder_ / "letter") + ": is no folder, so it cannot be a device\n");
  EXPECT_EQ(Create("/"), "1 zqsim: /: is the machine itself, not a device\n");
  EXPECT_EQ(Create("/proc/none"), "1 zqsim: /proc/none: cannot make the device: No such file or directory\n");
}

TEST_F(Zqsim, RefusesAFolderThatCannotBeWritten) {
  fs::permissions(folder_.Path(), static_cast<fs::perms>(0755));
  fs::create_directories(folder_ / "closed/etc");
  fs::permissions(folder_ / "closed", static_cast<fs::perms>(0555));
  EXPECT_EQ(Create(folder_ / "closed", {.obeysModes = true}),
            "1 zqsim: " + (folder_ / "closed") + ": cannot write to the device: Permission denied\n");
  EXPECT_EQ(Create(folder_ / "closed/new", {.obeysModes = true}),
            "1 zqsim: " + (folder_ / "closed/new") + ": cannot make the device: Permission denied\n");
  fs::permissions(folder_ / "closed", static_cast<fs::perms>(0755));
}

TEST_F(Zqsim, TwoAtOnceMakeOneDevice) {
  std::vector<std::string> results(6);
  std::vector<std::thread> threads;
  threads.reserve(results.size());
  for (std::string& result : results) {
    threads.emplace_back([&] { result = Run({"cat", "/etc/client.tag"}).output; });
  }
  for (std::thread& thread : threads) thread.join();
  for (const std::string& result : results) EXPECT_EQ(result, "home-phone\n");
}

TEST_F(Zqsim, SaysWhatIsWrongWithItsArguments) {
  const auto firstLine = [](const std::vector<std::string>& words) {
    const ProgramResult result = DeviceTest::Zqsim(words);
    EXPECT_EQ(std::count(result.errors.begin(), result.errors.end(), '\n'), 1) << result.errors;
    return std::to_string(result.status) + " " + result.errors.substr(0, result.errors.find('\n'));
  };
  const auto refused = [&firstLine](const std::vector<std::string>& words) {
    const std::string all = firstLine(words);
    const std::string hint = "; see zqsim --help";
    EXPECT_TRUE(all.starts_with("2 zqsim: ") && all.ends_with(hint)) << all;
    return all.substr(9, all.size() - 9 - hint.size());
  };
  EXPECT_EQ(refused({}), "what to do?");
  EXPECT_EQ(refused({"fly"}), "what is \"fly\"?");
  EXPECT_EQ(refused({"run"}), "DIR is missing");
  EXPECT_EQ(refused({"run", Root()}), "COMMAND is missing after --");
  EXPECT_EQ(refused({"run", Root(), "sh"}), "one DIR, and a command after \"--\": what is \"sh\"?");
  EXPECT_EQ(refused({"run", Root(), "--fast"}), "what is \"--fast\"?");
  EXPECT_EQ(refused({"create", Root(), "--", "sh"}), "create takes no command");
  EXPECT_EQ(refused({"create", Root(), "--profile"}), "--profile needs a name");
  const std::string toaster = firstLine({"create", Root(), "--profile", "toaster"});
  EXPECT_TRUE(toaster.starts_with("1 zqsim: toaster: there is no such profile in ") &&
              toaster.ends_with(", but bare home-phone tablet"))
      << toaster;
  EXPECT_TRUE(firstLine({"create", Root(), "--profile", "../profiles/bare"})
                  .starts_with("1 zqsim: ../profiles/bare: there is no"));
  EXPECT_FALSE(fs::exists(Root()));
  EXPECT_TRUE(DeviceTest::Zqsim({"--help"}).output.starts_with("usage: zqsim create DIR"));
}

TEST_F(Zqsim, FindsTheCommandAsTheCallerWould) {
  WriteFile(folder_ / "say", "#!/bin/sh\necho \"$0 $1\"; exit 3\n");
  fs::permissions(folder_ / "say", fs::perms::owner_all);
  const ProgramResult near = Run({"./say", "a"}, {.folder = folder_.Path()});
  EXPECT_EQ(near.output, folder_ / "say" + " a\n");
  EXPECT_EQ(near.status, 3);
  const ProgramResult named =
      Run({"say", "a"}, {.environment = {"PATH=" + folder_.Path().string() + ":/usr/bin:/bin"}});
  EXPECT_EQ(named.output, folder_ / "say" + " a\n");
  const ProgramResult none = Run({"no-such-program"});
  EXPECT_EQ(none.status, 127);
  EXPECT_EQ(none.errors, "zqsim: no-such-program: not found\n");
  const ProgramResult folder = Run({folder_.Path()});
  EXPECT_EQ(folder.status, 126);
  EXPECT_EQ(folder.errors, "zqsim: " + folder_.Path().string() + ": Permission denied\n");
}

TEST_F(Zqsim, ADeviceHasTheToolsBesideThisOneOnItsPath) {
  const fs::path tools = fs::path(ZQSIM_PROGRAM).parent_path();
  const auto path = [this](const std::string& before) {
    return Run({"sh", "-c", "echo $PATH"}, {.environment = {"PATH=" + before}}).output;
  };
  EXPECT_EQ(path("/usr/bin:/bin"), tools.string() + ":/usr/bin:/bin\n");
  EXPECT_EQ(path("/usr/bin:" + tools.string()), "/usr/bin:" + tools.string() + "\n");
  EXPECT_EQ(Run({"nvram", "set", "key", "kept"}, {.environment = {"PATH=/usr/bin:/bin"}}).status, 0);
  EXPECT_EQ(Run({"sh", "-c", "nvram get key"}, {.environment = {"PATH=/usr/bin:/bin"}}).output, "kept\n");
}

TEST_F(Zqsim, KeepsWhatWasPreloadedAndTheOthersHostPaths) {
  const std::string_view runtime = ZQSIM_SANITIZER_RUNTIME;
  const std::string first = runtime.empty() ? "" : std::string(runtime) + ":";
  const std::string library = ZQSIM_PROBES "/libzqsim_probe_leaf.so";
  const ProgramResult result =
      Run({"sh", "-c", "echo $LD_PRELOAD; echo $ZQ_SIM_HOST_PATHS; echo ${ZQ_NVRAM_CONFIG-unset}"},
          {.environment = {"LD_PRELOAD=" + first + library, "ZQ_SIM_HOST_PATHS=/media/share",
                           "ZQ_NVRAM_CONFIG=/etc/other"}});
  EXPECT_EQ(result.errors, "");
  EXPECT_TRUE(result.output.starts_with(first + ZQSIM_SHIM ":" + library + "\n/media/share:"))
      << result.output;
  EXPECT_TRUE(result.output.ends_with("\nunset\n")) << result.output;
}

TEST_F(Zqsim, ADeviceStartedFromADeviceIsTheInnerOne) {
  EXPECT_EQ(Create(Root()), "0 ");
  const std::string inner = folder_ / "inner";
  const ProgramResult result =
      Run({ZQSIM_PROGRAM, "run", inner, "--profile", "bare", "--", "sh", "-c",
           "cat /etc/client.tag; echo $ZQ_DEVICE; pwd; echo 1 > /tmp/do_S12; cat /proc/blctrl"});
  EXPECT_EQ(result.output, "bare\n" + inner + "\n" + inner + "\n");
  EXPECT_EQ(result.errors, "cat: /proc/blctrl: No such file or directory\n");
  EXPECT_EQ(ReadFile(inner + "/tmp/do_S12"), "1\n");
  EXPECT_FALSE(fs::exists(Place("/tmp/do_S12")));
}

}  // namespace
