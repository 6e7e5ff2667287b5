// Texts come back as they went in.
load('check.js');
load('texts.list.js');
const util = new ZQUtil();
texts.forEach((text, index) => util.setIniSetting('texts', `t${index}`, text));
equal(util.utf8Encode('abc'), 'abc', 'ASCII');
equal(util.utf8Encode(''), '', 'nothing');
// A script string reaches the module as UTF-8, two bytes here, and each byte is one Latin-1 character to it.
equal(util.utf8Encode('é'), 'Ã©', 'bytes taken as Latin-1');
equal(util.getIniSetting('texts', 'missing'), '', 'a missing setting');
equal(util.getIniSetting('texts', 'missing', 'fallback'), 'fallback', 'its default');
exit(0);
