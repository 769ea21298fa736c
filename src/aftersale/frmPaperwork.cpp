#include "aftersale/frmPaperwork.h"

#include "aftersale/texts.h"
#include "platform/AtomicFile.h"
#include "platform/Prompts.h"
#include "platform/WindowFitUi.h"
#include "settings/AppContext.h"

#include <QAbstractTextDocumentLayout>
#include <QDialogButtonBox>
#include <QFile>
#include <QFileInfo>
#include <QImage>
#include <QLocale>
#include <QPageSize>
#include <QPrintDialog>
#include <QPrintPreviewWidget>
#include <QPushButton>
#include <QTemporaryDir>
#include <QTextDocument>
#include <QVBoxLayout>

using namespace AfterSaleTexts;

namespace {

constexpr qreal kMarginMm = 15;

} // namespace

void printPaperwork(const QString& html, QPrinter& printer)
{
    // Laid out at 96 dots an inch, as a browser lays out the template: a point is 1/72 inch
    // and a pixel 1/96 inch on paper. The page size must be in the same dots, or the page
    // comes out scaled (a page size in points printed 11pt text at almost 15pt).
    constexpr int kDotsPerInch = 96;
    QImage dots(1, 1, QImage::Format_RGB32);
    dots.setDotsPerMeterX(qRound(kDotsPerInch / 0.0254));
    dots.setDotsPerMeterY(qRound(kDotsPerInch / 0.0254));
    QTextDocument page;
    page.documentLayout()->setPaintDevice(&dots);
    page.setDocumentMargin(0);
    page.setHtml(html);
    // A document with a page size is printed as laid out, without the page numbers and the
    // margins QTextDocument adds to one without.
    page.setPageSize(printer.pageRect(QPrinter::Inch).size() * kDotsPerInch);
    page.print(&printer);
}

frmPaperwork::frmPaperwork(AppContext& ctx, PaperKind kind, const QString& html,
                           const QString& baseName, QWidget* parent)
    : QDialog(parent), m_ctx(ctx), m_html(html), m_baseName(baseName),
      m_printer(QPrinter::HighResolution)
{
    setObjectName(QStringLiteral("frmPaperwork"));
    setWindowTitle(paperTitle(kind));
    // Without a printer chosen yet, the paper the seller's country uses.
    m_printer.setPageSize(QPageSize(QLocale().measurementSystem() == QLocale::ImperialUSSystem
                                        ? QPageSize::Letter
                                        : QPageSize::A4));
    m_printer.setPageMargins(QMarginsF(kMarginMm, kMarginMm, kMarginMm, kMarginMm),
                             QPageLayout::Millimeter);
    m_printer.setDocName(baseName);

    m_preview = new QPrintPreviewWidget(&m_printer, this);
    m_preview->setObjectName(QStringLiteral("prvPage"));
    connect(m_preview, &QPrintPreviewWidget::paintRequested, this,
            [this](QPrinter* printer) { printPaperwork(m_html, *printer); });

    auto* buttons = new QDialogButtonBox(this);
    const auto button = [&](const char* name, const QString& text,
                            QDialogButtonBox::ButtonRole role) {
        QPushButton* b = buttons->addButton(text, role);
        b->setObjectName(QLatin1String(name));
        b->setAutoDefault(false);
        return b;
    };
    connect(button("cmdPrint", QStringLiteral("&Print..."), QDialogButtonBox::ActionRole),
            &QPushButton::clicked, this, &frmPaperwork::cmdPrint_Click);
    connect(button("cmdSavePdf", QStringLiteral("Save as P&DF..."), QDialogButtonBox::ActionRole),
            &QPushButton::clicked, this, &frmPaperwork::cmdSavePdf_Click);
    connect(button("cmdClose", QStringLiteral("&Close"), QDialogButtonBox::RejectRole),
            &QPushButton::clicked, this, &QDialog::reject);

    auto* column = new QVBoxLayout(this);
    column->addWidget(m_preview, 1);
    column->addWidget(buttons);
    resize(640, 760);
    fitToScreen(*this);
    m_preview->fitInView();
}

void frmPaperwork::cmdPrint_Click()
{
    m_printer.setOutputFormat(QPrinter::NativeFormat);
    QPrintDialog dialog(&m_printer, this);
    if (dialog.exec() == QDialog::Accepted)
        printPaperwork(m_html, m_printer);
}

void frmPaperwork::cmdSavePdf_Click()
{
    QString path = m_ctx.prompts.saveFileName(
        kSavePdfTitle, m_ctx.appFile(m_baseName + QStringLiteral(".pdf")), kPdfFilter);
    if (path.isEmpty())
        return;
    if (QFileInfo(path).suffix().isEmpty())
        path += QStringLiteral(".pdf");
    QString why;
    if (!savePdf(path, why))
        m_ctx.prompts.message(pdfNotWritten(path, why), kSaveFailedTitle, PromptIcon::Critical);
}

bool frmPaperwork::savePdf(const QString& path, QString& why) const
{
    // QPrinter writes straight to its file; it writes a scratch copy that then replaces the
    // target whole, so a failure never leaves half a PDF where an old one was.
    const QTemporaryDir scratch;
    if (!scratch.isValid()) {
        why = scratch.errorString();
        return false;
    }
    const QString draft = scratch.filePath(QStringLiteral("page.pdf"));
    {
        QPrinter pdf(QPrinter::HighResolution);
        pdf.setOutputFormat(QPrinter::PdfFormat);
        pdf.setOutputFileName(draft);
        pdf.setPageLayout(m_printer.pageLayout());
        pdf.setDocName(m_baseName);
        pdf.setCreator(QStringLiteral("Tallybid"));
        printPaperwork(m_html, pdf);
    }
    QFile file(draft);
    if (!file.open(QIODevice::ReadOnly)) {
        why = file.errorString();
        return false;
    }
    if (const AtomicFile::Outcome failed = AtomicFile::write(path, file.readAll())) {
        why = failed->reason;
        return false;
    }
    return true;
}
