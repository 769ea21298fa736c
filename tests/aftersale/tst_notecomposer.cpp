// The buyer notes and the leave-feedback form as text: the checks in their order, the four
// bodies line by line, amounts in currency form, the form's tags filled once each.
#include "aftersale/FeedbackForm.h"
#include "aftersale/NoteComposer.h"
#include "aftersale/texts.h"

#include <QtTest>

using namespace AfterSaleTexts;
using namespace Qt::StringLiterals;

namespace {

struct Sale
{
    NoteFields fields;
    NoteItem item;
    NoteSettings settings;
};

// A sale with every field and setting filled, then changed by "name=value" items: a field or
// setting by its member name; the price, shipping and insurance change the record's figures too.
Sale sale(const QStringList& changes)
{
    // clang-format off
    Sale s{{"$12.50", "pat@example.com", "Pat Buyer", {"12 Elm St", "Apt 4", ""}, "Springfield", "IL", "62701", "6/10/1999", "$3.20", "$0.00"},
           {"123456789", "Blue glass vase", Money::fromUnits(125000), Money::fromUnits(32000), Money()},
           {"", "Please send check or money order to:", "It's been a pleasure doing business with you.", "Sam", "me@example.com",
            "mail.example.com", "25", {"Sam Seller", "1 Main St", "", "Townsville"}, "We will ship as soon as payment clears."}};
    NoteFields& f = s.fields;
    NoteSettings& t = s.settings;
    const QHash<QString, QString*> texts{
        {"sellPrice", &f.sellPrice}, {"email", &f.buyerEmail}, {"name", &f.buyerName}, {"street1", &f.street[0]},
        {"street2", &f.street[1]}, {"city", &f.city}, {"state", &f.state}, {"zip", &f.zip},
        {"cleared", &f.datePaymentCleared}, {"insurance", &f.insuranceCost}, {"shipping", &f.shippingCost},
        {"taxMsg", &t.taxMsg}, {"payMsg", &t.payMsg}, {"closing", &t.closing}, {"signature", &t.signature},
        {"recdMsg", &t.recdMsg}, {"host", &t.remoteSmtpHost}, {"port", &t.remoteSmtpPort}};
    const QHash<QString, Money*> amounts{{"sellPrice", &s.item.salePrice}, {"shipping", &s.item.shippingCost}, {"insurance", &s.item.insuranceCost}};
    // clang-format on
    for (const QString& change : changes) {
        const QString name = change.section(u'=', 0, 0), value = change.section(u'=', 1);
        if (Money* amount = amounts.value(name))
            *amount = Currency::parse(value).value_or(Money());
        if (QString* text = texts.value(name))
            *text = value;
        else if (name == "noSendAddress"_L1)
            std::fill(std::begin(t.sendAddress), std::end(t.sendAddress), QString());
        else
            qFatal("unknown change %s", qPrintable(name));
    }
    return s;
}

QString lines(const QStringList& l)
{
    return l.join("\r\n"_L1);
}

constexpr NoteKind kWinner = NoteKind::WinningConfirmation, kReserve = NoteKind::DidntMakeReserve,
                   kPayment = NoteKind::PaymentReceived, kShipped = NoteKind::ItemShipped;

// A note kind, the changes to the sale, and the first problem found (a message of "" for none).
// clang-format off
struct Check { NoteKind kind; QStringList changes; NoteProblem problem; };
// clang-format on

} // namespace

class TestNoteComposer : public QObject
{
    Q_OBJECT
private slots:
    void currency_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<std::optional<qint64>>("units"); // none when it is no amount
        QTest::addColumn<QString>("shown");
        const std::optional<qint64> none;
        // clang-format off
        QTest::newRow("plain") << "12.5" << std::optional<qint64>(125000) << "$12.50";
        QTest::newRow("grouped, cents rounded") << "1234567.891" << std::optional<qint64>(12345678910) << "$1,234,567.89";
        QTest::newRow("currency form read back") << " $1,234.50 " << std::optional<qint64>(12345000) << "$1,234.50";
        QTest::newRow("half a cent rounds up") << "0.005" << std::optional<qint64>(50) << "$0.01";
        QTest::newRow("negative") << "-3" << std::optional<qint64>(-30000) << "($3.00)";
        QTest::newRow("bracketed negative") << "($3.00)" << std::optional<qint64>(-30000) << "($3.00)";
        QTest::newRow("empty") << "" << none << "";
        QTest::newRow("two points") << "1.2.3" << none << "1.2.3";
        // clang-format on
    }
    void currency()
    {
        QFETCH(QString, text);
        const std::optional<Money> amount = Currency::parse(text);
        QTEST(amount ? std::optional(amount->units()) : std::nullopt, "units");
        QTEST(Currency::reformat(text), "shown");
    }

    void checks_data()
    {
        QTest::addColumn<Check>("row");
        // clang-format off
        QTest::newRow("winner: no e-mail comes first") << Check{kWinner, {"email=  ", "host="}, {kEmailRequired}};
        QTest::newRow("winner: sell price 0 passes") << Check{kWinner, {"sellPrice=0"}, {}};
        QTest::newRow("payment: blank port") << Check{kPayment, {"port=  "}, {kNoSmtpPort, -1, true}};
        QTest::newRow("payment: host before port") << Check{kPayment, {"host= ", "port="}, {kNoSmtpHost, -1, true}};
        QTest::newRow("reserve: no e-mail needed") << Check{kReserve, {"email=", "sellPrice=abc"}, {}};
        QTest::newRow("shipped: cleared date first") << Check{kShipped, {"cleared=  ", "host="}, {kPaymentClearedRequired, 26}};
        QTest::newRow("shipped: the 1/1/1900 placeholder passes") << Check{kShipped, {"cleared=1/1/1900"}, {}};
        // clang-format on
    }
    void checks()
    {
        QFETCH(Check, row);
        const Sale s = sale(row.changes);
        const auto found = firstNoteProblem(row.kind, s.fields, s.settings).value_or(NoteProblem{});
        QCOMPARE(found, row.problem); // the message, the focus and whether Options opens
    }

    void bodies_data()
    {
        QTest::addColumn<NoteKind>("kind");
        QTest::addColumn<QStringList>("changes");
        QTest::addColumn<QString>("header"); // kind name|caption|subject
        QTest::addColumn<QString>("body");
        // clang-format off
        const QString winnerHead = "WinningConfirmation|High Bidder Notification|eBay Item: 123456789 - Confirmation of winning bid.";
        const QString reserveHead = "DidntMakeReserve|Didn't Make Reserve Notification|eBay Item: 123456789 - Failed to make reserve.";
        const QString paymentHead = "PaymentReceived|Payment Received Notification|eBay Item: 123456789 - Payment Received for eBay Auction Item.";
        const QString shippedHead = "ItemShipped|Item Shipped Notification|eBay Item: 123456789 - Item shipped for eBay Auction.";
        const QStringList winner{"Congratulations pat@example.com, ", "", "You were the high bidder on my following Ebay Auction. ", "",
                                 "   Ebay ID: 123456789", "   Description: Blue glass vase", "   Your bid: $12.50", "   Shipping: $3.20",
                                 "   Total: $15.70", ""};
        const QStringList shipped{"The following item: ", "", "   Ebay ID: 123456789", "   Description: Blue glass vase", "",
                                  "has been shipped to...", "   pat@example.com"};
        const QStringList reserve{"Dear pat@example.com,", "", "You were high bidder on the following item: ", "",
                                  "   Ebay ID: 123456789", "   Description: Blue glass vase", "", "but it failed to reach the reserve price. ", "",
                                  "I'm very sorry, but I cannot sell the item below my reserve price.", ""};
        QTest::newRow("winner, no insurance") << kWinner << QStringList{} << winnerHead
            << lines(winner + QStringList{"Please send check or money order to:", "", "Sam Seller", "1 Main St", "Townsville", "",
                                          "It's been a pleasure doing business with you.", "", "Sam", ""});
        QTest::newRow("winner, insured, blank tax message, no address, no signature") << kWinner
            << QStringList{"insurance=2", "taxMsg=  ", "noSendAddress", "signature="} << winnerHead
            << lines(winner + QStringList{"If you would like it insured, please add an additional $2.00 for a total of $17.70.", "",
                                          "Please send check or money order to:", "", "", "It's been a pleasure doing business with you.", ""});
        QTest::newRow("winner, large sums, rounded insurance, tax message only") << kWinner
            << QStringList{"sellPrice=1234.5", "shipping=10", "insurance=$1.005", "taxMsg=Tax is 6.25%", "payMsg=", "noSendAddress", "closing=", "signature="} << winnerHead
            << lines({"Congratulations pat@example.com, ", "", "You were the high bidder on my following Ebay Auction. ", "",
                      "   Ebay ID: 123456789", "   Description: Blue glass vase", "   Your bid: 1234.5", "   Shipping: $10.00",
                      "   Total: $1,244.50", "", "If you would like it insured, please add an additional $1.01 for a total of $1245.51.", "",
                      "Tax is 6.25%", ""});
        QTest::newRow("reserve") << kReserve << QStringList{} << reserveHead << lines(reserve + QStringList{"", "Sam", ""});
        QTest::newRow("payment, empty message keeps its lines") << kPayment << QStringList{"recdMsg="} << paymentHead
            << lines({"Payment has been received for the following item: ", "", "   Ebay ID: 123456789",
                      "   Description: Blue glass vase", "", "", "", "Sam", ""});
        QTest::newRow("shipped, full address") << kShipped << QStringList{} << shippedHead
            << lines(shipped + QStringList{"   Pat Buyer", "   12 Elm St", "   Apt 4", "   Springfield, IL 62701", "",
                                           "you should receive it shortly.", "Thanks again!", "", "Sam", ""});
        QTest::newRow("shipped, nothing but the e-mail") << kShipped
            << QStringList{"name= ", "street1=", "street2=", "city=", "state=", "zip=", "signature= "} << shippedHead
            << lines(shipped + QStringList{"", "", "you should receive it shortly.", "Thanks again!", ""});
        QTest::newRow("shipped, city and zip without state") << kShipped << QStringList{"state=", "street2=  "} << shippedHead
            << lines(shipped + QStringList{"   Pat Buyer", "   12 Elm St", "   Springfield 62701", "",
                                           "you should receive it shortly.", "Thanks again!", "", "Sam", ""});
        // clang-format on
    }

    void bodies()
    {
        QFETCH(NoteKind, kind);
        QFETCH(QStringList, changes);
        const Sale s = sale(changes);
        const ComposedNote n = composeNote(kind, s.fields, s.item, s.settings, {});
        QTEST(QString(noteKindName(n.kind) + u'|' + n.caption + u'|' + n.subject), "header");
        QCOMPARE(noteKindFromName(noteKindName(n.kind)), std::optional<NoteKind>(n.kind));
        QCOMPARE(n.to + u'|' + n.cc, u"pat@example.com|me@example.com"_s);
        QTEST(n.body, "body");
    }

    void feedbackForm_data()
    {
        QTest::addColumn<QString>("page");
        QTest::addColumn<QString>("filled");
        const auto tag = [](const char* type, const char* name, const char* rest) {
            return u"<input type=\"%1\" name=\"%2\" %3>"_s.arg(
                QLatin1String(type), QLatin1String(name), QLatin1String(rest));
        };
        const QString user = tag("text", "userid", "size=\"40\"");
        const QString pass = tag("password", "pass", "size=\"40\"");
        const QString buyer = tag("text", "otheruserid", "size=\"40\"");
        const QString item = tag("text", "itemno", "size=\"40\"");
        const QString positive = tag("radio", "which", "value=\"positive\"");
        const QString comment = tag("text", "comment", "size=\"80\" maxlength=\"80\"");
        QTest::newRow("each tag once, values escaped but the item number")
            << user + pass + buyer + item + positive + comment + user
            << tag("text", "userid", "size=\"40\" value=sam&#39;s") +
                   tag("password", "pass", "size=\"40\" value=a&quot;b&lt;c&gt;") +
                   tag("text", "otheruserid", "size=\"40\"  value='pat@example.com'") +
                   tag("text", "itemno", "size=\"40\"  value='1'2'") +
                   tag("radio", "which", "value=\"positive\" checked") +
                   tag("text", "comment", "size=\"80\" maxlength=\"80\" value='A&B'") + user;
        const QString other =
            u"<INPUT type=\"text\" name=\"userid\" size=\"40\"><input type='text' name='itemno' size='40'>"_s;
        QTest::newRow("tags written otherwise stay") << other << other;
    }

    void feedbackForm()
    {
        QFETCH(QString, page);
        QTEST(fillFeedbackForm(page, {"sam's", "a\"b<c>", "pat@example.com", "1'2", "A&B"}),
              "filled");
    }
};

QTEST_MAIN(TestNoteComposer)
#include "tst_notecomposer.moc"
