// Texts that files and settings might trip over.
globalThis.texts = [
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
