#pragma once

#include "aftersale/Paperwork.h"

#include <QDialog>
#include <QPrinter>

class QPrintPreviewWidget;
struct AppContext;

// Lays the filled template out on the printer's page, one page as the template is meant to be.
void printPaperwork(const QString& html, QPrinter& printer);

// The preview of an invoice or packing slip with Print, Save as PDF and Close.
class frmPaperwork : public QDialog
{
    Q_OBJECT
public:
    // html: the filled template; baseName: the file name the PDF is offered under, no suffix.
    frmPaperwork(AppContext& ctx, PaperKind kind, const QString& html, const QString& baseName,
                 QWidget* parent = nullptr);

    void cmdPrint_Click();
    // Asks where through the Prompts seam; a path without a suffix gets ".pdf".
    void cmdSavePdf_Click();
    // Writes the PDF in one go, replacing the file whole; false with the reason in why.
    bool savePdf(const QString& path, QString& why) const;

private:
    AppContext& m_ctx;
    QString m_html;
    QString m_baseName;
    QPrinter m_printer;
    QPrintPreviewWidget* m_preview = nullptr; // child
};
