// What a script on the device sees and does, through the machine's own tools.
#include <filesystem>

#include "device_fixture.h"

namespace {

namespace fs = std::filesystem;

class Device : public DeviceTest {};

TEST_F(Device, AShellAndItsChildrenShareTheDevice) {
  EXPECT_EQ(Shell("sh -c 'echo 1 > /tmp/do_S12; cat /proc/blctrl'"), "100\n");
  EXPECT_EQ(ReadFile(Place("/tmp/do_S12")), "1\n");
  EXPECT_EQ(Shell("cat /tmp/do_S12 | cat; ls /tmp"), "1\ndo_S12\n");
}

TEST_F(Device, WhatTheDeviceLacksIsMissingAlthoughTheMachineHasIt) {
  ASSERT_TRUE(fs::exists("/etc/debian_version"));
  ASSERT_TRUE(fs::exists("/proc/version"));
  ASSERT_TRUE(fs::exists("/sys/kernel"));
  EXPECT_EQ(Shell("cat /etc/debian_version"),
            "cat: /etc/debian_version: No such file or directory\nstatus 1\n");
  EXPECT_EQ(Shell("cat /proc/version"), "cat: /proc/version: No such file or directory\nstatus 1\n");
  EXPECT_EQ(Shell("ls /sys/kernel"),
            "ls: cannot access '/sys/kernel': No such file or directory\nstatus 2\n");
}

TEST_F(Device, APersonsEditIsThereAtOnce) {
  const std::string charge = "/sys/class/hwmon/hwmon5/device/mrst_batmon/charge";
  EXPECT_EQ(Shell("cat " + charge), "8\n");
  WriteFile(Place(charge), "5\n");
  EXPECT_EQ(Shell("cat " + charge), "5\n");
}

TEST_F(Device, DotsInAPathAreFollowedByTheirText) {
  EXPECT_EQ(Shell("cat /etc/../etc/firmware.ver //etc/./firmware.ver /usr/../etc//firmware.ver"),
            "1.0.0\n1.0.0\n1.0.0\n");
  EXPECT_EQ(Shell("cat /tmp/../etc/debian_version"),
            "cat: /tmp/../etc/debian_version: No such file or directory\nstatus 1\n");
  EXPECT_EQ(Shell("test -d /tmp/../usr/bin && echo machine"), "machine\n");
  EXPECT_EQ(Shell("cat /etc/firmware.ver/"), "cat: /etc/firmware.ver/: Not a directory\nstatus 1\n");
}

TEST_F(Device, RelativePathsCountFromTheDevicesFolder) {
  EXPECT_EQ(Shell("pwd; cat etc/firmware.ver; ls -d cache"),
            fs::canonical(Root()).string() + "\n1.0.0\ncache\n");
}

TEST_F(Device, AWorkingFolderHasTheDevicesName) {
  EXPECT_EQ(
      Shell("cd /tmp && mkdir a && cd ./a && /bin/pwd && realpath . ../b && echo x > f && cat /tmp/a/f"),
      "/tmp/a\n/tmp/a\n/tmp/b\nx\n");
}

TEST_F(Device, LinksLeadToTheDeviceAndReadAsWritten) {
  EXPECT_EQ(Shell("ln -s /etc/firmware.ver /tmp/link; cat /tmp/link; readlink /tmp/link; realpath /tmp/link; "
                  "ln -s ../etc/firmware.ver /tmp/other; cat /tmp/other; readlink /tmp/other"),
            "1.0.0\n/etc/firmware.ver\n/etc/firmware.ver\n1.0.0\n../etc/firmware.ver\n");
}

TEST_F(Device, FilesPassedThroughTheTableAreTheMachines) {
  EXPECT_EQ(Shell("cmp /proc/self/comm - <<E\ncmp\nE"), "");
  EXPECT_EQ(Shell("cat /proc/$$/comm"), "sh\n");
  EXPECT_EQ(Shell("cat /etc/passwd"), ReadFile("/etc/passwd"));
  EXPECT_EQ(Shell("cat /sys/devices/system/cpu/possible"), ReadFile("/sys/devices/system/cpu/possible"));
  EXPECT_EQ(Shell("cat /proc/sys/kernel/ostype"), ReadFile("/proc/sys/kernel/ostype"));
}

TEST_F(Device, ASharedFileIsTheDevicesOnceItHasItsOwn) {
  const std::string before = ReadFile("/etc/hosts");
  EXPECT_EQ(Shell("echo '192.0.2.9 me' > /etc/hosts; cat /etc/hosts; rm /etc/hosts; cat /etc/hosts"),
            "192.0.2.9 me\n" + before);
  EXPECT_EQ(ReadFile("/etc/hosts"), before);
  EXPECT_EQ(Shell("rm /etc/passwd"),
            "rm: cannot remove '/etc/passwd': No such file or directory\nstatus 1\n");
  EXPECT_EQ(Shell("echo 3 > /proc/sys/vm/drop_caches"),
            "sh: 2: cannot create /proc/sys/vm/drop_caches: Directory nonexistent\nstatus 2\n");
}

TEST_F(Device, TheZonesAreTheMachinesUntilTheDeviceBringsItsOwn) {
  ASSERT_TRUE(fs::exists("/usr/share/zoneinfo/US/Eastern"));
  EXPECT_EQ(
      Shell(
          "cd /usr/share/zoneinfo && ls -d US GMT && test -s US/Eastern && test -s /usr/share/zoneinfo/GMT"),
      "GMT\nUS\n");
  fs::create_directories(Place("/usr/share/zoneinfo/US"));
  WriteFile(Place("/usr/share/zoneinfo/US/Own"), "own\n");
  EXPECT_EQ(Shell("find /usr/share/zoneinfo | sort; cat /usr/share/zoneinfo/US/Own /usr/share/zoneinfo/GMT"),
            "/usr/share/zoneinfo\n/usr/share/zoneinfo/US\n/usr/share/zoneinfo/US/Own\nown\n"
            "cat: /usr/share/zoneinfo/GMT: No such file or directory\nstatus 1\n");
  EXPECT_EQ(Shell("ls -d /usr/share/doc"), "/usr/share/doc\n");
}

TEST_F(Device, AZoneOfTheMachineIsNotTheDevicesToChange) {
  EXPECT_EQ(Shell("echo x > /usr/share/zoneinfo/GMT; rm /usr/share/zoneinfo/GMT"),
            "sh: 2: cannot create /usr/share/zoneinfo/GMT: Directory nonexistent\n"
            "rm: cannot remove '/usr/share/zoneinfo/GMT': No such file or directory\nstatus 1\n");
}

TEST_F(Device, HostPathsStayTheMachines) {
  const TempDir host;
  WriteFile(host / "file", "machine\n");
  EXPECT_EQ(Shell("cat " + (host / "file")),
            "cat: " + (host / "file") + ": No such file or directory\nstatus 1\n");
  EXPECT_EQ(Shell("cat " + (host / "file"), {.environment = {"ZQ_SIM_HOST_PATHS=" + host.Path().string()}}),
            "machine\n");
}

TEST_F(Device, TheCallersFolderAndScriptStayTheMachines) {
  const TempDir work;
  WriteFile(work / "script.sh", "echo \"$0\"; cat $(dirname \"$0\")/data /etc/firmware.ver\n");
  WriteFile(work / "data", "mine\n");
  const std::string expected = work / "script.sh" + "\nmine\n1.0.0\n";
  EXPECT_EQ(Run({"sh", work / "script.sh"}, {.folder = work.Path()}).output, expected);
  EXPECT_EQ(Run({"sh", work / "script.sh"}, {.folder = "/"}).output, expected);
  EXPECT_EQ(Run({"sh", "-c", "cat " + (work / "data")}, {.folder = work.Path()}).output, "mine\n");
}

TEST_F(Device, TheRootItselfIsNotMappedAgain) {
  EXPECT_EQ(Shell("cat $ZQ_DEVICE/etc/firmware.ver; realpath $ZQ_DEVICE/etc"),
            "1.0.0\n" + fs::canonical(Root()).string() + "/etc\n");
}

TEST_F(Device, APathThatIsTooLongIsRefused) {
  std::string path = "/tmp";
  while (path.size() < 4090) path += "/a";
  EXPECT_EQ(Shell("mkdir -p /tmp/a; cat " + path + " 2>&1 | sed 's/.*: //'"), "File name too long\n");
  EXPECT_EQ(Shell("cat /tmp/" + std::string(5000, '/') + "x 2>&1 | sed 's/.*: //'"), "File name too long\n");
}

TEST_F(Device, AProgramOfTheDeviceRuns) {
  WriteFile(Place("/brimvale/hello"), "#!/bin/sh\necho \"hello from $0\"\n");
  fs::permissions(Place("/brimvale/hello"), fs::perms::owner_all);
  const std::string expected = "hello from " + fs::canonical(Root()).string() + "/brimvale/hello\n";
  EXPECT_EQ(Shell("/brimvale/hello; PATH=/brimvale:$PATH; hello; env hello; cd /brimvale && ./hello"),
            expected + expected + expected + "hello from ./hello\n");
  EXPECT_EQ(Run({"/brimvale/hello"}).output, expected);
}

TEST_F(Device, AToolOfTheMachineIsNotJudgedForItsLeaks) {
  // This one leaves memory behind, which a build with the address sanitizer would report as its failure.
  EXPECT_EQ(Shell("echo a | sed s/a/b/"), "b\n");
}

TEST_F(Device, ToolsWorkOnWholeTrees) {
  EXPECT_EQ(
      Shell(
          "mkdir -p /tmp/a/b && echo x > /tmp/a/b/c && cp -a /tmp/a /updates/ && find /updates | sort &&"
          "tar -C /updates -cf /tmp/p.tar a && rm -rf /updates/a && tar -C /media -xf /tmp/p.tar &&"
          "mv /media/a /tmp/moved && cat /tmp/moved/b/c && ls /updates /media && stat -c %s /tmp/moved/b/c"),
      "/updates\n/updates/a\n/updates/a/b\n/updates/a/b/c\nx\n/media:\n\n/updates:\n2\n");
}

}  // namespace
