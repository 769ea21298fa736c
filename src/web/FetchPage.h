#pragma once

#include <QString>

struct AppContext;
class QWidget;

// The one way the program reads web pages: kinds 1 (start-auction form, cached in "Start.htm")
// and 2 (leave-feedback form, cached in "Leave.htm") come from the cache file when there is one
// and "RetrieveEveryTime" is off; otherwise, and for kinds 3 and 4, the page download window is
// shown modally over parent. Returns the page's text with CR LF line ends, or "" when the page
// could not be had or the user aborted. Any other kind returns "" and shows nothing.
QString FetchPage(AppContext& ctx, const QString& url, int kind, QWidget* parent = nullptr);
