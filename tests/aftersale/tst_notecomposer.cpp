// The buyer notes as text: the checks in their order, the four bodies line by line, and the
// currency form amounts are shown in.
#include "aftersale/NoteComposer.h"
#include "aftersale/texts.h"
#include "platform/DateText.h"

#include <QtTest>

using namespace AfterSaleTexts;

namespace {

// A sale as the seller has it on screen, with every setting filled.
struct Sale
{
    NoteFields fields;
    NoteItem item;
    NoteSettings settings;
};

Sale baseSale()
{
    Sale s;
    s.fields.sellPrice = QStringLiteral("$12.50");
    s.fields.buyerEmail = QStringLiteral("pat@example.com");
    s.fields.buyerName = QStringLiteral("Pat Buyer");
    s.fields.street[0] = QStringLiteral("12 Elm St");
    s.fields.street[1] = QStringLiteral("Apt 4");
    s.fields.city = QStringLiteral("Springfield");
    s.fields.state = QStringLiteral("IL");
    s.fields.zip = QStringLiteral("62701");
    s.fields.datePaymentCleared = QStringLiteral("6/10/1999");
    s.fields.shippingCost = QStringLiteral("$3.20");
    s.fields.insuranceCost = QStringLiteral("$0.00");
    s.item = {QStringLiteral("123456789"), QStringLiteral("Blue glass vase"),
              Money::fromUnits(125000), Money::fromUnits(32000), Money()};
    s.settings.payMsg = QStringLiteral("Please send check or money order to:");
    s.settings.sendAddress[0] = QStringLiteral("Sam Seller");
    s.settings.sendAddress[1] = QStringLiteral("1 Main St");
    s.settings.sendAddress[3] = QStringLiteral("Townsville");
    s.settings.closing = QStringLiteral("It's been a pleasure doing business with you.");
    s.settings.signature = QStringLiteral("Sam");
    s.settings.recdMsg = QStringLiteral("We will ship as soon as payment clears.");
    s.settings.defaultCc = QStringLiteral("me@example.com");
    s.settings.remoteSmtpHost = QStringLiteral("mail.example.com");
    s.settings.remoteSmtpPort = QStringLiteral("25");
    return s;
}

// "name=value" changes to the base sale; money values of the record are plain decimals.
Sale changedSale(const QStringList& changes)
{
    Sale s = baseSale();
    for (const QString& change : changes) {
        const QString name = change.section(u'=', 0, 0);
        const QString value = change.section(u'=', 1);
        const Money amount = Money::parse(value).value_or(Money());
        QHash<QString, QString*> texts{{"sellPrice", &s.fields.sellPrice},
                                       {"email", &s.fields.buyerEmail},
                                       {"name", &s.fields.buyerName},
                                       {"street1", &s.fields.street[0]},
                                       {"street2", &s.fields.street[1]},
                                       {"street3", &s.fields.street[2]},
                                       {"city", &s.fields.city},
                                       {"state", &s.fields.state},
                                       {"zip", &s.fields.zip},
                                       {"cleared", &s.fields.datePaymentCleared},
                                       {"shipping", &s.fields.shippingCost},
                                       {"insurance", &s.fields.insuranceCost},
                                       {"taxMsg", &s.settings.taxMsg},
                                       {"payMsg", &s.settings.payMsg},
                                       {"closing", &s.settings.closing},
                                       {"signature", &s.settings.signature},
                                       {"recdMsg", &s.settings.recdMsg},
                                       {"host", &s.settings.remoteSmtpHost},
                                       {"port", &s.settings.remoteSmtpPort}};
        if (QString* text = texts.value(name))
            *text = value;
        else if (name == QLatin1String("sale"))
            s.item.salePrice = amount;
        else if (name == QLatin1String("ship"))
            s.item.shippingCost = amount;
        else if (name == QLatin1String("ins"))
            s.item.insuranceCost = amount;
        else if (name == QLatin1String("noSendAddress"))
            for (QString& line : s.settings.sendAddress)
                line.clear();
        else
            qFatal("unknown change %s", qPrintable(name));
    }
    return s;
}

QString lines(const QStringList& l)
{
    return l.join(QLatin1String("\r\n"));
}

} // namespace

class TestNoteComposer : public QObject
{
    Q_OBJECT
private slots:
    void currency_data();
    void currency();
    void checks_data();
    void checks();
    void headers_data();
    void headers();
    void bodies_data();
    void bodies();
};

void TestNoteComposer::currency_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<bool>("isAmount");
    QTest::addColumn<qint64>("units");
    QTest::addColumn<QString>("shown");
    QTest::newRow("plain") << "12.5" << true << qint64(125000) << "$12.50";
    QTest::newRow("zero") << "0" << true << qint64(0) << "$0.00";
    QTest::newRow("grouped") << "1234567.891" << true << qint64(12345678910) << "$1,234,567.89";
    QTest::newRow("currency form read back")
        << " $1,234.50 " << true << qint64(12345000) << "$1,234.50";
    QTest::newRow("half cent rounds up") << "0.005" << true << qint64(50) << "$0.01";
    QTest::newRow("negative") << "-3" << true << qint64(-30000) << "($3.00)";
    QTest::newRow("bracketed negative") << "($3.00)" << true << qint64(-30000) << "($3.00)";
    QTest::newRow("letters") << "abc" << false << qint64(0) << "abc";
    QTest::newRow("empty") << "" << false << qint64(0) << "";
    QTest::newRow("sign alone") << "$" << false << qint64(0) << "$";
    QTest::newRow("two points") << "1.2.3" << false << qint64(0) << "1.2.3";
}

void TestNoteComposer::currency()
{
    QFETCH(QString, text);
    QFETCH(bool, isAmount);
    const std::optional<Money> amount = Currency::parse(text);
    QCOMPARE(amount.has_value(), isAmount);
    if (amount)
        QTEST(amount->units(), "units");
    QTEST(Currency::reformat(text), "shown");
}

void TestNoteComposer::checks_data()
{
    QTest::addColumn<int>("kind");
    QTest::addColumn<QStringList>("changes");
    QTest::addColumn<QString>("message"); // "" when the note may be made
    QTest::addColumn<int>("focus");
    QTest::addColumn<bool>("options");
    const int winner = int(NoteKind::WinningConfirmation);
    const int payment = int(NoteKind::PaymentReceived);
    const int reserve = int(NoteKind::DidntMakeReserve);
    const int shipped = int(NoteKind::ItemShipped);
    QTest::newRow("winner: all there") << winner << QStringList{} << "" << -1 << false;
    QTest::newRow("winner: no e-mail comes before the server")
        << winner << QStringList{"email=  ", "host="} << kEmailRequired << -1 << false;
    QTest::newRow("winner: sell price abc")
        << winner << QStringList{"sellPrice=abc"} << kSalePriceRequired << 11 << false;
    QTest::newRow("winner: empty sell price")
        << winner << QStringList{"sellPrice="} << kSalePriceRequired << 11 << false;
    QTest::newRow("winner: sell price 0 passes")
        << winner << QStringList{"sellPrice=0"} << "" << -1 << false;
    QTest::newRow("winner: no host")
        << winner << QStringList{"host= "} << kNoSmtpHost << -1 << true;
    QTest::newRow("payment: port 0")
        << payment << QStringList{"port= 0 "} << kNoSmtpPort << -1 << true;
    QTest::newRow("payment: no port")
        << payment << QStringList{"port="} << kNoSmtpPort << -1 << true;
    QTest::newRow("payment: host before port")
        << payment << QStringList{"host=", "port="} << kNoSmtpHost << -1 << true;
    QTest::newRow("reserve: no e-mail needed")
        << reserve << QStringList{"email=", "sellPrice=abc"} << "" << -1 << false;
    QTest::newRow("shipped: cleared date first")
        << shipped << QStringList{"cleared=  ", "host="} << kPaymentClearedRequired << 26 << false;
    QTest::newRow("shipped: placeholder date passes")
        << shipped << QStringList{"cleared=1/1/1900"} << "" << -1 << false;
}

void TestNoteComposer::checks()
{
    QFETCH(int, kind);
    QFETCH(QStringList, changes);
    QFETCH(QString, message);
    const Sale s = changedSale(changes);
    const std::optional<NoteProblem> problem =
        firstNoteProblem(NoteKind(kind), s.fields, s.settings);
    QCOMPARE(problem.has_value(), !message.isEmpty());
    if (!problem)
        return;
    QCOMPARE(problem->message, message);
    QTEST(problem->focusField, "focus");
    QTEST(problem->opensOptions, "options");
}

void TestNoteComposer::headers_data()
{
    QTest::addColumn<int>("kind");
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("caption");
    QTest::addColumn<QString>("subject");
    QTest::newRow("winner") << int(NoteKind::WinningConfirmation) << "WinningConfirmation"
                            << "High Bidder Notification"
                            << "eBay Item: 123456789 - Confirmation of winning bid.";
    QTest::newRow("reserve") << int(NoteKind::DidntMakeReserve) << "DidntMakeReserve"
                             << "Didn't Make Reserve Notification"
                             << "eBay Item: 123456789 - Failed to make reserve.";
    QTest::newRow("payment") << int(NoteKind::PaymentReceived) << "PaymentReceived"
                             << "Payment Received Notification"
                             << "eBay Item: 123456789 - Payment Received for eBay Auction Item.";
    QTest::newRow("shipped") << int(NoteKind::ItemShipped) << "ItemShipped"
                             << "Item Shipped Notification"
                             << "eBay Item: 123456789 - Item shipped for eBay Auction.";
}

void TestNoteComposer::headers()
{
    QFETCH(int, kind);
    QFETCH(QString, name);
    const Sale s = baseSale();
    const QDateTime when(QDate(1999, 6, 12), QTime(14, 5, 9));
    const ComposedNote note = composeNote(NoteKind(kind), s.fields, s.item, s.settings, when);
    QCOMPARE(noteKindName(note.kind), name);
    QCOMPARE(noteKindFromName(name), std::optional<NoteKind>(NoteKind(kind)));
    QTEST(note.caption, "caption");
    QTEST(note.subject, "subject");
    QCOMPARE(note.to, QStringLiteral("pat@example.com"));
    QCOMPARE(note.cc, QStringLiteral("me@example.com"));
    QCOMPARE(note.date, DateText::toDisplay(when));
}

void TestNoteComposer::bodies_data()
{
    QTest::addColumn<int>("kind");
    QTest::addColumn<QStringList>("changes");
    QTest::addColumn<QString>("body");
    const QStringList winnerTop{"Congratulations pat@example.com, ",
                                "",
                                "You were the high bidder on my following Ebay Auction. ",
                                "",
                                "   Ebay ID: 123456789",
                                "   Description: Blue glass vase",
                                "   Your bid: $12.50",
                                "   Shipping: $3.20",
                                "   Total: $15.70",
                                ""};
    QTest::newRow("winner, no insurance")
        << int(NoteKind::WinningConfirmation) << QStringList{}
        << lines(winnerTop + QStringList{"Please send check or money order to:", "", "Sam Seller",
                                         "1 Main St", "Townsville", "",
                                         "It's been a pleasure doing business with you.", "", "Sam",
                                         ""});
    QTest::newRow("winner, insured, blank tax message, no address, no signature")
        << int(NoteKind::WinningConfirmation)
        << QStringList{"insurance=2", "ins=2", "taxMsg=  ", "noSendAddress", "signature="}
        << lines(winnerTop +
                 QStringList{"If you would like it insured, please add an additional $2.00 "
                             "for a total of $17.70.",
                             "", "Please send check or money order to:", "", "",
                             "It's been a pleasure doing business with you.", ""});
    QTest::newRow("winner, sums from the record, tax message, nothing after it")
        << int(NoteKind::WinningConfirmation)
        << QStringList{"sellPrice=1234.5", "shipping=10", "sale=1234.5",         "ship=10",
                       "insurance=$1.005", "ins=1.005",   "taxMsg=Tax is 6.25%", "payMsg=",
                       "noSendAddress",    "closing=",    "signature="}
        << lines({"Congratulations pat@example.com, ", "",
                  "You were the high bidder on my following Ebay Auction. ", "",
                  "   Ebay ID: 123456789", "   Description: Blue glass vase", "   Your bid: 1234.5",
                  "   Shipping: $10.00", "   Total: $1,244.50", "",
                  "If you would like it insured, please add an additional $1.01 for a total of "
                  "$1245.51.",
                  "", "Tax is 6.25%", ""});
    QTest::newRow("reserve") << int(NoteKind::DidntMakeReserve) << QStringList{}
                             << lines({"Dear pat@example.com,", "",
                                       "You were high bidder on the following item: ", "",
                                       "   Ebay ID: 123456789", "   Description: Blue glass vase",
                                       "", "but it failed to reach the reserve price. ", "",
                                       "I'm very sorry, but I cannot sell the item below my "
                                       "reserve price.",
                                       "", "", "Sam", ""});
    QTest::newRow("reserve, blank signature")
        << int(NoteKind::DidntMakeReserve) << QStringList{"signature= "}
        << lines({"Dear pat@example.com,", "", "You were high bidder on the following item: ", "",
                  "   Ebay ID: 123456789", "   Description: Blue glass vase", "",
                  "but it failed to reach the reserve price. ", "",
                  "I'm very sorry, but I cannot sell the item below my reserve price.", "", ""});
    QTest::newRow("payment") << int(NoteKind::PaymentReceived) << QStringList{}
                             << lines({"Payment has been received for the following item: ", "",
                                       "   Ebay ID: 123456789", "   Description: Blue glass vase",
                                       "", "We will ship as soon as payment clears.", "", "Sam",
                                       ""});
    QTest::newRow("payment, empty message keeps its lines")
        << int(NoteKind::PaymentReceived) << QStringList{"recdMsg=", "signature="}
        << lines({"Payment has been received for the following item: ", "", "   Ebay ID: 123456789",
                  "   Description: Blue glass vase", "", "", ""});
    const QStringList shippedTop{
        "The following item: ",  "", "   Ebay ID: 123456789", "   Description: Blue glass vase", "",
        "has been shipped to..."};
    QTest::newRow("shipped, full address")
        << int(NoteKind::ItemShipped) << QStringList{}
        << lines(shippedTop + QStringList{"   pat@example.com", "   Pat Buyer", "   12 Elm St",
                                          "   Apt 4", "   Springfield, IL 62701", "",
                                          "you should receive it shortly.", "Thanks again!", "",
                                          "Sam", ""});
    QTest::newRow("shipped, no address at all")
        << int(NoteKind::ItemShipped)
        << QStringList{"name= ", "street1=", "street2=", "city=", "state=", "zip=", "signature="}
        << lines(shippedTop + QStringList{"   pat@example.com", "", "",
                                          "you should receive it shortly.", "Thanks again!", ""});
    QTest::newRow("shipped, city and zip without state")
        << int(NoteKind::ItemShipped) << QStringList{"state=", "street2=  "}
        << lines(shippedTop + QStringList{"   pat@example.com", "   Pat Buyer", "   12 Elm St",
                                          "   Springfield 62701", "",
                                          "you should receive it shortly.", "Thanks again!", "",
                                          "Sam", ""});
}

void TestNoteComposer::bodies()
{
    QFETCH(int, kind);
    QFETCH(QStringList, changes);
    const Sale s = changedSale(changes);
    const ComposedNote note =
        composeNote(NoteKind(kind), s.fields, s.item, s.settings, QDateTime::currentDateTime());
    QTEST(note.body, "body");
}

QTEST_MAIN(TestNoteComposer)
#include "tst_notecomposer.moc"
