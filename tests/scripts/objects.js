// Objects share one module, which goes with the last of them and comes again.
load('check.js');

const dropped = (count) => {
  for (let i = 0; i < count; i += 1) {
    equal(new ZQUtil().isTablet(), 'no', `object ${i}`);
  }
};
dropped(1);
gc();
let keeper = new ZQUtil();
dropped(1000);
gc();
equal(keeper.isTablet(), 'no', 'the one that was kept');
keeper.setIniSetting('objects', 'kept', 'yes');
keeper = null;
gc();

setTimeout(() => {
  gc();
  const again = new ZQUtil();
  equal(again.isTablet(), 'no', 'constructed again');
  again.setIniSetting('objects', 'again', 'yes');
  exit(0);
}, 50);
