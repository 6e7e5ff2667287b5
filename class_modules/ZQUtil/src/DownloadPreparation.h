// What a device must know before a package comes.
#ifndef ZQUTIL_DOWNLOAD_PREPARATION_H
#define ZQUTIL_DOWNLOAD_PREPARATION_H

struct DownloadDetails;

// Fills the record for the package of that name and opens its file. False when the device cannot install the package,
// or has no place for it.
bool PrepareDownload(const char* name, DownloadDetails& details);

#endif
