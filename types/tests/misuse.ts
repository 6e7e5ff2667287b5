// Each of these is a mistake that an editor is to show; a line that compiles fails the test.
const util = new ZQUtil();

// @ts-expect-error levels come back as texts
util.getBrightness() + 1 > 50 && util.setBrightness(util.getBrightness() - 1);
// @ts-expect-error yes and no are texts of their own
if (util.getNTPEnabled() === "TRUE") print("never");
// @ts-expect-error a setter without its argument does nothing
util.setBrightness();
// @ts-expect-error three arguments
util.setIniSetting("clock", "face");
// @ts-expect-error the ignored argument must be there
util.deleteIniFile("clock");
// @ts-expect-error twelve arguments
util.setWirelessNetworkStatic("192.168.1.20", "255.255.255.0");
// @ts-expect-error objects, not texts
util.getESSIDList().includes("home");
// @ts-expect-error a listener's method with a name of its own
util.registerConnectivityListener({ onConected() {} });
// @ts-expect-error capital letters
util.getVersion();
// @ts-expect-error an object
util.registerUpdateListener(() => {});
// @ts-expect-error a number
util.beginUpdate("1");
// @ts-expect-error nothing after it runs, and its status is a number
exit("0");
