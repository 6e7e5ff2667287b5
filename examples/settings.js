// A settings screen without its drawing: items that show a value and change it, and a cursor that moves over them.
//
//   build/bin/sorel --device device examples/settings.js
//
// The keys that a user would press are at the end. Run it twice: what was changed is still there.

const util = new ZQUtil();

/** A level from `low` to `high`, moved by `step`. */
const level = (name, read, write, step, low, high) => ({
  name,
  show: () => `${'#'.repeat(Math.round((10 * (Number(read()) - low)) / (high - low))).padEnd(10, '.')} ${read()}`,
  right: () => write(Math.min(Number(read()) + step, high)),
  left: () => write(Math.max(Number(read()) - step, low)),
});

/** Something that is on or off; `on` is the word that the module says for on. */
const flag = (name, read, write, on) => {
  const flip = () => write(read() === on ? 'no' : on);
  return { name, show: () => (read() === on ? '[x]' : '[ ]'), right: flip, left: flip };
};

/** One of a list; the module is told an entry's Name and answers with its Description. */
const zones = util.getTZList();
const zone = {
  name: 'Time zone',
  show: () => util.getTZ(),
  move(by) {
    const at = zones.findIndex((each) => each.Description === util.getTZ());
    if (zones.length > 0) util.setTZ(zones[(at + by + zones.length) % zones.length].Name);
  },
  right() { this.move(1); },
  left() { this.move(-1); },
};

const items = [
  level('Brightness', () => util.getBrightness(), (value) => util.setBrightness(value), 10, 0, 100),
  level('Contrast', () => util.getContrast(), (value) => util.setContrast(value), 1, 1, 10),
  level('Volume', () => util.getMediaVolume(), (value) => util.setMediaVolume(value), 5, 0, 100),
  flag('Follow the light', () => util.getDimMode(), (value) => util.setDimMode(value), 'TRUE'),
  flag('24 hours', () => util.getMilitaryTimeEnabled(), (value) => util.setMilitaryTimeEnabled(value), 'YES'),
  flag('Time from the net', () => util.getNTPEnabled(), (value) => util.setNTPEnabled(value), 'YES'),
  zone,
];

let cursor = 0;
const draw = (title) => {
  print(title);
  items.forEach((item, index) => print(`${index === cursor ? ' >' : '  '} ${item.name.padEnd(18)} ${item.show()}`));
};
const keys = {
  down: () => { cursor = Math.min(cursor + 1, items.length - 1); },
  up: () => { cursor = Math.max(cursor - 1, 0); },
  right: () => items[cursor].right(),
  left: () => items[cursor].left(),
};

draw('before');
const pressed = 'left left down right down left down right down right down down right';
for (const key of pressed.split(' ')) keys[key]();
draw('\nafter some keys');
exit(0);
