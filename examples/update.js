// Takes the updates that the server offers, with a bar for the download.
//
//   build/bin/sorel --device device examples/update.js
//
// tools/README.md says how to serve one. After an installation the device restarts, and this script with it:
//
//   build/bin/zqsim run device --supervised -- build/bin/sorel examples/update.js

const util = new ZQUtil();

const bar = (percent) => `[${'#'.repeat(percent / 5).padEnd(20, '.')}] ${percent} %`;

util.registerUpdateListener({
  forcedUpdateAvailable: () => print('an update that cannot wait'),
  onDownloading: (percent) => print(bar(percent)),
  onInstalling: () => print('installing; do not switch the device off'),
  onDownloadFailed: () => print('the connection broke; the server is asked again later'),
});

const version = util.GetVersion();
print(`this device runs ${version.Firmware}, ${version.Software}`);
print('asking for updates; Ctrl-C ends');

const known = new Set();
setInterval(() => {
  for (const update of util.GetUpdateList()) {
    if (known.has(update.ID)) continue;
    known.add(update.ID);
    print(`update ${update.ID}: ${update.Name}`);
    util.beginUpdate(update.ID);
  }
}, 250);
