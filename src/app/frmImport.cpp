#include "app/frmImport.h"

#include "app/texts.h"
#include "platform/Prompts.h"
#include "platform/WindowFitUi.h"
#include "settings/AppContext.h"

#include <QDialogButtonBox>
#include <QHeaderView>
#include <QLabel>
#include <QProgressDialog>
#include <QPushButton>
#include <QTableWidget>
#include <QVBoxLayout>

namespace {

QTableWidget* makeTable(QWidget* parent, const QString& name, const QStringList& headers)
{
    auto* table = new QTableWidget(0, int(headers.size()), parent);
    table->setObjectName(name);
    table->setHorizontalHeaderLabels(headers);
    table->setEditTriggers(QAbstractItemView::NoEditTriggers);
    table->verticalHeader()->hide();
    table->setWordWrap(false);
    // Room for a few rows and for the summary above to wrap into a few lines, not a column.
    table->setMinimumSize(360, 90);
    return table;
}

void addRow(QTableWidget* table, const QStringList& cells)
{
    const int r = table->rowCount();
    table->insertRow(r);
    for (int c = 0; c < cells.size() && c < table->columnCount(); ++c) {
        // One line per cell: a field with line breaks shows them as spaces.
        QString text = cells.at(c).left(200);
        text.replace(u'\n', u' ').replace(u'\r', u' ');
        table->setItem(r, c, new QTableWidgetItem(text));
    }
}

} // namespace

frmImport::frmImport(AppContext& ctx, ItemCsv::ImportPlan plan, const QString& fileName,
                     QWidget* parent)
    : QDialog(parent), m_ctx(ctx), m_plan(std::move(plan))
{
    setObjectName(QStringLiteral("frmImport"));
    setWindowTitle(Texts::kImportTitle);
    auto* layout = new QVBoxLayout(this);

    auto* summary =
        new QLabel(Texts::importSummary(fileName, m_plan.goodRows, m_plan.badRows), this);
    summary->setObjectName(QStringLiteral("lblSummary"));
    summary->setWordWrap(true);
    // Two lines at the smallest width, whatever the box layout makes of wrapped text.
    summary->setMinimumHeight(2 * summary->fontMetrics().lineSpacing());
    layout->addWidget(summary);
    auto* unknown = new QLabel(Texts::importUnknown(m_plan.unknownColumns), this);
    unknown->setObjectName(QStringLiteral("lblUnknown"));
    unknown->setWordWrap(true);
    unknown->setVisible(!m_plan.unknownColumns.isEmpty());
    layout->addWidget(unknown);

    auto* previewCaption = new QLabel(Texts::kPreviewCaption, this);
    previewCaption->setObjectName(QStringLiteral("lblPreview"));
    layout->addWidget(previewCaption);
    grdPreview = makeTable(this, QStringLiteral("grdPreview"),
                           QStringList{QStringLiteral("Line")} + m_plan.columns);
    layout->addWidget(grdPreview, 2);

    auto* problemsCaption = new QLabel(Texts::kProblemsCaption, this);
    problemsCaption->setObjectName(QStringLiteral("lblProblems"));
    layout->addWidget(problemsCaption);
    grdProblems = makeTable(this, QStringLiteral("grdProblems"),
                            {QStringLiteral("Line"), QStringLiteral("Reason")});
    grdProblems->horizontalHeader()->setStretchLastSection(true);
    layout->addWidget(grdProblems, 1);
    problemsCaption->setVisible(m_plan.badRows > 0);
    grdProblems->setVisible(m_plan.badRows > 0);

    int previewed = 0;
    for (const ItemCsv::ImportRow& row : m_plan.rows) {
        if (previewed < ItemCsv::kPreviewRows && !row.fields.isEmpty()) {
            QStringList cells{QString::number(row.line)};
            for (const int f : m_plan.fieldOfColumn)
                cells << row.fields.value(f);
            addRow(grdPreview, cells);
            ++previewed;
        }
        if (!row.problem.isEmpty())
            addRow(grdProblems, {QString::number(row.line), row.problem});
    }

    grdPreview->resizeColumnsToContents();
    for (int c = 0; c < grdPreview->columnCount(); ++c)
        grdPreview->setColumnWidth(c, std::min(grdPreview->columnWidth(c), 240));

    auto* buttons = new QDialogButtonBox(this);
    buttons->setObjectName(QStringLiteral("buttons"));
    cmdImport = buttons->addButton(Texts::kImportButton, QDialogButtonBox::AcceptRole);
    cmdImport->setObjectName(QStringLiteral("cmdImport"));
    cmdImport->setEnabled(m_plan.goodRows > 0);
    cmdImport->setDefault(true);
    QPushButton* cancel = buttons->addButton(QDialogButtonBox::Cancel);
    cancel->setObjectName(QStringLiteral("cmdCancel"));
    layout->addWidget(buttons);
    connect(cmdImport, &QPushButton::clicked, this, &frmImport::cmdImport_Click);
    connect(cancel, &QPushButton::clicked, this, &QDialog::reject);

    fitToScreen(*this, QSize(760, 520));
}

void frmImport::cmdImport_Click()
{
    QProgressDialog progress(Texts::kImporting, tr("Cancel"), 0, std::max(m_plan.goodRows, 1),
                             this);
    progress.setObjectName(QStringLiteral("dlgImportProgress"));
    progress.setWindowTitle(Texts::kImportTitle);
    progress.setWindowModality(Qt::WindowModal);
    progress.setMinimumDuration(500);
    m_outcome =
        ItemCsv::importItems(m_ctx.itemDatabase, m_plan, [&progress](qsizetype done, qsizetype) {
            progress.setValue(int(done));
            return !progress.wasCanceled();
        });
    progress.reset();
    if (m_outcome.cancelled) {
        reject();
        return;
    }
    if (!m_outcome.ok()) {
        m_ctx.prompts.message(Texts::importFailed(m_outcome.error), Texts::kImportTitle,
                              PromptIcon::Exclamation);
        reject();
        return;
    }
    m_ctx.prompts.message(Texts::importDone(m_outcome.count, m_plan.badRows), Texts::kImportTitle,
                          PromptIcon::Information);
    accept();
}
