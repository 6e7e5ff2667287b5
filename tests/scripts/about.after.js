// The objects are gone before the summary is there.
load('check.js');
for (let i = 0; i < 20; i += 1) new ZQUtil().registerAboutListener({ onResult() {} });
gc();
equal(new ZQUtil().GetVersion().Firmware, '1.0.0 (boardrev: 3)', 'afterwards');
exit(0);
