// Encrypted packages: Blowfish-CBC with the update key.
#ifndef ZQUTIL_UPDATE_DECRYPT_H
#define ZQUTIL_UPDATE_DECRYPT_H

struct DownloadDetails;

// Decrypts the package that the record names into its place beside it, removes the encrypted one and goes on with the
// decrypted one as the record's file. Where a file cannot be opened the record keeps the package as it came. Its stream
// is open on return, unless the disk refuses even that. Library thread.
void DecryptPackage(DownloadDetails& details);

#endif
