load('check.js');
const util = new ZQUtil();
equal(util.getIniSetting('objects', 'kept'), 'yes', 'stored by the first');
equal(util.getIniSetting('objects', 'again'), 'yes', 'stored by the last');
exit(0);
