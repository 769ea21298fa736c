#pragma once

#include <QString>
#include <QStringList>

class QWidget;
struct AppContext;
enum class PaperKind;

// The report window and the paperwork preview print and draw charts. They are built into a module
// of their own (tallybid-printing), loaded when one of them first opens, so that a start does not
// load the print and chart libraries and resolve their thousands of symbols. A program that links
// the windows in (tb_printed_windows) makes them directly.
namespace PrintedWindows {

// The report window, a child of parent; nullptr, with the reason in why, when the module cannot
// be loaded.
QWidget* makeReports(AppContext& ctx, QWidget* parent, QString& why);

// The preview of a filled invoice or packing slip (html), offered as baseName.pdf.
QWidget* makePaperwork(AppContext& ctx, PaperKind kind, const QString& html,
                       const QString& baseName, QWidget* parent, QString& why);

// Where the module is looked for, first to last, for a program in programDir: beside the program
// (the build's application folder), then where the install puts it.
QStringList moduleCandidates(const QString& programDir);

} // namespace PrintedWindows

// What the module gives, and what the linked-in windows give under the same name.
extern "C" {
struct TbPrintedWindowMakers
{
    QWidget* (*reports)(AppContext& ctx, QWidget* parent);
    QWidget* (*paperwork)(AppContext& ctx, PaperKind kind, const QString& html,
                          const QString& baseName, QWidget* parent);
};
const TbPrintedWindowMakers* tb_printed_window_makers();
}
