// Sets a network up as the words say, and prints what the listener hears until the story ends.
const util = new ZQUtil();
let heard = [];
const end = (name) => ['onConnectSuccess', 'onConnectFailure', 'onFailedAssociation'].includes(name);
const listener = {};
for (const name of ['onAssociation', 'onFailedAssociation', 'onBeginDHCP', 'onDoneDHCP', 'onBeginConnectivityCheck', 'onConnectSuccess', 'onConnectFailure']) {
  listener[name] = () => {
    // An address is told of again when the interfaces change further: how often is a matter of the moment.
    if (name !== 'onDoneDHCP' || heard.at(-1) !== name) heard.push(name);
    if (!end(name)) return;
    print(heard.join(' '));
    print(util.getIP(), util.getSubnetMask(), util.getGateway(), util.getPrimaryDNS());
    exit(0);
  };
}
util.registerConnectivityListener(listener);
setTimeout(() => {
  print('still waiting after', heard.join(' '));
  exit(3);
}, 200000);
