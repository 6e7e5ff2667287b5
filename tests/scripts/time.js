// The device's clock: settings, zones, a date set by hand.
load('check.js');
const util = new ZQUtil();

equal(util.getNTPEnabled(), 'YES', 'network time of a new device');
equal(util.getMilitaryTimeEnabled(), 'NO', '24 hours of a new device');
if (util.getPrimaryNTPServer() === '') throw new Error('no primary server');
if (util.getSecondaryNTPServer() === '') throw new Error('no secondary server');
equal(util.getTZ(), '(GMT-05:00) Eastern Time (US & Canada)', 'the zone of the edition');

const zones = util.getTZList();
if (!Array.isArray(zones) || zones.length < 70 || zones.length > 76) throw new Error(`${zones.length} zones`);
equal(zones[0].Name, '/usr/share/zoneinfo/Canada/Atlantic', 'the first zone');
equal(zones[0].Description, '(GMT-04:00) Atlantic Time (Canada)', 'its description');
equal(zones.at(-1).Description, '(GMT-03:30) Newfoundland', 'the last zone');
for (const zone of zones) equal(Object.keys(zone).join(), 'Name,Description', 'a zone');

// A zone is set by its name, and each comes back by its description.
for (const zone of zones) {
  util.setTZ(zone.Name);
  equal(util.getTZ(), zone.Description, zone.Name);
}
util.setTZ('/usr/share/zoneinfo/Europe/Paris');
equal(util.getTZ(), '/usr/share/zoneinfo/Europe/Paris', 'a zone that is not listed');
util.setTZ('');
equal(util.getTZ(), '(GMT-05:00) Eastern Time (US & Canada)', 'no zone');

for (const [get, set] of [['getNTPEnabled', 'setNTPEnabled'], ['getMilitaryTimeEnabled', 'setMilitaryTimeEnabled']]) {
  const rows = [['true', 'YES'], ['1', 'NO'], ['Yes', 'YES'], ['on', 'NO'], ['TRUE', 'YES'], ['', 'NO'], [true, 'YES'],
    [false, 'NO']];
  for (const [value, answer] of rows) {
    util[set](value);
    equal(util[get](), answer, `${set} ${value}`);
  }
}

for (const which of ['Primary', 'Secondary']) {
  const fallback = util[`get${which}NTPServer`]();
  util[`set${which}NTPServer`](`${which}.example`);
  equal(util[`get${which}NTPServer`](), `${which}.example`, which);
  util[`set${which}NTPServer`]('');
  equal(util[`get${which}NTPServer`](), fallback, `${which} again`);
}

// What the next start finds.
util.setNTPEnabled('no');
util.setMilitaryTimeEnabled('yes');
util.setPrimaryNTPServer('kept.example');
util.setTZ('/usr/share/zoneinfo/Asia/Tokyo');
util.setTime('112112002026');
exit(0);
