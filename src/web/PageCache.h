#pragma once

#include <QString>

#include <functional>

// The page cache of the auction site's two forms: the start-auction form (kind 1) and the
// leave-feedback form (kind 2) are fetched once and kept in the application folder; item pages
// and seller reports (kinds 3 and 4) are always fetched.

// "Start.htm" for kind 1, "Leave.htm" for kind 2, "" for every other kind.
QString pageCacheFileName(int kind);

// Fetches one page and returns its text ("" when it could not be had).
using PageDownload = std::function<QString(const QString& url)>;

// The cache rules around one download. Kinds 1 and 2: a cache file present in appPath is read
// instead of fetching, unless retrieveEveryTime; a fetched page is written to the cache, but
// not when retrieveEveryTime and never when it is empty. Kinds 3 and 4: the download's text.
// Any other kind returns "" without calling download.
QString fetchPageWith(const QString& appPath, const QString& url, int kind, bool retrieveEveryTime,
                      const PageDownload& download);

// Writes text as one printed record (the text followed by CR LF, UTF-8), replacing the file
// atomically. False when the file could not be written; the old file is then untouched.
bool writePrintedFile(const QString& path, const QString& text);
