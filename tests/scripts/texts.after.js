load('check.js');
const util = new ZQUtil();
const wanted = [
  '',
  ' leading and trailing ',
  'line\nbreak',
  'cr\r\nlf\t"quoted" \\ back\\nslash',
  '"quoted"',
  '; no comment',
  '# none either',
  'a=b=c',
  '[config]',
  'Grüße, 世界, 🎉',
  'x'.repeat(1024),
];
wanted.forEach((text, index) => equal(util.getIniSetting('texts', `t${index}`, 'lost'), text, `text ${index}`));
util.deleteIniFile('texts', '');
equal(util.getIniSetting('texts', 't7', 'lost'), 'lost', 'after deleteIniFile');
exit(0);
