load('check.js');
const util = new ZQUtil();
for (let i = 271; i <= 300; i += 1) equal(util.getIniSetting('ending', `key${i % 30}`), `value${i}`, `key${i % 30}`);
equal(util.getFirstTime(), 'round 300', 'the key store');
equal(util.getBrightness(), '0', 'brightness');
equal(util.getContrast(), '1', 'contrast');
exit(0);
