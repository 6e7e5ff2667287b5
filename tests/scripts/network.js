// A script lists the air, joins a network, sees the device come up, and gives it an address of its own.
load('check.js');
const util = new ZQUtil();
const until = (holds, then) => {
  const timer = setInterval(() => {
    if (!holds()) return;
    clearInterval(timer);
    then();
  }, 50);
};
const json = (value) => JSON.stringify(value);

equal(util.getNetworkType(), 'wired', 'a fresh device');
equal(util.getDHCPEnabled(), 'YES', 'a fresh device takes an address from the network');
equal(util.getProxyEnabled(), 'NO', 'a fresh device has no proxy');
equal(util.getFirstTime(), 'No', 'a fresh device was never set up');
equal(json(util.getESSID()), '{"Name":"","Signal":0,"Encrypted":0,"Connected":0}', 'no network is set');
equal(json(util.getCachedESSIDList()), '[]', 'no list yet');

const air = util.getESSIDList();
equal(air.map((entry) => entry.Name).join(), 'Lindenhof,Cafe Anna,Werkstatt,Altes Netz', 'the air');
equal(
  json(air[0]),
  '{"Name":"Lindenhof","Signal":64,"Encrypted":1,"Connected":0,"AuthType":"WPA-PSK","EncType":"AES","WPAType":"WPA2"}',
  'a WPA2 network',
);
equal(
  json(air[1]),
  '{"Name":"Cafe Anna","Signal":46,"Encrypted":0,"Connected":0,"AuthType":"Disabled","EncType":"None","WPAType":"None"}',
  'an open network',
);
equal(air[3].AuthType, 'WEP', 'a WEP network');
equal(json(util.getCachedESSIDList()), json(air), 'the list that was kept');
equal(refused(() => util.backgroundGetESSIDList('no object')), true, 'a listener that is none');

const join = () => {
  util.setWirelessNetworkDHCP('Lindenhof', 'WPAPSK', 'AES', 'WPA', 'quittenbaum\n', 0, 'WPA2');
  equal(util.getNetworkType(), 'wireless', 'the set-up');
  equal(util.getConfiguredESSIDListed(), '', 'a network that was seen');
  equal(
    json(util.getWirelessSecurity()),
    '{"netAuth":"WPAPSK","encryption":"AES","keyType":"WPA","key":"quittenbaum","index":0}',
    'the security',
  );
  until(() => util.getIP() === '192.0.2.58', joined);
};

const joined = () => {
  equal(util.getSubnetMask(), '255.255.255.0', 'the mask');
  equal(json(util.getESSID()), '{"Name":"Lindenhof","Signal":64,"Encrypted":0,"Connected":1}', 'the network joined');
  equal(util.getESSIDList().map((entry) => entry.Connected).join(), '1,0,0,0', 'the one that is joined');
  equal(util.getSignalStrength(), 92, "the link's quality");
  until(() => util.getGateway() === '192.0.2.1' && util.getPrimaryDNS() === '192.0.2.1', setAddress);
};

const setAddress = () => {
  equal(util.getSecondaryDNS(), '', 'the network names one name server');
  util.setWirelessNetworkStatic(
    '192.0.2.99', '255.255.255.128', '198.51.100.1', '198.51.100.2', '192.0.2.2',
    'Lindenhof', 'WPAPSK', 'AES', 'WPA', 'quittenbaum', '0',
  );
  until(() => util.getIP() === '192.0.2.99' && util.getSecondaryDNS() === '198.51.100.2', end);
};

const end = () => {
  equal(util.getSubnetMask(), '255.255.255.128', 'its own mask');
  equal(util.getGateway(), '192.0.2.2', 'its own gateway');
  equal(util.getPrimaryDNS(), '198.51.100.1', 'its own name server');
  equal(util.getDHCPEnabled(), 'NO', 'its own address');
  util.setProxy('10.0.0.1:8080\r');
  util.setProxyEnabled('Yes');
  util.setFirstTime('Done');
  // Ends with a restart that waits.
  util.setWirelessNetworkDHCP('Nobody', 'OPEN', 'DISABLED', 'NOKEY', '', '0');
  equal(util.getConfiguredESSIDListed(), 'FALSE', 'a network that was not seen');
  exit(0);
};

// Scans in the background until the listener was called. One that is given while the listener before it is being called is
// forgotten with that one, so it is given again.
const scan = (method, then) => {
  let called = false;
  let polls = 0;
  until(
    () => {
      if (!called && polls % 40 === 0) {
        util.backgroundGetESSIDList({
          onSSIDList() {
            called = true;
            method();
          },
        });
      }
      polls += 1;
      return called;
    },
    then,
  );
};

// A listener may fail; the next one is called all the same.
const fail = () => {
  throw new Error('a listener that fails, on purpose');
};
let listed = 0;
const list = () => {
  listed = util.getCachedESSIDList().length;
};
scan(fail, () => scan(list, () => until(() => listed === 4, join)));
