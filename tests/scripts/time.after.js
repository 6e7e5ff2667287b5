load('check.js');
const util = new ZQUtil();
equal(util.getNTPEnabled(), 'NO', 'network time');
equal(util.getMilitaryTimeEnabled(), 'YES', '24 hours');
equal(util.getPrimaryNTPServer(), 'kept.example', 'the server');
equal(util.getTZ(), '(GMT+09:00) Osaka, Sapporo, Tokyo', 'the zone');
exit(0);
