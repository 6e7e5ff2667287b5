// Takes the updates that the server offers, with a bar for the download.
//
//   build/bin/sorel --device device examples/update.js
//
// tools/README.md says how to serve one. After an installation the device restarts, and this script with it:
//
//   build/bin/zqsim run device --supervised -- build/bin/sorel $PWD/examples/update.js

const util = new ZQUtil();

const bar = (percent) => `[${'#'.repeat(percent / 5).padEnd(20, '.')}] ${percent} %`;

util.registerUpdateListener({
  forcedUpdateAvailable: () => print('an update that cannot wait'),
  onDownloading(percent) {
    clearTimeout(waiting);
    print(bar(percent));
  },
  onInstalling: () => print('installing; do not switch the device off'),
  onDownloadFailed: () => print('the connection broke; the server is asked again later'),
});

const version = util.GetVersion();
print(`this device runs ${version.Firmware}, ${version.Software}`);
print('asking for updates; Ctrl-C ends');

const known = new Set();
/** @type {number | undefined} */
let waiting;
const nothingComes = () => print('nothing comes; with --trace the device says why');
setInterval(() => {
  for (const update of util.GetUpdateList()) {
    if (known.has(update.ID)) continue;
    known.add(update.ID);
    print(`update ${update.ID}: ${update.Name}`);
    waiting = setTimeout(nothingComes, 10 * 1000);
    util.beginUpdate(update.ID);
  }
}, 250);
