// What every method takes and gives, and what every listener hears, said a second time: a slip in the typings that no
// script of ours would notice fails here. Compiled, never run.
type Same<One, Other> = (<T>() => T extends One ? 1 : 2) extends <T>() => T extends Other ? 1 : 2 ? true : false;
/** Members that are not the same in both, and those of which one side knows nothing. */
type Differing<One, Other> = {
  [Name in keyof One | keyof Other]: Name extends keyof One & keyof Other
    ? Same<One[Name], Other[Name]> extends true ? never : Name
    : Name;
}[keyof One | keyof Other];
/** All members, when one of them may not be left out. */
type Required<Listener> = Same<Listener, Partial<Listener>> extends true ? never : keyof Listener;
const pinned = <_None extends [never]>() => {};

type Text = string | number;
type Flag = string | boolean;
type Digit = 0 | 1;

interface Network {
  Name: string;
  Signal: number;
  Encrypted: Digit;
  Connected: Digit;
  AuthType: "WPA-PSK" | "WEP" | "Disabled";
  EncType: "TKIP+AES" | "TKIP" | "AES" | "None";
  WPAType: "WPA1" | "WPA2" | "None";
}
interface Current {
  Name: string;
  Signal: number;
  Encrypted: 0;
  Connected: Digit;
}
interface Security {
  netAuth: string;
  encryption: string;
  keyType: "WEP40" | "WEP104" | "NOKEY" | "WPA";
  key: string;
  index: number;
}
interface Zone {
  Name: string;
  Description: string;
}
interface Update {
  ID: number;
  Name: string;
}
interface Versions {
  Firmware: string;
  Software: string;
}
interface About extends Versions {
  MACAddr: string;
  IPAddr: string;
  IsWireless: "True" | "False";
  Network: string;
  SignalStrength: number;
  Gateway: string;
  Subnet: string;
  DNS1: string;
  DNS2: string;
  Timezone: string;
  UseNTP: "True" | "False";
  NTP1: string;
  NTP2: string;
}
pinned<[Differing<ZQAccessPoint, Network>]>();
pinned<[Differing<ZQCurrentNetwork, Current>]>();
pinned<[Differing<ZQWirelessSecurity, Security>]>();
pinned<[Differing<ZQTimeZone, Zone>]>();
pinned<[Differing<ZQUpdate, Update>]>();
pinned<[Differing<ZQVersion, Versions>]>();
pinned<[Differing<ZQAbout, About>]>();

type Heard<Arguments extends unknown[] = []> = ((...values: Arguments) => void) | undefined;
interface Connectivity {
  onAssociation: Heard;
  onFailedAssociation: Heard;
  onBeginDHCP: Heard;
  onDoneDHCP: Heard;
  onBeginConnectivityCheck: Heard;
  onConnectSuccess: Heard;
  onConnectFailure: Heard;
}
interface Updates {
  forcedUpdateAvailable: Heard;
  onDownloading: Heard<[number]>;
  onInstalling: Heard;
  onDownloadFailed: Heard;
}
pinned<[Differing<ZQESSIDListener, { onSSIDList: Heard }>]>();
pinned<[Differing<ZQConnectivityListener, Connectivity>]>();
pinned<[Differing<ZQUpdateListener, Updates>]>();
pinned<[Differing<ZQAboutListener, { onResult: Heard<[ZQAbout]> }>]>();
pinned<[Required<ZQESSIDListener>]>();
pinned<[Required<ZQConnectivityListener>]>();
pinned<[Required<ZQUpdateListener>]>();
pinned<[Required<ZQAboutListener>]>();

type Gives<Result> = () => Result;
type Takes<Arguments extends unknown[], Result = void> = (...values: Arguments) => Result;
type Listens<Listener> = Takes<[listener?: Listener | null]>;
interface Device {
  GetVersion: Gives<ZQVersion>;
  getESSIDList: Gives<ZQAccessPoint[]>;
  getCachedESSIDList: Gives<ZQAccessPoint[]>;
  backgroundGetESSIDList: Listens<ZQESSIDListener>;
  getESSID: Gives<ZQCurrentNetwork>;
  getConfiguredESSID: Gives<string>;
  getConfiguredESSIDListed: Gives<string>;
  getIP: Gives<string>;
  getMACAddr: Gives<string>;
  getSubnetMask: Gives<string>;
  getPrimaryDNS: Gives<string>;
  getSecondaryDNS: Gives<string>;
  getGateway: Gives<string>;
  getProxy: Gives<string>;
  getNetworkType: Gives<"wireless" | "wired">;
  getDHCPEnabled: Gives<"YES" | "NO">;
  getProxyEnabled: Gives<"YES" | "NO">;
  getSignalStrength: Gives<number>;
  setWiredNetworkDHCP: Gives<void>;
  setWiredNetworkStatic: Takes<[string, string, string, string, string]>;
  setWirelessNetworkDHCP: Takes<[string, string, string, string, string, Text, string]>;
  setWirelessNetworkStatic: Takes<
    [string, string, string, string, string, string, string, string, string, string, Text, string]
  >;
  getWirelessSecurity: Gives<ZQWirelessSecurity>;
  setProxy: Takes<[string]>;
  setProxyEnabled: Takes<[Flag]>;
  registerConnectivityListener: Listens<ZQConnectivityListener>;
  checkConnectivity: Gives<void>;
  getFirstTime: Gives<string>;
  setFirstTime: Takes<[Text]>;
  getPhoneVolume: Gives<string>;
  setPhoneVolume: Takes<[Text]>;
  MutePhone: Gives<void>;
  UnmutePhone: Gives<void>;
  getMediaVolume: Gives<string>;
  setMediaVolume: Takes<[Text]>;
  getMicVolume: Gives<string>;
  setMicVolume: Takes<[Text]>;
  MuteMic: Gives<void>;
  UnmuteMic: Gives<void>;
  getBrightness: Gives<string>;
  setBrightness: Takes<[Text]>;
  getContrast: Gives<string>;
  setContrast: Takes<[Text]>;
  getDimMode: Gives<"TRUE" | "FALSE">;
  setDimMode: Takes<[Flag]>;
  screenStandby: Gives<void>;
  getTZList: Gives<ZQTimeZone[]>;
  getNTPEnabled: Gives<"YES" | "NO">;
  setNTPEnabled: Takes<[Flag]>;
  getPrimaryNTPServer: Gives<string>;
  setPrimaryNTPServer: Takes<[string]>;
  getSecondaryNTPServer: Gives<string>;
  setSecondaryNTPServer: Takes<[string]>;
  setTime: Takes<[string]>;
  setTZ: Takes<[string]>;
  getTZ: Gives<string>;
  getMilitaryTimeEnabled: Gives<"YES" | "NO">;
  setMilitaryTimeEnabled: Takes<[Flag]>;
  appLog: Takes<[application: Text, action: Text, detail?: Text | null]>;
  isTablet: Gives<"no">;
  batteryPct: Gives<number>;
  chargeStatus: Gives<"precharge" | "chargestop" | "quickcharge" | "battery" | "chargecomplete">;
  GetUpdateList: Gives<ZQUpdate[]>;
  beginUpdate: Takes<[number]>;
  registerUpdateListener: Listens<ZQUpdateListener>;
  factoryReset: Gives<void>;
  registerAboutListener: Listens<ZQAboutListener>;
  getIniSetting: Takes<[application: string, key: string, defaultValue?: Text], string>;
  setIniSetting: Takes<[string, string, Text]>;
  deleteIniFile: Takes<[string, Text]>;
  writeFile: Takes<[string, Text]>;
  deleteFile: Takes<[string]>;
  utf8Encode: Takes<[Text], string>;
}
pinned<[Differing<ZQUtil, Device>]>();
pinned<[Differing<{ construct: ConstructorParameters<typeof ZQUtil> }, { construct: [] }>]>();

interface Host {
  print: Takes<unknown[]>;
  setTimeout: (callback: (...values: any[]) => void, milliseconds?: number, ...values: unknown[]) => number;
  clearTimeout: Takes<[id?: number]>;
  setInterval: (callback: (...values: any[]) => void, milliseconds?: number, ...values: unknown[]) => number;
  clearInterval: Takes<[id?: number]>;
  load: Takes<[string], unknown>;
  exit: Takes<[status?: number], never>;
  gc: Gives<void>;
}
pinned<[Differing<Pick<typeof globalThis, keyof Host>, Host>]>();
type Line = Takes<unknown[]>;
pinned<[Differing<typeof console, { log: Line; info: Line; debug: Line; warn: Line; error: Line }>]>();

// And it does tell: a word too many, an argument that may be left out, a member that only one side has.
// @ts-expect-error of two words, one
pinned<[Differing<{ dims: "TRUE" | "FALSE" }, { dims: "TRUE" }>]>();
// @ts-expect-error may be left out
pinned<[Differing<{ log: (detail?: string) => void }, { log: (detail: string) => void }>]>();
// @ts-expect-error no such method
pinned<[Differing<{}, { getVersion: Gives<ZQVersion> }>]>();
// @ts-expect-error must be there
pinned<[Required<{ onResult?: Heard; onSSIDList: Heard }>]>();
