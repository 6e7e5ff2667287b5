#include "path_rules.h"

#include <algorithm>

#include "lexical_path.h"

namespace {

constexpr PathRule kDeviceRoots[] = {
    {"/etc", Owner::kDevice, "settings of the device's system"},
    {"/proc", Owner::kDevice, "the device's own drivers and the kernel's tables"},
    {"/sys", Owner::kDevice, "batteries, links, sensors"},
    {"/tmp", Owner::kDevice, "trigger files and their answers"},
    {"/updates", Owner::kDevice, "downloaded packages"},
    {"/media", Owner::kDevice, "cards and sticks"},
    {"/brimvale", Owner::kDevice, "the installed screens"},
    {"/dev/i2c-0", Owner::kDevice, "the light sensor's bus"},
    {"/var/lib/zq", Owner::kDevice, "the key store's copies"},
    {"/var/lock", Owner::kDevice, "locks of the device's programs"},
    {"/run/lock", Owner::kDevice, "the same, by its newer name"},
    {"/usr/share/zoneinfo", Owner::kSharedFolder, "the installed time zones"},
};

constexpr PathRule kExceptions[] = {
    // The machine's: true of this process and no other.
    {"/proc/self", Owner::kMachine, "the process itself"},
    {"/proc/thread-self", Owner::kMachine, "the thread itself"},
    // "/proc/<number>", processes of the machine, is a rule of its own in OwnerOf.
    {"/tmp/.X11-unix", Owner::kMachine, "the display's sockets"},
    // Shared: libraries of the machine need them, a device may have its own.
    {"/proc/cpuinfo", Owner::kShared, "what the processor can do, asked by crypto and script engines"},
    {"/proc/filesystems", Owner::kShared, "asked by the security library of the base tools"},
    {"/proc/loadavg", Owner::kShared, "load, for tools"},
    {"/proc/meminfo", Owner::kShared, "memory, asked by script engines"},
    {"/proc/stat", Owner::kShared, "processors and boot time, for tools"},
    {"/proc/sys/kernel", Owner::kShared, "limits and ids, asked by the C library and tools"},
    {"/proc/sys/vm", Owner::kShared, "the kernel's memory policy, asked by allocators"},
    {"/proc/uptime", Owner::kShared, "time since boot, for tools"},
    {"/sys/devices/system", Owner::kShared, "number of processors, asked by thread pools"},
    {"/sys/fs/cgroup", Owner::kShared, "memory limits, asked by script engines"},
    {"/sys/kernel/mm", Owner::kShared, "size of large pages, asked by allocators"},
    {"/etc/alsa", Owner::kShared, "how the sound library finds cards and plugins"},
    {"/etc/asound.conf", Owner::kShared, "the same, by the machine's owner"},
    {"/etc/ca-certificates", Owner::kShared, "which authorities are trusted"},
    {"/etc/fonts", Owner::kShared, "where fonts are"},
    {"/etc/gai.conf", Owner::kShared, "order of addresses"},
    {"/etc/group", Owner::kShared, "the names of this process's groups"},
    {"/etc/host.conf", Owner::kShared, "how host names are resolved"},
    {"/etc/hosts", Owner::kShared, "the name localhost, for resolvers outside the C library"},
    {"/etc/inputrc", Owner::kShared, "keys of a prompt"},
    {"/etc/ld.so.cache", Owner::kShared, "where the machine's libraries are"},
    {"/etc/ld.so.conf", Owner::kShared, "the same, as text"},
    {"/etc/ld.so.conf.d", Owner::kShared, "the same, in pieces"},
    {"/etc/locale.alias", Owner::kShared, "names of languages"},
    {"/etc/localtime", Owner::kShared, "the time zone until the device sets one"},
    {"/etc/machine-id", Owner::kShared, "asked by the message bus"},
    {"/etc/nsswitch.conf", Owner::kShared, "which libraries resolve names"},
    {"/etc/passwd", Owner::kShared, "the name of this process's user"},
    {"/etc/pki", Owner::kShared, "certificates, on some systems"},
    {"/etc/protocols", Owner::kShared, "numbers of protocols"},
    {"/etc/services", Owner::kShared, "numbers of services"},
    {"/etc/ssl", Owner::kShared, "certificates and settings of the TLS library"},
    {"/etc/terminfo", Owner::kShared, "what the terminal can do"},
};

bool IsDigit(char c) {
  return c >= '0' && c <= '9';
}

// "/proc/<number>" at the start of the path: its length, else 0.
size_t ProcessPrefix(std::string_view path) {
  constexpr std::string_view kProc = "/proc/";
  if (!path.starts_with(kProc)) return 0;
  size_t length = kProc.size();
  while (length < path.size() && IsDigit(path[length])) ++length;
  const bool ends = length == path.size() || path[length] == '/';
  return ends && length > kProc.size() ? length : 0;
}

const PathRule* LongestMatch(std::span<const PathRule> rules, std::string_view path) {
  const PathRule* best = nullptr;
  for (const PathRule& rule : rules) {
    if (!IsAtOrBelow(path, rule.prefix)) continue;
    if (best == nullptr || rule.prefix.size() > best->prefix.size()) best = &rule;
  }
  return best;
}

// The length of `prefix` when it decides for the path: the path is there or below. A folder on the way to
// `prefix` counts too, by itself, because programs look at, or try to make, each folder of a path in turn.
size_t Match(std::string_view path, std::string_view prefix) {
  if (IsAtOrBelow(path, prefix)) return prefix.size();
  while (path.ends_with('/')) path.remove_suffix(1);
  return IsAtOrBelow(prefix, path) ? path.size() : 0;
}

size_t LongestHostPath(std::string_view path, std::string_view hostPaths) {
  size_t longest = 0;
  while (!hostPaths.empty()) {
    const size_t colon = std::min(hostPaths.find(':'), hostPaths.size());
    std::string_view prefix(hostPaths.data(), colon);
    hostPaths.remove_prefix(std::min(colon + 1, hostPaths.size()));
    while (prefix.ends_with('/')) prefix.remove_suffix(1);
    if (!prefix.empty()) longest = std::max(longest, Match(path, prefix));
  }
  return longest;
}

}  // namespace

std::span<const PathRule> DeviceRoots() {
  return kDeviceRoots;
}

std::span<const PathRule> Exceptions() {
  return kExceptions;
}

Owner OwnerOf(std::string_view path, const DeviceView& view) {
  const PathRule* best = LongestMatch(kDeviceRoots, path);
  if (best == nullptr) return Owner::kMachine;
  if (const PathRule* exception = LongestMatch(kExceptions, path)) best = exception;
  if (best->owner == Owner::kMachine) return Owner::kMachine;
  const size_t decisive = best->prefix.size();
  if (ProcessPrefix(path) > decisive) return Owner::kMachine;
  if (Match(path, view.root) > decisive) return Owner::kMachine;
  if (LongestHostPath(path, view.hostPaths) > decisive) return Owner::kMachine;
  return best->owner;
}

std::string_view SharedFolderOf(std::string_view path) {
  const PathRule* rule = LongestMatch(kDeviceRoots, path);
  return rule != nullptr ? rule->prefix : path;
}

std::string_view SeenFromDevice(std::string_view path, const DeviceView& view) {
  if (path.size() <= view.root.size() || !IsAtOrBelow(path, view.root)) return path;
  const std::string_view inner(path.data() + view.root.size(), path.size() - view.root.size());
  return OwnerOf(inner, view) == Owner::kMachine ? path : inner;
}

bool IsDriverFile(std::string_view path) {
  return IsAtOrBelow(path, "/proc") || IsAtOrBelow(path, "/sys");
}
