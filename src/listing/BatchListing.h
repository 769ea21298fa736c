#pragma once

#include <QString>
#include <QStringList>
#include <QTextStream>

// The listing of one item made from the command line, without any window:
//   tallybid --appdir DIR --listing ID [--theme NAME] [--themeset FILE]
//            [--placement Left|Right|Top|Bottom] [--remote] [--escape] [--configdir DIR]
// arguments are the program's arguments; a first element that is not an option is taken as the
// program's name and skipped. Writes DIR/listing.htm and prints the same text on out; returns 0.
// A refused run prints "title: text" on err and returns 1; wrong usage returns 2.
int runBatchListing(const QStringList& arguments, QTextStream& out, QTextStream& err);

// The usage text of the command, for --help.
QString batchListingHelp();
