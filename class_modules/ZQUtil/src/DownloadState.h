// Whose download is in progress.
//
// One at a time: whoever claims it owns the record (DownloadDetails.h) until the claim is given back.
#ifndef ZQUTIL_DOWNLOAD_STATE_H
#define ZQUTIL_DOWNLOAD_STATE_H

class HTTP;

// False while another download is in progress. Any thread.
bool ClaimDownload();
// The object whose callbacks belong to the claimed download: late ones of a download before are told from them. Null
// for one that has none yet.
void SetDownloadObject(HTTP* http);
// Whether the download in progress is this object's. Any thread.
bool IsDownloadOf(HTTP* http);
// Gives the claim back.
void ReleaseDownload();

// The end of a download that was begun, with or without success: clears the record, removes the packages in /tmp and
// gives the claim back. Reboots and ends the process once more than five updates were offered. The thread that owns the
// record.
void CleanUpDownload();

#endif
