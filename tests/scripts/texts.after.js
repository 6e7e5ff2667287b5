load('check.js');
load('texts.list.js');
const util = new ZQUtil();
texts.forEach((text, index) => equal(util.getIniSetting('texts', `t${index}`, 'lost'), text, `text ${index}`));
util.deleteIniFile('texts', '');
equal(util.getIniSetting('texts', 't7', 'lost'), 'lost', 'after deleteIniFile');
exit(0);
