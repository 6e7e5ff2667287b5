// Ends with posts, settings threads and timers under way.
const util = new ZQUtil();
setInterval(() => {}, 1);
for (let i = 0; i <= 300; i += 1) {
  util.setIniSetting('ending', `key${i % 30}`, `value${i}`);
  util.setFirstTime(`round ${i}`);
  util.setBrightness(i % 100);
  util.setContrast(1 + (i % 10));
}
util.writeFile('last.txt', 'written');
exit(0);
