// The entry of the tallybid-printing module: the windows that print or draw charts.
#include "aftersale/frmPaperwork.h"
#include "platform/PrintedWindows.h"
#include "reports/frmReports.h"

namespace {

QWidget* makeReports(AppContext& ctx, QWidget* parent)
{
    return new frmReports(ctx, parent);
}

QWidget* makePaperwork(AppContext& ctx, PaperKind kind, const QString& html,
                       const QString& baseName, QWidget* parent)
{
    return new frmPaperwork(ctx, kind, html, baseName, parent);
}

} // namespace

extern "C" __attribute__((visibility("default"))) const TbPrintedWindowMakers*
tb_printed_window_makers()
{
    static const TbPrintedWindowMakers makers{makeReports, makePaperwork};
    return &makers;
}
