#pragma once

#include "db/ItemCsv.h"

#include <QDialog>

class QLabel;
class QPushButton;
class QTableWidget;
struct AppContext;

// Import Items: what a CSV file would add (its first rows, the columns skipped and every row
// that cannot be read, with the reason); Import adds the good rows in one transaction and
// reports how many were added and skipped.
class frmImport : public QDialog
{
    Q_OBJECT
public:
    frmImport(AppContext& ctx, ItemCsv::ImportPlan plan, const QString& fileName,
              QWidget* parent = nullptr);

    void cmdImport_Click();
    // What Import did; count 0 until it ran.
    const ItemCsv::Outcome& outcome() const { return m_outcome; }

private:
    AppContext& m_ctx;
    ItemCsv::ImportPlan m_plan;
    ItemCsv::Outcome m_outcome;
    QTableWidget* grdPreview = nullptr;
    QTableWidget* grdProblems = nullptr;
    QPushButton* cmdImport = nullptr;
};
