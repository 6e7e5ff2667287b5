"""What a method changes on the device is what its comment names: keys, settings, files; and nothing when an argument
is missing.

  effects_test.py FOLDER-OF-PROGRAMS
"""

import json
import os
import re
import sys
import unittest

sys.dont_write_bytecode = True
HERE = os.path.dirname(os.path.realpath(__file__))
sys.path[:0] = [HERE, os.path.dirname(HERE), os.path.join(os.path.dirname(os.path.dirname(HERE)), "tests", "support")]
import at_once  # noqa: E402
import device  # noqa: E402
import typings  # noqa: E402

PROGRAMS = None
CLOCK = {"/tmp/do_time": "1"}
NETWORK = {"/tmp/do_S12": "1"}
ADDRESSES = {"net.ipaddr": "10.0.0.2", "net.netmask": "255.0.0.0", "net.gateway": "10.0.0.1",
             "net.ns": "10.0.0.3,10.0.0.4"}
RADIO = {"net.essid": "Lindenhof", "net.authtype": "WPA-PSK", "net.enctype": "AES", "net.key": "quittenbaum",
         "net.wpatype": "WPA2", "net.index": "1"}
GONE = dict.fromkeys(["net.essid", "net.authtype", "net.enctype", "net.key", "net.index"])
STATIC = "'10.0.0.2', '255.0.0.0', '10.0.0.3', '10.0.0.4', '10.0.0.1'"
WIRELESS = "'Lindenhof', 'WPA-PSK', 'AES', '', 'quittenbaum', 1, 'WPA2'"
# The keys of a hidden network with an address of its own, for those that erase them.
WAS_STATIC = f"util.setWirelessNetworkStatic({STATIC}, {WIRELESS.replace('Lindenhof', 'Nobody')})"
WAS_WIRED = f"util.setWiredNetworkStatic({STATIC})"

# What a method changes: its arguments, the changes, and what a script did before.
CHANGES = {
    "setWiredNetworkDHCP": [
        ("", {"net.dhcp": "YES", "net.wifi": "NO"} | GONE | dict.fromkeys(ADDRESSES) | NETWORK, WAS_STATIC)],
    "setWiredNetworkStatic": [(STATIC, {"net.wifi": "NO"} | GONE | NETWORK, WAS_STATIC),
                              (STATIC, {"net.dhcp": "NO", "net.wifi": "NO"} | ADDRESSES | NETWORK)],
    "setWirelessNetworkDHCP": [
        (WIRELESS, {"net.dhcp": "YES", "net.wifi": "YES"} | RADIO | dict.fromkeys(ADDRESSES) | NETWORK,
         WAS_WIRED),
        (WIRELESS.replace("Lindenhof", "Nobody").replace("1,", "0,"),
         {"net.dhcp": "YES", "net.index": None} | dict.fromkeys(ADDRESSES) | NETWORK, WAS_STATIC),
        (WIRELESS,
         {"net.dhcp": "YES", "net.essid": "Lindenhof", "net.listed": None} | dict.fromkeys(ADDRESSES) | NETWORK,
         WAS_STATIC)],
    "setWirelessNetworkStatic": [
        (f"{STATIC}, {WIRELESS}", {"net.dhcp": "NO", "net.wifi": "YES"} | ADDRESSES | RADIO | NETWORK),
        (f"{STATIC}, {WIRELESS.replace('Lindenhof', 'Nobody')}",
         {"net.wifi": "YES", "net.listed": "FALSE"} | RADIO | {"net.essid": "Nobody"} | NETWORK, WAS_WIRED)],
    "setProxy": [("'proxy.example:8080'", {"net.proxy": "proxy.example:8080"})],
    "setProxyEnabled": [("'Yes'", {"net.proxyen": "TRUE"}), ("'on'", {"net.proxyen": "FALSE"})],
    "setFirstTime": [("'Done'", {"net.firsttime": "Done"})],
    "setPhoneVolume": [("150", {"zqutil.ini phoneVolume": "100", "zqutil.ini mediaVolume": "100"})],
    "setMediaVolume": [("'-5'", {"zqutil.ini phoneVolume": "0", "zqutil.ini mediaVolume": "0"})],
    "setMicVolume": [("33.9", {"zqutil.ini micVolume": "33"})],
    "setBrightness": [("'50%'", {"zqutil.ini brightness": "50", "/proc/blctrl": "50"})],
    "setContrast": [("'none'", {"zqutil.ini contrast": "16"}), ("11", {"zqutil.ini contrast": "30"})],
    "setDimMode": [("true", {"zqutil.ini autolight": "true"}), ("'yes'", {"zqutil.ini autolight": "false"})],
    "setNTPEnabled": [("'no'", {"net.ntpenabled": "NO"} | CLOCK), ("true", {"net.ntpenabled": "YES"} | CLOCK)],
    "setPrimaryNTPServer": [("'time.example'", {"net.priNTP": "time.example"} | CLOCK),
                            ("''", {"net.priNTP": None} | CLOCK, "util.setPrimaryNTPServer('time.example')")],
    "setSecondaryNTPServer": [("'time.example'", {"net.secNTP": "time.example"} | CLOCK),
                              ("''", {"net.secNTP": None} | CLOCK, "util.setSecondaryNTPServer('time.example')")],
    "setTime": [("'112120302026'", {"/etc/datetime": "112120302026"} | CLOCK), ("'1121203020'", CLOCK)],
    "setTZ": [("'/usr/share/zoneinfo/Asia/Tokyo'", {"sys.tz": "/usr/share/zoneinfo/Asia/Tokyo"} | CLOCK)],
    "setMilitaryTimeEnabled": [("true", {"net.mte": "YES"} | CLOCK)],
    "factoryReset": [("", {"/tmp/factory_reset": "1"})],
    "setIniSetting": [("'clock', 'face', 1", {"clock.ini": "is there", "clock.ini face": "1"}),
                      ("'clock', 'face', undefined", {"clock.ini": "is there", "clock.ini face": "undefined"}),
                      ("'clock', 'fa=ce', 'round'", {}), ("'clock', '', 'round'", {}),
                      ("'clock', '#face', 'round'", {})],
    "deleteIniFile": [("'clock', ''", {"clock.ini": None, "clock.ini face": None},
                       "util.setIniSetting('clock', 'face', 1)")],
    "writeFile": [("'greeting.txt', 'hello'", {"/cache/greeting.txt": "hello"})],
    "deleteFile": [("'greeting.txt'", {"/cache/greeting.txt": None}, "util.writeFile('greeting.txt', 'hello')")],
}
# What the others are called with; without an argument where none is named.
QUIET = {
    "backgroundGetESSIDList": "{}", "registerConnectivityListener": "{}", "registerUpdateListener": "{}",
    "registerAboutListener": "{}", "beginUpdate": "7", "getIniSetting": "'clock', 'face'", "utf8Encode": "'abc'",
    "appLog": "'clock'", "checkConnectivity": "",
}
# Arguments of which undefined and null are stored, as a text.
STORED_WHEN_MISSING = {("setIniSetting", "value"), ("setWirelessNetworkDHCP", "wpaType"),
                       ("setWirelessNetworkStatic", "wpaType")}


# The network's restart asks the system from a thread of its own. (The file's text is a script, too, whose value is the
# number; of a file that is just being written it has none.)
AWAIT_REQUEST = "setInterval(() => { try { if (load('/tmp/do_S12') === 1) exit(0); } catch {} }, 10)"


def script(calls, end="exit(0)"):
    return f"const util = new ZQUtil(); {calls}; {end};"


def named(method, methods, seen=None):
    """The method's comment, and those of the methods that it refers to."""
    seen = set() if seen is None else seen
    if method.name in seen:
        return ""
    seen.add(method.name)
    text = " ".join([method.about, method.returns, *(parameter.about for parameter in method.parameters)])
    others = [methods[name] for name in re.findall(r"`(\w+)`", text) if name in methods]
    return text + "".join(named(other, methods, seen) for other in others)


class EffectsTest(unittest.TestCase):
    def setUp(self):
        listed = typings.read_typings()[0].methods
        self.methods = {method.name: method for method in listed}
        self.fresh = device.Device(PROGRAMS)
        self.addCleanup(self.fresh.__exit__)
        # Or the backlight would follow the light, too, once it is to.
        with open(self.fresh.path("hw", "light.ini"), "a", encoding="utf-8") as file:
            file.write("transfers = fail\n")
        # The first object writes the levels, as it does at each start.
        self.fresh.script(script(""))

    def changed(self, before, calls):
        with device.Device(PROGRAMS, like=self.fresh) as mine:
            if before:
                mine.script(script(before, AWAIT_REQUEST if "Network" in before else "exit(0)"))
                mine.forget_requests()
            held = mine.holds()
            mine.script(script(calls, AWAIT_REQUEST if re.match(r"util\.setWire", calls) else "exit(0)"))
            return device.changes(held, mine.holds())

    def cases(self):
        for name, rows in CHANGES.items():
            for arguments, wanted, *before in rows:
                yield name, arguments, wanted, before[0] if before else ""

    def test_each_call_changes_this_and_nothing_else(self):
        cases = list(self.cases())
        got = at_once.mapped(lambda case: self.changed(case[3], f"util.{case[0]}({case[1]})"), cases)
        for (name, arguments, wanted, _), changed in zip(cases, got):
            with self.subTest(call=f"{name}({arguments})"):
                self.assertEqual(changed, wanted)

    def test_comments_name_what_is_changed(self):
        groups = {}
        for method in self.methods.values():
            groups[method.group] = groups.get(method.group, "") + method.about
        for name, arguments, wanted, _ in self.cases():
            text = named(self.methods[name], self.methods)
            for thing in wanted:
                with self.subTest(call=f"{name}({arguments})", thing=thing):
                    self.assertTrue(self.is_named(thing, text, groups[self.methods[name].group]), "is not named")

    @staticmethod
    def is_named(thing, text, group):
        if thing.startswith("/tmp/"):
            return thing in group  # "the other setters of this group, too"
        if thing.startswith("/cache/"):
            return "./cache/NAME" in text
        file, _, key = thing.partition(" ")
        if file == "clock.ini":
            return "APPLICATION.ini" in text
        if thing.startswith("/"):
            return thing in text
        return f"`{key}`" in text and file in text if key else f"`{thing}`" in text

    def test_the_others_change_nothing(self):
        calls = "; ".join(f"util.{name}({QUIET.get(name, '')})" for name in self.methods if name not in CHANGES)
        self.assertEqual(self.changed("", calls), {})

    def test_a_record_is_handed_to_the_library_that_is_there(self):
        (name, text), = self.changed("", "util.appLog('clock', 'alarm', '07:30')").items()
        self.assertEqual((name, text.split("\t")[1:]), ("/zqapplog.log", ["clock", "alarm", "07:30\n"]))
        self.assertIn("zqapplog.log", self.methods["appLog"].about)

    def test_a_missing_argument_changes_nothing_and_throws_where_the_comment_says(self):
        calls, wanted = [], []
        for name in CHANGES:
            method = self.methods[name]
            needed = [parameter for parameter in method.parameters if not parameter.optional]
            for place, parameter in enumerate(needed):
                words = ["'Yes'"] * len(needed)
                texts = [None] if (name, parameter.name) in STORED_WHEN_MISSING else ["undefined", "null"]
                texts += [None] if place == len(needed) - 1 and texts != [None] else []
                for text in texts:
                    if text is None and parameter.name == "wpaType":
                        continue
                    given = words[:place] + ([text] + words[place + 1:] if text else [])
                    calls.append(f"{name}({', '.join(given)})")
                    wanted.append(bool(method.throws))
        self.assertGreater(len(calls), 80)
        tried = ", ".join(f"() => util.{call}" for call in calls)
        thrown = ("const throws = (call) => { try { call(); return false; } catch { return true; } };"
                  f"print(JSON.stringify([{tried}].map(throws)))")
        with device.Device(PROGRAMS, like=self.fresh) as mine:
            held = mine.holds()
            got = json.loads(mine.script(script(thrown)))
            self.assertEqual(dict(zip(calls, got)), dict(zip(calls, wanted)))
            self.assertEqual(device.changes(held, mine.holds()), {})

    def test_every_setter_is_looked_at(self):
        quiet = {name for name in self.methods if name.startswith(("set", "delete", "write"))} - set(CHANGES)
        self.assertEqual(quiet, set())


if __name__ == "__main__":
    PROGRAMS = os.path.abspath(sys.argv.pop(1))
    at_once.main()
