// Every method with 0 to 4 arguments, one of them of each kind in each place; the others are texts.
load('check.js');

const util = new ZQUtil();
const kinds = {
  undefined: undefined,
  null: null,
  integer: -7,
  fraction: 1.5,
  boolean: true,
  object: {},
  function: () => 1,
  string: '12',
  'over-long string': 'x'.repeat(70000),
  'string with newline': 'a\nb=c\n[d]\n',
  'lone surrogate': '\ud800x',
  'string with NUL': 'a\0b',
};

const present = (args, index) => index < args.length && args[index] !== undefined && args[index] !== null;
const first = (args, count) => [...Array(count).keys()].every((index) => present(args, index));
const listener = (args) => args.length !== 1 || !present(args, 0) || Object(args[0]) === args[0];
const accepts = {
  registerConnectivityListener: listener,
  registerUpdateListener: listener,
  registerAboutListener: listener,
  backgroundGetESSIDList: listener,
  getIniSetting: (args) => first(args, 2),
  setIniSetting: (args) => args.length === 3 && first(args, 2),
  deleteIniFile: (args) => args.length === 2 && first(args, 2),
  writeFile: (args) => args.length === 2 && first(args, 2),
  deleteFile: (args) => args.length === 1 && first(args, 1),
  utf8Encode: (args) => args.length === 1 && first(args, 1),
};

const methods = Object.getOwnPropertyNames(ZQUtil.prototype).filter((name) => name !== 'constructor');
let calls = 0;
const call = (name, args, what) => {
  const wanted = name in accepts ? accepts[name](args) : true;
  equal(!refused(() => util[name](...args)), wanted, `${name} ${what} accepted`);
  calls += 1;
};
for (const name of methods) {
  call(name, [], 'without arguments');
  for (let count = 1; count <= 4; count += 1) {
    for (let place = 0; place < count; place += 1) {
      for (const [kind, value] of Object.entries(kinds)) {
        const args = Array(count).fill('text');
        args[place] = value;
        call(name, args, `of ${count}, at ${place}: ${kind}`);
      }
    }
  }
}
equal(methods.length, 73, 'methods');
equal(calls, methods.length * (1 + 10 * Object.keys(kinds).length), 'calls');
equal(util.isTablet(), 'no', 'the module afterwards');
exit(0);
