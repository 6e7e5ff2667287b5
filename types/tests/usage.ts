// Every method, as its comment says: what it takes, and what may be done with what it gives.
const util = new ZQUtil();
const text = (value: string): void => print(value);
const amount = (value: number): void => print(value);

text(util.GetVersion().Firmware + util.GetVersion().Software);

for (const network of util.getESSIDList()) {
  text(network.Name + network.AuthType + network.EncType + network.WPAType);
  amount(network.Signal + network.Encrypted + network.Connected);
}
amount(util.getCachedESSIDList().length);
util.backgroundGetESSIDList({ onSSIDList: () => print(util.getCachedESSIDList().length) });
util.backgroundGetESSIDList();
util.backgroundGetESSIDList(null);
text(util.getESSID().Name);
amount(util.getESSID().Signal);
text(util.getConfiguredESSID());
text(util.getConfiguredESSIDListed());
text(util.getIP());
text(util.getMACAddr());
text(util.getSubnetMask());
text(util.getPrimaryDNS());
text(util.getSecondaryDNS());
text(util.getGateway());
text(util.getProxy());
text(util.getNetworkType() === "wireless" ? "air" : "wire");
text(util.getDHCPEnabled() === "YES" ? "asks" : "knows");
text(util.getProxyEnabled() === "NO" ? "direct" : "through");
amount(util.getSignalStrength());

util.setWiredNetworkDHCP();
util.setWiredNetworkStatic("192.168.1.20", "255.255.255.0", "192.168.1.1", "", "192.168.1.1");
util.setWirelessNetworkDHCP("home", "WPAPSK", "AES", "WPA", "secret", 0, "WPA2");
util.setWirelessNetworkStatic("192.168.1.20", "255.255.255.0", "192.168.1.1", "", "192.168.1.1", "home", "WPAPSK",
  "AES", "WPA", "secret", "0", "WPA2");
text(util.getWirelessSecurity().netAuth + util.getWirelessSecurity().keyType);
amount(util.getWirelessSecurity().index);
util.setProxy("proxy.example:8080");
util.setProxyEnabled("yes");
util.setProxyEnabled(false);

class Connectivity implements ZQConnectivityListener {
  events: string[] = [];
  onAssociation() { this.events.push("associated"); }
  onConnectSuccess() { this.events.push("online"); }
}
util.registerConnectivityListener(new Connectivity());
util.registerConnectivityListener();
util.checkConnectivity();

text(util.getFirstTime());
util.setFirstTime("no");

amount(Number(util.getPhoneVolume()));
util.setPhoneVolume(30);
util.MutePhone();
util.UnmutePhone();
amount(Number(util.getMediaVolume()));
util.setMediaVolume("30");
amount(Number(util.getMicVolume()));
util.setMicVolume(30);
util.MuteMic();
util.UnmuteMic();

amount(Number(util.getBrightness()));
util.setBrightness(60);
amount(Number(util.getContrast()));
util.setContrast(5);
text(util.getDimMode() === "TRUE" ? "follows" : "stays");
util.setDimMode(true);
util.screenStandby();

text(util.getTZList().map((zone) => `${zone.Description} ${zone.Name}`).join());
text(util.getNTPEnabled());
util.setNTPEnabled("yes");
text(util.getPrimaryNTPServer());
util.setPrimaryNTPServer("time.example");
text(util.getSecondaryNTPServer());
util.setSecondaryNTPServer("");
util.setTime("112120302026");
util.setTZ("/usr/share/zoneinfo/US/Eastern");
text(util.getTZ());
text(util.getMilitaryTimeEnabled());
util.setMilitaryTimeEnabled(true);

util.appLog("clock", "opened");
util.appLog("clock", "alarm", "07:30");

text(util.isTablet());
amount(util.batteryPct());
text(util.chargeStatus() === "battery" ? "unplugged" : "plugged");

for (const update of util.GetUpdateList()) text(`${update.ID} ${update.Name}`);
util.beginUpdate(7);
util.registerUpdateListener({
  forcedUpdateAvailable: () => print("forced"),
  onDownloading: (percent) => amount(percent),
  onInstalling: () => print("installing"),
  onDownloadFailed: () => print("failed"),
});
util.registerUpdateListener(null);
util.factoryReset();

util.registerAboutListener({ onResult: (about) => text(about.MACAddr + about.Firmware) });

text(util.getIniSetting("clock", "face"));
text(util.getIniSetting("clock", "face", "analog"));
util.setIniSetting("clock", "face", 1);
util.deleteIniFile("clock", "");
util.writeFile("greeting.txt", "hello");
util.deleteFile("greeting.txt");
text(util.utf8Encode("abc"));

console.log({}, 1);
console.warn("careful");
const timer = setTimeout((name: string) => print(name), 10, "later");
clearTimeout(timer);
clearInterval(setInterval(() => gc(), 1000));
load("other.js");
const never: never = exit(0);
print(never);
