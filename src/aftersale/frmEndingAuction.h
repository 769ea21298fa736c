#pragma once

#include "aftersale/NoteComposer.h"
#include "aftersale/Paperwork.h"
#include "db/RecordSet.h"

#include <QHash>
#include <QMainWindow>
#include <array>
#include <memory>

namespace Ui {
class frmEndingAuction;
}
class QAction;
class QLineEdit;
class QTreeWidget;
class QTreeWidgetItem;
class frmSentNote;
struct AppContext;
struct NoteProblem;

// The buyer's side of one item after its auction: contact details, contact, payment and
// shipping dates, the money figures, tracking number, notes and whether feedback is done. Has
// its own Data1 on Items, positioned on the item window's current item each time it becomes
// active. Its Email commands compose a note and hand it on through noteComposed(); the record
// is saved on Exit, on close and before a winner's note.
class frmEndingAuction : public QMainWindow
{
    Q_OBJECT
public:
    static constexpr int kFieldCount = 30; // txtFields indexes 0 to 29; not all are present

    explicit frmEndingAuction(AppContext& ctx, QWidget* parent = nullptr);
    ~frmEndingAuction() override;

    // What the item window's Ending an Auction command does: UploadFiles slots 1 to 5 are
    // emptied and slots 1 to 3 take the item's picture paths as the item window shows them,
    // then the window (owner's existing one, or a new one that deletes itself when closed) is
    // shown modeless on the current item. Connect its signals with Qt::UniqueConnection: the
    // same window comes back while it is open.
    static frmEndingAuction* openEndingAuction(AppContext& ctx, const QStringList& picturePaths,
                                               QWidget& owner);
    // The owner's window (made when there is none yet) shown and brought to the front, where it
    // stands; the upload slots are left alone.
    static frmEndingAuction* showFor(AppContext& ctx, QWidget& owner);

    RecordSet& data() { return *Data1; }
    // The box of a field number; nullptr for numbers the window does not have.
    QWidget* field(int index) const;
    QString fieldText(int index) const;
    void setFieldText(int index, const QString& text);
    // The toolbar button with the given key ("NotifyWinner", ..., "Close").
    QAction* toolButton(const QString& key) const { return m_toolButtons.value(key); }
    int beepCount() const { return m_beeps; }

    // Stands Data1 on CurrentItemID and shows the money fields as currency.
    void positionOnCurrentItem();
    // Stands Data1 on the first item of this eBay number, as the clean-up does.
    void positionOnEbayId(const QString& ebayId);
    // The note window calls this once a note has gone out: Date Contacted for the winner's
    // and the reserve note, Payment Rec'd and Item Shipped for the other two. The date reaches
    // tb2.mdb when the record is saved.
    void stampNoteDate(NoteKind kind, const QDateTime& when);
    // Writes the record now; false when it could not be stored (the user has been told).
    bool saveRecord();

    // Commands, callable as the menu items run them.
    void mnuNotifyWinner_Click();
    void mnuPaymentReceived_Click();
    void mnuItemShipped_Click();
    void mnuDidntMakeReserve_Click();
    void mnuFeedbackLeave_Click();
    void mnuFeedbackView_Click();

    // The notes sent for the record Data1 stands on, oldest first: date, kind, subject. Each
    // row keeps its mail log id under Qt::UserRole.
    QTreeWidget& sentNotes() const;
    void refreshSentNotes();
    // Opens the row's note read-only; nullptr when it cannot be read (the user has been told).
    frmSentNote* openSentNote(QTreeWidgetItem* row);

    // Invoice... and Packing Slip...: the preview of the filled template, or nullptr when the
    // template or an amount stopped it (the user has been told).
    QWidget* openPaperwork(PaperKind kind);

signals:
    // A note passed its checks and is ready for the note window; NoteKind is set.
    void noteComposed(const ComposedNote& note);
    // After an Item Shipped note: the item window stands on the item and opens the clean-up.
    void cleanupRequested();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void changeEvent(QEvent* event) override;
    void closeEvent(QCloseEvent* event) override;

private:
    class Binding;

    void positionOn(const QString& criteria);
    void buildToolbar();
    void setUpSentNotes();
    void bindFields();
    void connectCommands();
    void runNote(NoteKind kind);
    void report(const NoteProblem& problem);
    void openOptions();
    NoteFields noteFields() const;
    NoteItem noteItem() const;
    std::optional<PaperworkData> paperworkData();
    void onFieldChanged(int index);
    void onMoneyFieldLeft(int index);
    void showMoneyAsCurrency();
    void zeroEmptyMoneyFields();
    void setNoteCommandsEnabled(bool enabled);
    void setNow(int index);
    void beep();

    AppContext& m_ctx;
    std::unique_ptr<Ui::frmEndingAuction> ui;
    RecordSet* Data1;
    std::unique_ptr<Binding> m_binding;
    std::array<QWidget*, kFieldCount> txtFields{};
    QHash<QString, QAction*> m_toolButtons;
    int m_beeps = 0;
};
