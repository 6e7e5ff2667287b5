"""What the typings promise of results, errors and listeners is what the methods do, on every ready device.

  runtime_test.py FOLDER-OF-PROGRAMS
"""

import json
import os
import re
import subprocess
import sys
import unittest

sys.dont_write_bytecode = True
HERE = os.path.dirname(os.path.realpath(__file__))
sys.path[:0] = [HERE, os.path.dirname(HERE), os.path.join(os.path.dirname(os.path.dirname(HERE)), "tests", "support")]
import at_once  # noqa: E402
import device  # noqa: E402
import typings  # noqa: E402

PROGRAMS = None
PROFILES = ("home-phone", "tablet", "bare")
STATIC = "'10.0.0.2', '255.0.0.0', '10.0.0.3', '10.0.0.4', '10.0.0.1'"
WIRELESS = "'Lindenhof', 'WPA-PSK', 'AES', '', 'quittenbaum', 1, 'WPA2'"
# What a method that wants arguments is given.
ARGUMENTS = {
    "setWiredNetworkStatic": STATIC, "setWirelessNetworkDHCP": WIRELESS,
    "setWirelessNetworkStatic": f"{STATIC}, {WIRELESS}", "setProxy": "'proxy.example'", "setProxyEnabled": "true",
    "setFirstTime": "'Done'", "setPhoneVolume": "30", "setMediaVolume": "'30'", "setMicVolume": "30",
    "setBrightness": "30", "setContrast": "3", "setDimMode": "false", "setNTPEnabled": "'yes'",
    "setPrimaryNTPServer": "'time.example'", "setSecondaryNTPServer": "''", "setTime": "'112120302026'",
    "setTZ": "'/usr/share/zoneinfo/Asia/Tokyo'", "setMilitaryTimeEnabled": "true", "appLog": "'clock', 'alarm'",
    "beginUpdate": "7", "getIniSetting": "'clock', 'face'", "setIniSetting": "'clock', 'face', 1",
    "deleteIniFile": "'clock', ''", "writeFile": "'greeting.txt', 'hello'", "deleteFile": "'greeting.txt'",
    "utf8Encode": "'abc'",
}
# The radio as the network's script leaves it.
JOINED = "[link]\nup = yes\nassociated = yes\nessid = Lindenhof\n[address]\nip = 192.0.2.58\nnetmask = 255.255.255.0\n"
# Calls a method, and says what became of it: a list of its value, or "throws".
TRY = """
const util = new ZQUtil();
const tried = (call) => { try { const value = call(); return value === undefined ? ['nothing'] : ['gives', value]; }
                          catch (error) { return ['throws', error.message]; } };
"""


def fits(value, kind, interfaces):
    """Whether the value is of the type: literals, string, number, an interface, arrays of them, and unions."""
    if kind.endswith("[]"):
        return isinstance(value, list) and all(fits(each, kind[:-2], interfaces) for each in value)
    if " | " in kind:
        return any(fits(value, each, interfaces) for each in kind.split(" | "))
    if kind in interfaces:
        fields = interfaces[kind].fields
        return (isinstance(value, dict) and list(value) == [field.name for field in fields]
                and all(fits(value[field.name], field.type, interfaces) for field in fields))
    if kind in ("string", "number"):
        return isinstance(value, str if kind == "string" else int) and not isinstance(value, bool)
    return type(value) is type(json.loads(kind)) and value == json.loads(kind)


class RuntimeTest(unittest.TestCase):
    def setUp(self):
        self.device, interfaces = typings.read_typings()
        self.interfaces = {interface.name: interface for interface in interfaces}
        self.results = {method.name: method.result for method in self.device.methods}

    def call(self, name):
        return f"util.{name}({ARGUMENTS.get(name, '')})"

    def outcomes(self, mine, before="", names=None):
        calls = ", ".join(f"{name}: tried(() => {self.call(name)})" for name in names or self.results)
        return json.loads(mine.script(f"{TRY} {before}; print(JSON.stringify({{{calls}}})); exit(0);"))

    def assert_promised(self, outcomes, **where):
        for name, (what, *value) in outcomes.items():
            with self.subTest(method=name, got=value, **where):
                if self.results[name] == "void":
                    self.assertEqual(what, "nothing")
                else:
                    self.assertEqual(what, "gives")
                    self.assertTrue(fits(value[0], self.results[name], self.interfaces), f"is no {self.results[name]}")


class ResultTest(RuntimeTest):
    def test_every_call_has_its_arguments(self):
        wanting = {each.name for each in self.device.methods if any(not one.optional for one in each.parameters)}
        self.assertEqual(wanting, set(ARGUMENTS))

    def test_results_are_of_the_promised_types_on_every_device(self):
        for profile in PROFILES:
            with device.Device(PROGRAMS, profile) as mine:
                outcomes = self.outcomes(mine)
            self.assertEqual(list(outcomes), list(self.results))
            self.assert_promised(outcomes, profile=profile)
            # A list without entries would prove nothing of the entries.
            if profile != "bare":
                self.assertGreater(len(outcomes["getESSIDList"][1]), 0)

    def test_results_are_of_the_promised_types_on_a_network(self):
        for profile in ("home-phone", "tablet"):
            with device.Device(PROGRAMS, profile) as mine:
                with open(mine.path("hw", "ra0", "link.ini"), "w", encoding="utf-8") as file:
                    file.write(JOINED)
                names = [name for name, result in self.results.items() if result != "void"]
                outcomes = self.outcomes(mine, self.call("setWirelessNetworkDHCP"), names)
            self.assert_promised(outcomes, profile=profile)
            current, = outcomes["getESSID"][1:]
            self.assertEqual((current["Name"], current["Connected"]), ("Lindenhof", 1))
            entry, = [entry for entry in outcomes["getESSIDList"][1] if entry["Name"] == "Lindenhof"]
            self.assertEqual((entry["Connected"], entry["Signal"]), (1, current["Signal"]))
            self.assertGreater(outcomes["getSignalStrength"][1], 0)
            self.assertEqual(outcomes["getIP"][1], "192.0.2.58")

    def test_about_summary_is_of_the_promised_type(self):
        script = ("const util = new ZQUtil();"
                  "util.registerAboutListener({ onResult(about) { print(JSON.stringify(about)); exit(0); } });")
        for profile in PROFILES:
            with device.Device(PROGRAMS, profile) as mine:
                about = json.loads(mine.script(script))
            self.assertTrue(fits(about, "ZQAbout", self.interfaces), about)

    def test_wrong_results_would_not_fit(self):
        for value, kind in ((True, "number"), (1, "string"), ("yes", '"YES" | "NO"'), (2, "0 | 1"), (True, "0 | 1"),
                            ({}, "ZQVersion"), ([{"Name": "x"}], "ZQTimeZone[]"), (False, "0"),
                            ({"Software": "", "Firmware": ""}, "ZQVersion")):
            self.assertFalse(fits(value, kind, self.interfaces), kind)


class ErrorTest(RuntimeTest):
    def test_without_a_key_store_these_throw_and_the_others_answer_as_ever(self):
        with device.Device(PROGRAMS) as mine:
            os.remove(mine.path("etc", "fw_env.config"))
            outcomes = self.outcomes(mine)
        thrown = {name: message for name, (what, *message) in outcomes.items() if what == "throws"}
        promised = [each.name for each in self.device.methods if each.throws == "when the key store cannot be opened"]
        self.assertEqual(thrown, {name: [f"ZQUtil.{name} failed"] for name in promised})
        self.assertEqual(len(promised), 2)
        self.assertEqual([outcomes[name][1] for name in ("getDHCPEnabled", "getNTPEnabled", "getNetworkType")],
                         ["NO", "NO", "wired"])
        self.assert_promised({name: outcome for name, outcome in outcomes.items() if name not in thrown})

    def test_what_throws_is_what_the_comments_say(self):
        texts = {"listener": "'text'", "arguments": ""}
        promised = {each.name for each in self.device.methods
                    if each.throws and each.throws != "when the key store cannot be opened"}
        for what, given in texts.items():
            calls = ", ".join(f"{name}: tried(() => util.{name}({given}))" for name in self.results)
            with device.Device(PROGRAMS) as mine:
                outcomes = json.loads(mine.script(f"{TRY} print(JSON.stringify({{{calls}}})); exit(0);"))
            thrown = {name for name, outcome in outcomes.items() if outcome[0] == "throws"}
            listeners = {name for name in promised if "Listener" in name or name == "backgroundGetESSIDList"}
            alone = {"deleteFile", "utf8Encode"} if what == "listener" else set()
            self.assertEqual(thrown, promised - (alone if what == "listener" else listeners), what)

    def test_listeners_and_settings_want_so_many_arguments(self):
        calls = {"setIniSetting('a', 'b', 'c', 'd')": True, "writeFile('a', 'b', 'c')": True,
                 "deleteFile('a', 'b')": True, "utf8Encode('a', 'b')": True, "deleteIniFile('a', 'b', 'c')": True,
                 "getIniSetting('a', 'b', 'c', 'd')": False, "registerAboutListener({}, {})": False,
                 "registerUpdateListener('text', {})": False}
        tried = ", ".join(f"tried(() => util.{call})" for call in calls)
        with device.Device(PROGRAMS) as mine:
            outcomes = json.loads(mine.script(f"{TRY} print(JSON.stringify([{tried}])); exit(0);"))
        self.assertEqual({call: outcome[0] == "throws" for call, outcome in zip(calls, outcomes)}, calls)


class ListenerTest(RuntimeTest):
    # Says which methods of a listener are called, and with what; a method that the listener lacks would go unseen.
    HEAR = """
const util = new ZQUtil();
const hear = (done, ...last) => new Proxy({}, { get: (listener, name) => (...values) => {
  print(JSON.stringify([name, ...values]));
  if (last.includes(name)) done();
} });
"""

    def heard(self, mine, text):
        with open(mine.path("zqapplog.ini"), "w", encoding="utf-8") as file:
            file.write("[config]\nhost = localhost\nsslport = 1\n")
        script = os.path.join(mine.scratch, "script.js")
        with open(script, "w", encoding="utf-8") as file:
            file.write(self.HEAR + text)
        done = subprocess.run([mine.program("sorel"), "--device", mine.root, script], capture_output=True, text=True,
                              check=False, timeout=device.PATIENCE)
        self.assertEqual(done.returncode, 0, done.stderr)
        return [json.loads(line) for line in done.stdout.splitlines() if line.startswith("[")]

    def assert_heard(self, interface, events):
        methods = {method.name: method for method in self.interfaces[interface].methods}
        for name, *values in events:
            kinds = [parameter.type for parameter in methods[name].parameters]
            self.assertEqual(len(values), len(kinds), name)
            for value, kind in zip(values, kinds):
                self.assertTrue(fits(value, kind, self.interfaces), f"{name}: {value}")

    def test_each_hears_its_methods_with_their_arguments(self):
        cases = [
            ("ZQESSIDListener", "home-phone", "util.backgroundGetESSIDList(hear(() => exit(0), 'onSSIDList'));",
             ["onSSIDList"]),
            ("ZQAboutListener", "tablet", "util.registerAboutListener(hear(() => exit(0), 'onResult'));", ["onResult"]),
            ("ZQConnectivityListener", "bare",
             "util.registerConnectivityListener(hear(() => exit(0), 'onConnectFailure')); util.checkConnectivity();",
             ["onConnectFailure"]),
            ("ZQConnectivityListener", "bare",
             "util.registerConnectivityListener(hear(() => exit(0), 'onConnectFailure')); util.setWiredNetworkDHCP();",
             ["onBeginDHCP", "onBeginConnectivityCheck", "onConnectFailure"]),
            ("ZQConnectivityListener", "home-phone",
             "util.registerConnectivityListener(hear(() => exit(0), 'onFailedAssociation'));"
             "util.setWirelessNetworkDHCP('Nobody', 'OPEN', 'NONE', '', '', 0, 'None');", ["onFailedAssociation"]),
        ]

        def hear(case):
            with device.Device(PROGRAMS, case[1]) as mine:
                return self.heard(mine, case[2])
        for (interface, _, _, wanted), events in zip(cases, at_once.mapped(hear, cases)):
            with self.subTest(interface=interface, wanted=wanted):
                # (An address that comes before the network's start is over is told in between.)
                self.assertEqual([event[0] for event in events if event[0] != "onDoneDHCP"], wanted)
                self.assert_heard(interface, events)


class ClassTest(RuntimeTest):
    def names(self, text):
        with device.Device(PROGRAMS, "bare") as mine:
            return json.loads(mine.script(f"print(JSON.stringify({text})); exit(0);"))

    def test_class_has_the_methods_of_the_typings_and_no_other(self):
        names = self.names("Object.getOwnPropertyNames(ZQUtil.prototype)")
        self.assertEqual(sorted(name for name in names if name != "constructor"), sorted(self.results))

    def test_globals_of_the_typings_are_the_hosts(self):
        with open(os.path.join(os.path.dirname(HERE), "sorel.d.ts"), encoding="utf-8") as file:
            text = file.read()
        named = re.findall(r"^declare (?:function|const) (\w+)", text, re.M)
        self.assertEqual(self.names(f"{json.dumps(named)}.filter((name) => globalThis[name] === undefined)"), [])
        self.assertIn("print", named)
        self.assertEqual(self.names("Object.keys(console)"), re.findall(r"^  (\w+)\(", text, re.M))


if __name__ == "__main__":
    PROGRAMS = os.path.abspath(sys.argv.pop(1))
    at_once.main()
