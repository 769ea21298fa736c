#pragma once

#include <QList>
#include <QtGlobal>

class QWidget;
struct AppContext;

// The File menu's CSV commands.
namespace CsvCommands {

// Export Items...: the items with these keys, in this order, to a CSV file the user names,
// with a progress dialog and Cancel when it takes a while.
void exportItems(AppContext& ctx, QWidget* owner, const QList<qint64>& ids);

// Import Items...: a CSV file the user chooses, previewed in frmImport. True when items were
// added (the caller reopens its view so they are counted).
bool importItems(AppContext& ctx, QWidget* owner);

} // namespace CsvCommands
