#pragma once

#include <QDialog>
#include <memory>

namespace Ui {
class frmFind;
}
class QLineEdit;
class RecordSet;
struct AppContext;

// "Find an Item": builds the search request (position, short description or text search) into
// the shared FindCriteria; the item window carries it out. Hidden, not destroyed, between uses
// so Find Again still knows where to search from.
class frmFind : public QDialog
{
    Q_OBJECT
public:
    explicit frmFind(AppContext& ctx, QWidget* parent = nullptr);
    ~frmFind() override;

    // The item window's total, which a position beyond it is cut back to.
    void setTotalItems(const QString& total) { m_total = total; }
    QLineEdit* itemNumberBox() const;
    bool searchFromFirst() const;
    // Fills the short description list from the items table.
    void loadDescriptions();

    void cmdItemFind_Click();
    void cmdSDescFind_Click();
    void cmdTextFind_Click();
    void cmdCancel_Click();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void showEvent(QShowEvent* event) override;

private:
    AppContext& m_ctx;
    std::unique_ptr<Ui::frmFind> ui;
    RecordSet* Data1; // the items table, whose short descriptions fill the list
    QString m_total;
    QString m_descriptionsVersion; // the items' version the list was filled from
};
