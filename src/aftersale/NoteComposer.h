#pragma once

#include "platform/Money.h"

#include <QDateTime>
#include <QLocale>
#include <QString>
#include <optional>

struct OptionsRecord;

// The four standard notes to a buyer. The note window stamps the date that belongs to the kind
// once the note has gone out.
enum class NoteKind
{
    WinningConfirmation, // Notify Winner: stamps Date Contacted
    DidntMakeReserve,    // Didn't Make Reserve: stamps Date Contacted
    PaymentReceived,     // Payment Received: stamps Payment Rec'd
    ItemShipped          // Item Shipped: stamps Item Shipped
};

// "WinningConfirmation", "DidntMakeReserve", "PaymentReceived", "ItemShipped": the names kept in
// the shared NoteKind.
QString noteKindName(NoteKind kind);
std::optional<NoteKind> noteKindFromName(const QString& name);

// Money in the session's currency form ("$1,234.50" in en_US), the way the after-sale windows
// show amounts. Only the text is formatted; amounts stay exact.
namespace Currency {
// Rounded half away from zero to cents.
QString toText(Money amount, const QLocale& locale = QLocale());
// Accepts plain decimals ("12.5") and the currency form ("$1,234.50", "($3.00)"), blanks
// around allowed. Empty and other text give nothing: this is what counts as a number.
std::optional<Money> parse(const QString& text, const QLocale& locale = QLocale());
// The currency form of a text that holds an amount; any other text comes back unchanged.
QString reformat(const QString& text, const QLocale& locale = QLocale());
} // namespace Currency

// The texts of the ending-auction window's fields that notes read, by field number.
struct NoteFields
{
    QString sellPrice;          // 11
    QString buyerEmail;         // 16
    QString buyerName;          // 17
    QString street[3];          // 18, 19, 20
    QString city;               // 21
    QString state;              // 22
    QString zip;                // 23
    QString datePaymentCleared; // 26
    QString shippingCost;       // 28
    QString insuranceCost;      // 29
};

// The item: its number and title as the item window shows them, and the figures as stored in
// the record (the window saves it before a winner's note, so these are what was just typed).
struct NoteItem
{
    QString ebayId;
    QString shortDescription;
    Money salePrice;
    Money shippingCost;
    Money insuranceCost;
};

// The seller's settings the notes use.
struct NoteSettings
{
    QString taxMsg, payMsg, closing, signature, defaultCc, remoteSmtpHost, remoteSmtpPort;
    QString sendAddress[4];
    QString recdMsg; // read from the store when the note is made, default ""

    static NoteSettings from(const OptionsRecord& options, const QString& recdMsg);
};

// A check that stopped a note: the message (shown with the exclamation icon under "Missing
// Information"), the field that gets the focus, and whether the Options dialog opens after it.
struct NoteProblem
{
    QString message;
    int focusField = -1; // a field number, or -1
    bool opensOptions = false;

    friend bool operator==(const NoteProblem&, const NoteProblem&) = default;
};

// One note ready for the note window. Lines end in CR LF.
struct ComposedNote
{
    NoteKind kind = NoteKind::WinningConfirmation;
    QString caption; // the note window's caption
    QString to;      // the buyer's e-mail (field 16)
    QString cc;      // DefaultCC
    QString date;    // when the note was made, in the locale's date-time form
    QString subject;
    QString body;
};

// The command's own checks: an e-mail address and a sell price that is a number for the
// winner's note, a payment-cleared date before shipping.
std::optional<NoteProblem> checkNoteFields(NoteKind kind, const NoteFields& fields);
// The mail server checks every note makes after its own: a host, and a port other than "0".
std::optional<NoteProblem> checkMailServer(const NoteSettings& settings);
// Both in their order; the first that fails.
std::optional<NoteProblem> firstNoteProblem(NoteKind kind, const NoteFields& fields,
                                            const NoteSettings& settings);

// The note itself; the checks are the caller's business.
ComposedNote composeNote(NoteKind kind, const NoteFields& fields, const NoteItem& item,
                         const NoteSettings& settings, const QDateTime& now,
                         const QLocale& locale = QLocale());
