// The class ZQUtil, as scripts see it.
//
// Four habits of its methods, said once:
//
// - Yes and no are texts ("YES", "no", "TRUE" and so on, as each method says), never booleans; volumes and levels
//   come back as texts of decimal digits too. `Number(util.getBrightness())` makes a number of one.
// - Setters take texts and numbers alike. One that wants a number reads the whole number that the text begins with
//   (33.9 is 33, "50%" is 50, and what begins with none is 0), and moves a number outside the range to its nearer
//   end. `undefined` and `null` count as missing, and a setter that misses an argument does nothing. Arguments beyond
//   those that are named here change nothing, unless the method says how many it wants. A text ends at its first NUL.
// - A device that lacks the thing gets an ordinary answer, not an error: 0, "", "0.0.0.0", as each method says. Where
//   the key store cannot be opened, texts are "", yes-or-no answers "NO", the network "wired", and setters of its
//   keys do nothing. A call throws an Error ("ZQUtil.getIniSetting failed") only where the method says so.
// - A getter gives what was set last, at once, but for two that may give the old value for a moment: `getIniSetting`
//   and `getFirstTime`. For settings files and the key `net.firsttime` are written behind the script's back, so that
//   no screen waits for the flash: they hold the new value a moment later, and in any case before the host ends. The
//   backlight follows behind the script's back, too. Other keys and files hold the new value when the setter returns.

/** A text, or a number that is turned into one. */
type ZQText = string | number;

/** A network in the air, as the last scan found it. */
interface ZQAccessPoint {
  /** The network's name. */
  Name: string;
  /** Signal strength: the radio's level (0 to 255) less 142: 0 is weak, 54 good, less than 0 hardly there. */
  Signal: number;
  /** 1 when the network is encrypted, or 0. */
  Encrypted: 0 | 1;
  /** 1 when this is the configured network (letters compared without case) and the device is connected to it, or 0. */
  Connected: 0 | 1;
  /** How a device shows that it may join. */
  AuthType: "WPA-PSK" | "WEP" | "Disabled";
  /** The ciphers that the network offers. */
  EncType: "TKIP+AES" | "TKIP" | "AES" | "None";
  /** Which WPA the network speaks. */
  WPAType: "WPA1" | "WPA2" | "None";
}

/** The network that the device is configured for. Empty text and zeros when it is configured for none. */
interface ZQCurrentNetwork {
  /** The network's name, in the air or not. */
  Name: string;
  /** As in {@link ZQAccessPoint}; 0 when the device is not connected. */
  Signal: number;
  /** Always 0: the entry of `getCachedESSIDList` with this name says whether the network is encrypted. */
  Encrypted: 0;
  /** 1 when the device is connected to it, or 0. */
  Connected: 0 | 1;
}

/** How the device is set up to join its wireless network. */
interface ZQWirelessSecurity {
  /** What the set-up had as `authentication`; "OPEN" when nothing was set. */
  netAuth: string;
  /** What the set-up had as `encryption`; "DISABLED" when nothing was set. */
  encryption: string;
  /** Told from the key's length: 10 characters "WEP40", 26 "WEP104", none "NOKEY", any other number "WPA". */
  keyType: "WEP40" | "WEP104" | "NOKEY" | "WPA";
  /** The key in clear text, "" when there is none. */
  key: string;
  /** The WEP key's number, from 1; 0 when none was set. */
  index: number;
}

/** A time zone that is installed on the device. */
interface ZQTimeZone {
  /** What `setTZ` takes: the zone's file, for example "/usr/share/zoneinfo/US/Eastern". */
  Name: string;
  /** What users read, for example "(GMT-05:00) Eastern Time (US & Canada)". */
  Description: string;
}

/** An update that the server offers. */
interface ZQUpdate {
  /** What `beginUpdate` takes. */
  ID: number;
  /** What users read. */
  Name: string;
}

/** The versions of what runs on the device. */
interface ZQVersion {
  /** From /etc/firmware.ver, with the board's revision, for example "2.1.7 (boardrev: 3)"; "" without the file. */
  Firmware: string;
  /** From /etc/software.ver, with the platform's version, for example "R12 (5.4)"; "5.4" without the file. */
  Software: string;
}

/** What an "about" screen shows. A text that cannot be found out is "". */
interface ZQAbout {
  /** As `getMACAddr` gives it. */
  MACAddr: string;
  /** As `getIP` gives it. */
  IPAddr: string;
  /** Whether the device is set up for wireless. */
  IsWireless: "True" | "False";
  /** The name of the wireless network that the device is configured for, or "Wired". */
  Network: string;
  /** As in {@link ZQCurrentNetwork}; 0 for a wired device. */
  SignalStrength: number;
  /** As `getGateway` gives it. */
  Gateway: string;
  /** As `getSubnetMask` gives it. */
  Subnet: string;
  /** As `getPrimaryDNS` gives it. */
  DNS1: string;
  /** As `getSecondaryDNS` gives it. */
  DNS2: string;
  /** As `getTZ` gives it. */
  Timezone: string;
  /** Whether the clock follows network time. */
  UseNTP: "True" | "False";
  /** The first time server; "" when network time is off. */
  NTP1: string;
  /** The second time server; "" when network time is off. */
  NTP2: string;
  /** As `GetVersion` gives it, with the device's number when the update server gave it one: "2.1.7 [ID=42]". */
  Firmware: string;
  /** As `GetVersion` gives it. */
  Software: string;
}

/** Hears that a scan in the background is done. Each method may be left out. */
interface ZQESSIDListener {
  /** The list is there: `getCachedESSIDList` gives it. */
  onSSIDList?(): void;
}

/**
 * Follows a change of the network, step by step. Each method may be left out; none gets an argument.
 *
 * Wireless: `onAssociation`, then (with DHCP) `onBeginDHCP` and mostly `onDoneDHCP`, then `onBeginConnectivityCheck`,
 * and one of `onConnectSuccess` and `onConnectFailure`; or `onFailedAssociation`, after which nothing follows. Wired:
 * the same without `onAssociation`. Of a check by `checkConnectivity`, the last of these alone.
 */
interface ZQConnectivityListener {
  /** The radio is connected to the access point, and has an address (if only one that it gave itself). */
  onAssociation?(): void;
  /** The network could not be joined, or DHCP gave no address. Nothing follows until the network is set up again. */
  onFailedAssociation?(): void;
  /** Waiting for an address. */
  onBeginDHCP?(): void;
  /**
   * An address came; again for each further change of the interfaces while the network starts. Not called when the
   * start is over before the address is noticed.
   */
  onDoneDHCP?(): void;
  /** The update server is about to be asked. */
  onBeginConnectivityCheck?(): void;
  /** The update server could be reached: the Internet is there. Once a check. */
  onConnectSuccess?(): void;
  /** The update server could not be reached. Once a check. */
  onConnectFailure?(): void;
}

/** Follows an update. Each method may be left out. */
interface ZQUpdateListener {
  /** The server insists on an update; its download begins. Optional updates are not announced: see `GetUpdateList`. */
  forcedUpdateAvailable?(): void;
  /**
   * The package is coming in: `percent`, a whole number from 0 to 100, as often as a piece has come; 100 when it is
   * whole. 0 throughout while the server does not say how long it is.
   */
  onDownloading?(percent: number): void;
  /**
   * The package is being installed. Called a second time before the device restarts (and not when only the host
   * does).
   */
  onInstalling?(): void;
  /**
   * The connection broke, the server had no such package, or the disk was full, before the package was whole. The
   * server is asked for updates again in time. Not called when the server could not be reached in the first place,
   * nor for an update that the board refuses.
   */
  onDownloadFailed?(): void;
}

/** Hears the answer to `registerAboutListener`. */
interface ZQAboutListener {
  /** Called once for each registration; of two in quick succession the later listener may hear both. */
  onResult?(about: ZQAbout): void;
}

/**
 * The device: its network, sound, screen, clock, power, updates and settings. All objects of the class share one
 * device; make as many as is handy. The first sets sound card and backlight to what zqutil.ini says. The host runs on
 * while an object can be reached. A method is called on an object: one that was taken off it throws.
 */
declare class ZQUtil {
  constructor();

  // == Version ==

  /**
   * The versions of firmware and software, for a first line of an about screen; `registerAboutListener` has the rest.
   * Reads /etc/firmware.ver, /etc/software.ver and /proc/boardrev, of which any may be missing.
   */
  GetVersion(): ZQVersion;

  // == Network status ==

  /**
   * Looks for wireless networks, now. The script stands still until the radio has answered, a quarter of a second and
   * more: use `backgroundGetESSIDList` from a screen. Two access points of one name are one entry, the first heard;
   * hidden networks, and those without access point (ad-hoc), are left out. Where the device is connected to one of
   * them, asking puts off a check for updates as `getIP` does.
   * @returns the networks in the order heard; an empty array without radio
   */
  getESSIDList(): ZQAccessPoint[];
  /**
   * The networks that the last scan found, without a new one; which of them is connected is looked up now, as by
   * `getESSIDList`.
   * @returns an empty array before the first scan and while one is under way
   */
  getCachedESSIDList(): ZQAccessPoint[];
  /**
   * Looks for wireless networks while the script goes on.
   * @param listener its `onSSIDList` is called once, when `getCachedESSIDList` has the new list; without one, or with
   *   more than one argument, nobody looks, and the listener that still waits is forgotten. Give the next one when
   *   `onSSIDList` has returned, with a timer for example: one that is given meanwhile is forgotten with the one that
   *   was called
   * @throws when `listener` is no object
   */
  backgroundGetESSIDList(listener?: ZQESSIDListener | null): void;
  /**
   * The wireless network that the device is configured for, with the strength of the connection. Where it is connected,
   * asking puts off a check for updates as `getIP` does.
   * @returns an empty name and zeros when none is configured
   */
  getESSID(): ZQCurrentNetwork;
  /**
   * The name of the wireless network that the device is configured for, in the air or not (key `net.essid`).
   * @returns "" when none is configured
   */
  getConfiguredESSID(): string;
  /**
   * Whether the configured network was in the air when it was set up (key `net.listed`); a set-up for Ethernet leaves
   * the word as it is.
   * @returns "FALSE" when it was not, as for a hidden network; "" when it was, or none was set up
   * @throws when the key store cannot be opened
   */
  getConfiguredESSIDListed(): string;
  /**
   * The address of the interface in use: ra0 when the device is set up for wireless, or else eth0. Asking also puts
   * off a check for updates that is due within a minute, and one that `checkConnectivity` asked for: it is due in five
   * minutes then.
   * @returns for example "192.168.1.20"; "" without an address
   */
  getIP(): string;
  /**
   * The hardware address of ra0, or of eth0 on a device without radio, in lower case: "00:11:22:33:aa:bb".
   * @returns "" when there is neither
   */
  getMACAddr(): string;
  /**
   * The netmask of the interface in use, for example "255.255.255.0".
   * @returns "" without an address
   */
  getSubnetMask(): string;
  /**
   * The first name server in /etc/resolv.conf.
   * @returns "" when there is none
   */
  getPrimaryDNS(): string;
  /**
   * The second name server in /etc/resolv.conf.
   * @returns "" when there is none
   */
  getSecondaryDNS(): string;
  /**
   * The default gateway, from /proc/net/route.
   * @returns "0.0.0.0" when there is none
   */
  getGateway(): string;
  /**
   * The proxy's address as it was set (key `net.proxy`), in use or not.
   * @returns "" when none was set
   */
  getProxy(): string;
  /** What the device is set up for (key `net.wifi`). */
  getNetworkType(): "wireless" | "wired";
  /** Whether the address comes by DHCP (key `net.dhcp`); "YES" when nothing was set. */
  getDHCPEnabled(): "YES" | "NO";
  /** Whether the proxy is in use (key `net.proxyen`); "NO" when nothing was set. */
  getProxyEnabled(): "YES" | "NO";
  /**
   * The radio's own figure for the quality of the link, unscaled: its range is the driver's.
   * @returns 0 when the device is set up for Ethernet, and without radio
   */
  getSignalStrength(): number;

  // == Network settings ==

  /**
   * Sets the device up for Ethernet with DHCP, and restarts the network (/tmp/do_S12): that takes seconds, and a
   * connectivity listener hears how it goes. Writes `net.dhcp` and `net.wifi`; erases the wireless network
   * (`net.essid`, `net.authtype`, `net.enctype`, `net.key`, `net.index`; `net.wpatype` and `net.listed` stay) and the
   * address of its own (`net.ipaddr`, `net.netmask`, `net.gateway`, `net.ns`).
   */
  setWiredNetworkDHCP(): void;
  /**
   * Sets the device up for Ethernet with an address of its own, and restarts the network. Writes `net.ipaddr`,
   * `net.netmask`, `net.gateway`, `net.ns` (both name servers, with a comma between), `net.dhcp` and `net.wifi`,
   * erases the wireless network as `setWiredNetworkDHCP` does. The texts are stored as they are, but for line breaks,
   * which are taken out (of two that follow each other, the first): nobody checks that they are addresses.
   * @param ip for example "192.168.1.20"
   * @param netmask for example "255.255.255.0"
   * @param primaryDNS the first name server
   * @param secondaryDNS the second name server
   * @param gateway the default gateway
   */
  setWiredNetworkStatic(ip: string, netmask: string, primaryDNS: string, secondaryDNS: string, gateway: string): void;
  /**
   * Sets the device up for a wireless network with DHCP, and restarts the network. Writes `net.essid`,
   * `net.authtype`, `net.enctype`, `net.key`, `net.wpatype`, `net.index`, `net.dhcp` and `net.wifi`; erases an
   * address of its own. Looks for networks first, and the script stands still, when the list of the last scan is empty:
   * to note in `net.listed` whether this network is in the air. Line breaks in the texts are taken out as in
   * `setWiredNetworkStatic`.
   * @param ssid the network's name
   * @param authentication the `AuthType` of the network in the list, or another word that the system's network script
   *   knows
   * @param encryption its `EncType`
   * @param keyType is not stored: the key's length tells the type
   * @param key the passphrase or the WEP key's digits; "" for an open network
   * @param keyIndex the WEP key's number, from 1; 0 for none
   * @param wpaType its `WPAType`; the word "undefined" is stored when it is missing, and the set-up goes on
   */
  setWirelessNetworkDHCP(ssid: string, authentication: string, encryption: string, keyType: string, key: string,
                         keyIndex: ZQText, wpaType: string): void;
  /**
   * Sets the device up for a wireless network with an address of its own, and restarts the network: the addresses as
   * for `setWiredNetworkStatic`, then the network as for `setWirelessNetworkDHCP`.
   * @param ip for example "192.168.1.20"
   * @param netmask for example "255.255.255.0"
   * @param primaryDNS the first name server
   * @param secondaryDNS the second name server
   * @param gateway the default gateway
   * @param ssid the network's name
   * @param authentication the `AuthType` of the network in the list, or another word that the system's network script
   *   knows
   * @param encryption its `EncType`
   * @param keyType is not stored: the key's length tells the type
   * @param key the passphrase or the WEP key's digits; "" for an open network
   * @param keyIndex the WEP key's number, from 1; 0 for none
   * @param wpaType its `WPAType`; the word "undefined" is stored when it is missing, and the set-up goes on
   */
  setWirelessNetworkStatic(ip: string, netmask: string, primaryDNS: string, secondaryDNS: string, gateway: string,
                           ssid: string, authentication: string, encryption: string, keyType: string, key: string,
                           keyIndex: ZQText, wpaType: string): void;
  /** How the device joins its wireless network. The key comes in clear text: show it with care. */
  getWirelessSecurity(): ZQWirelessSecurity;
  /**
   * Sets the proxy's address (key `net.proxy`). It is used from now on when the proxy is enabled: the module sets
   * `http_proxy` in the host's environment, and removes it when there is no address or the proxy is not enabled.
   * @param proxy for example "proxy.example:8080", with or without "http://" before it; "" for none
   */
  setProxy(proxy: string): void;
  /**
   * Turns the use of the proxy on or off (key `net.proxyen`).
   * @param enabled "true" or "yes" in any case turn it on, all else off
   */
  setProxyEnabled(enabled: string | boolean): void;

  // == Connectivity ==

  /**
   * Says who hears how changes of the network go. There is one listener; a new one takes the place of the old. The
   * first check for updates after the start tells it, unasked, whether the server was reached.
   * @param listener without one, or with more than one argument, nobody hears any more
   * @throws when `listener` is no object
   */
  registerConnectivityListener(listener?: ZQConnectivityListener | null): void;
  /**
   * Checks anew whether the Internet is there, by a connection to the update server: the listener hears
   * `onConnectSuccess` or `onConnectFailure`. It is a whole check for updates, so `GetUpdateList` is new afterwards,
   * and a forced update begins. `getIP` right after this call puts the check off. Does nothing without a listener.
   */
  checkConnectivity(): void;

  // == First-time set-up ==

  /**
   * The mark that says whether the first-time set-up is done (key `net.firsttime`): the text that a script stored.
   * @returns "No" when nothing was stored
   * @throws when the key store cannot be opened
   */
  getFirstTime(): string;
  /**
   * Stores the mark (key `net.firsttime`), a moment later.
   * @param text any text; `getFirstTime` gives at most 127 bytes of it
   */
  setFirstTime(text: ZQText): void;

  // == Sound ==

  /**
   * The volume of phone and media, which are one: a text of decimal digits, "0" to "100".
   * Kept in zqutil.ini; "75" on a new device.
   */
  getPhoneVolume(): string;
  /**
   * Sets the volume of phone and media, which are one. It is kept in zqutil.ini (keys `phoneVolume` and
   * `mediaVolume`), and the sound card is set to it at the next start: up to 95 percent of its range.
   * @param volume 0 to 100
   */
  setPhoneVolume(volume: ZQText): void;
  /** Notes in the trace that the phone is to be silent. Neither the volume nor the sound card changes. */
  MutePhone(): void;
  /** Stores the volume of phone and media once more. The sound card does not change. */
  UnmutePhone(): void;
  /** The same as `getPhoneVolume`: phone and media have one volume. */
  getMediaVolume(): string;
  /**
   * The same as `setPhoneVolume`: phone and media have one volume.
   * @param volume 0 to 100
   */
  setMediaVolume(volume: ZQText): void;
  /** The microphone's volume: a text of decimal digits, "0" to "100". Kept in zqutil.ini; "50" on a new device. */
  getMicVolume(): string;
  /**
   * Sets the microphone's volume, which is kept in zqutil.ini (key `micVolume`). The sound card's own level is fixed.
   * @param volume 0 to 100
   */
  setMicVolume(volume: ZQText): void;
  /** Notes in the trace that the microphone is to be silent. Neither the volume nor the sound card changes. */
  MuteMic(): void;
  /** Notes in the trace that the microphone is to be heard. Neither the volume nor the sound card changes. */
  UnmuteMic(): void;

  // == Screen ==

  /**
   * The backlight's level as last set: a text of decimal digits, "0" to "100". Automatic dimming does not change it.
   * Kept in zqutil.ini; "100" on a new device, whose backlight is told the driver's 255.
   */
  getBrightness(): string;
  /**
   * Sets the backlight (/proc/blctrl) and keeps the level in zqutil.ini (key `brightness`). A device without
   * backlight keeps the level all the same.
   * @param level 0 to 100
   */
  setBrightness(level: ZQText): void;
  /** The contrast's step: a text of decimal digits, "1" to "10". Kept in zqutil.ini; "2" on a new device. */
  getContrast(): string;
  /**
   * Sets the contrast, which is kept in zqutil.ini (key `contrast`, in the board's own units, 16 to 30).
   * @param step 1 to 10
   */
  setContrast(step: ZQText): void;
  /** Whether the backlight is to follow the light sensor, "TRUE" also without one; "FALSE" on a new device. */
  getDimMode(): "TRUE" | "FALSE";
  /**
   * Lets the backlight follow the light sensor, or not; kept in zqutil.ini (key `autolight`). Without a working sensor
   * (/dev/i2c-0) or without backlight the setting is kept and has no effect until the next start.
   * @param mode "true" in any case turns it on, all else off
   */
  setDimMode(mode: string | boolean): void;
  /**
   * Sends the display to standby, by the X server's power saving. Where one of the server's timeouts is off, all are
   * set: standby after 15 minutes, suspend after 20, off after 30. Does nothing where there is no power saving.
   */
  screenStandby(): void;

  // == Date and time ==

  /**
   * The time zones that are installed below /usr/share/zoneinfo and have a description, in the order to show them: by
   * description, beginning with "(GMT-04:00) Atlantic Time (Canada)" and coming round to what sorts before it. Read
   * when the module starts.
   * @returns an empty array when none are installed
   */
  getTZList(): ZQTimeZone[];
  /** Whether the clock follows network time (key `net.ntpenabled`); "YES" when nothing was set. */
  getNTPEnabled(): "YES" | "NO";
  /**
   * Turns network time on or off (key `net.ntpenabled`), and asks the system's time service to apply it (/tmp/do_time).
   * The other setters of this group ask it too.
   * @param enabled "true" or "yes" in any case turn it on, all else off
   */
  setNTPEnabled(enabled: string | boolean): void;
  /** The first time server (key `net.priNTP`), or a built-in one when none was set. */
  getPrimaryNTPServer(): string;
  /**
   * Sets the first time server (key `net.priNTP`).
   * @param host the server's name; "" goes back to the built-in one
   */
  setPrimaryNTPServer(host: string): void;
  /** The second time server (key `net.secNTP`), or a built-in one when none was set. */
  getSecondaryNTPServer(): string;
  /**
   * Sets the second time server (key `net.secNTP`).
   * @param host the server's name; "" goes back to the built-in one
   */
  setSecondaryNTPServer(host: string): void;
  /**
   * Sets the clock by hand: writes the text to /etc/datetime for the system's time service.
   * @param time twelve digits, MMDDhhmmYYYY in local time, as the system's script takes them; a text that has not
   *   twelve bytes is not written, and nobody checks that they are digits
   */
  setTime(time: string): void;
  /**
   * Sets the time zone (key `sys.tz`).
   * @param path the zone's file, the `Name` of an entry of `getTZList`; "" goes back to the edition's zone
   */
  setTZ(path: string): void;
  /**
   * The time zone in words, as `getTZList` describes it: what `setTZ` took is its `Name`, this is its `Description`.
   * Where none was set, the zone that suits the device's edition (/etc/client.tag).
   * @returns the zone's path when the list does not describe it
   */
  getTZ(): string;
  /** Whether clocks show 24 hours (key `net.mte`); "NO" when nothing was set. */
  getMilitaryTimeEnabled(): "YES" | "NO";
  /**
   * Shows 24 hours or 12 (key `net.mte`).
   * @param enabled "true" or "yes" in any case turn it on, all else off
   */
  setMilitaryTimeEnabled(enabled: string | boolean): void;

  // == Activity log ==

  /**
   * Hands a record of what the user does to the log library (libzqapplog.so; the one that comes with the module
   * appends to zqapplog.log). Does nothing on a device without the library.
   * @param application which application
   * @param action what was done
   * @param detail with what; may be left out
   */
  appLog(application: ZQText, action: ZQText, detail?: ZQText | null): void;

  // == Power ==

  /** Whether the device is a tablet. Always "no". */
  isTablet(): "no";
  /**
   * The battery's charge in percent, 0 to 100, from the driver's voltage (`vbat` below
   * /sys/class/hwmon/hwmon5/device/mrst_batmon).
   * @returns 0 on a device without battery
   */
  batteryPct(): number;
  /**
   * What the charger does, from the driver's `charge`.
   * @returns "battery" on a device without battery, too
   */
  chargeStatus(): "precharge" | "chargestop" | "quickcharge" | "battery" | "chargecomplete";

  // == Updates ==

  /**
   * The updates that the server offered in its last answer, optional and forced, in its order.
   * @returns an empty array when it offered none, or was not reached yet
   */
  GetUpdateList(): ZQUpdate[];
  /**
   * Downloads an update and installs it: the update listener follows it. The device restarts in the end. Does nothing,
   * and tells nobody, when the list has no such update, a download is under way, or the board's key store does not say
   * how to install it (keys `sys.bldrver` and `sys.numparts`).
   * @param id the `ID` of an entry of `GetUpdateList`; a text is none
   */
  beginUpdate(id: number): void;
  /**
   * Says who follows updates, and has the server asked in four seconds, then every half hour (key `updateTime` of
   * zqutil.ini, in milliseconds); twice a second as long as it has given this device no number. Whoever asks for the
   * address meanwhile puts that off: see `getIP`. There is one listener; a new one takes the place of the old.
   * @param listener without one, or with more than one argument, nobody hears any more; the server is asked all the
   *   same
   * @throws when `listener` is no object
   */
  registerUpdateListener(listener?: ZQUpdateListener | null): void;
  /** Puts the device back to how it left the factory, by the system's script (/tmp/factory_reset). */
  factoryReset(): void;

  // == About ==

  /**
   * Gathers what an about screen shows, while the script goes on: asking the network can take a while. Puts off a
   * check for updates as `getIP` does.
   * @param listener its `onResult` is called once; without one, or with more than one argument, the listener is
   *   forgotten
   * @throws when `listener` is no object
   */
  registerAboutListener(listener?: ZQAboutListener | null): void;

  // == Settings and files ==

  /**
   * A setting of an application, from section `config` of APPLICATION.ini.
   * @param application the file's name without ".ini"; "zqutil" has the module's own settings
   * @param key the setting's name, in whatever case
   * @param defaultValue what comes back when the file has no such key; "" when left out. (`undefined` and `null` are no
   *   leaving out: they come back as the texts "undefined" and "null".)
   * @returns at most 1024 bytes of it
   * @throws without application or key
   */
  getIniSetting(application: string, key: string, defaultValue?: ZQText): string;
  /**
   * Keeps a setting of an application, in section `config` of APPLICATION.ini; the file is made when missing. It is
   * written a moment later, so that a `getIniSetting` at once may still give the old value.
   * @param application the file's name without ".ini"; with a "/", a path from the working folder
   * @param key the setting's name; nothing is stored under one that is empty, has "=", "]" or a line break, or begins
   *   with ";", "#" or "["
   * @param value any text, of several lines too; `undefined` and `null` are stored as the texts "undefined" and "null"
   * @throws unless there are exactly three arguments, the first two not missing
   */
  setIniSetting(application: string, key: string, value: ZQText): void;
  /**
   * Removes APPLICATION.ini, with settings that were on their way into it.
   * @param application the file's name without ".ini"
   * @param ignored must be there, and is not looked at
   * @throws unless there are exactly two arguments, neither missing
   */
  deleteIniFile(application: string, ignored: ZQText): void;
  /**
   * Keeps a text as the file ./cache/NAME, in place of what it held. The name is used as it is: it may lead out of the
   * folder. Nothing is kept where the folder is missing.
   * @param name the file's name
   * @param content the whole file
   * @throws unless there are exactly two arguments, neither missing
   */
  writeFile(name: string, content: ZQText): void;
  /**
   * Removes the file ./cache/NAME, if there is one. The name is used as it is, as by `writeFile`.
   * @param name the file's name
   * @throws unless there is exactly one argument, not missing
   */
  deleteFile(name: string): void;
  /**
   * Takes each byte of a text for a Latin-1 character and gives the characters as UTF-8: for bytes that came from a
   * network or a file. A script's own text is UTF-8 already: "é" has two bytes, and becomes "Ã©".
   * @param text any text
   * @throws unless there is exactly one argument, not missing
   */
  utf8Encode(text: ZQText): string;
}
