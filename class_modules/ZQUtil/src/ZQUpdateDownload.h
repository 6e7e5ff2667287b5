// The download of an update package, up to its installation.
//
//   idle -> downloading        DownloadUpdate; one at a time, a second one is refused
//   downloading -> complete    the last byte is on the disk: decrypted, installed, acknowledged (ZQUpdateInstall.h)
//   any -> idle                the record is cleared, the packages in /tmp are removed
//
// The callbacks (HttpDownload.cpp) come on the HTTP library's thread. Once more than five updates were offered and none of them made the
// device restart, the end of a download reboots it and ends the process.
#ifndef ZQUTIL_ZQUPDATEDOWNLOAD_H
#define ZQUTIL_ZQUPDATEDOWNLOAD_H

#include "module_api.h"

class HTTP;
struct zq_HttpResponse;

// Begins to download the package and returns. Any thread.
ZQUTIL_API void DownloadUpdate(const char* url);
// The text after the URL's last "/"; null for a URL without one, or with none but its first character.
ZQUTIL_API const char* GetFilenameFromURL(const char* url);

ZQUTIL_API void HttpDownloadConnected(HTTP* http);
ZQUTIL_API void HttpDownloadData(HTTP* http, const zq_HttpResponse* response);
ZQUTIL_API void HttpDownloadError(HTTP* http);
ZQUTIL_API void HttpDownloadDisconnected(HTTP* http);

#endif
