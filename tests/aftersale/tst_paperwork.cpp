// The invoice and packing slip: the template filler on its own (escaping, empty values, exact
// totals, names it does not know), then the shipped templates filled from a real ending-auction
// window, previewed and saved as a PDF that is checked for its single page.
#include "../support/LayoutCheck.h"
#include "../support/TestEnvironment.h"

#include "aftersale/Paperwork.h"
#include "aftersale/frmEndingAuction.h"
#include "aftersale/frmPaperwork.h"
#include "aftersale/texts.h"

#include <QFile>
#include <QLineEdit>
#include <QPushButton>
#include <QStandardPaths>
#include <QtTest>

#include <optional>

using namespace AfterSaleTexts;

namespace {

PaperworkData sale()
{
    PaperworkData d;
    d.sellerAddress[0] = QStringLiteral("Sam's <Shop>");
    d.sellerAddress[2] = QStringLiteral("1 Main St");
    d.buyerName = QStringLiteral("Pat & \"Co\"");
    d.street[0] = QStringLiteral("22 Elm");
    d.city = QStringLiteral("Springfield");
    d.zip = QStringLiteral("12345");
    d.itemNumber = QStringLiteral("123456789");
    d.description = QStringLiteral("<b>Vase</b>");
    d.date = QDate(2024, 3, 5);
    d.price = Money::fromUnits(12345000); // 1234.5
    d.shipping = Money::fromUnits(32000); // 3.2
    d.insurance = Money::fromUnits(1);    // 0.0001: rounds away in the total only
    return d;
}

QString sourceFile(const QString& name)
{
    return qEnvironmentVariable("TB_SOURCE_DIR") + QStringLiteral("/resources/") + name;
}

// The standard output of a poppler-utils program, or nothing when it is not installed.
std::optional<QString> poppler(const char* tool, const QStringList& arguments)
{
    const QString program = QStandardPaths::findExecutable(QLatin1String(tool));
    if (program.isEmpty())
        return std::nullopt;
    QProcess p;
    p.start(program, arguments);
    p.waitForFinished(30000);
    return QString::fromUtf8(p.readAllStandardOutput());
}

} // namespace

class TestPaperwork : public QObject
{
    Q_OBJECT
private slots:
    void fills_data();
    void fills();
    void savesOnePagePdf_data();
    void savesOnePagePdf();
    void refusesWhatCannotBePrinted_data();
    void refusesWhatCannotBePrinted();
};

void TestPaperwork::fills_data()
{
    QTest::addColumn<QString>("html");
    QTest::addColumn<QString>("filled");
    // clang-format off
    QTest::newRow("values are escaped") << "<p>{{BuyerName}}|{{Description}}</p>"
        << "<p>Pat &amp; &quot;Co&quot;|&lt;b&gt;Vase&lt;/b&gt;</p>";
    QTest::newRow("empty lines left out, lines escaped") << "{{SellerAddress}}"
        << "Sam&#39;s &lt;Shop&gt;<br>1 Main St";
    QTest::newRow("city line without a state") << "{{BuyerAddress}}" << "22 Elm<br>Springfield 12345";
    QTest::newRow("money in currency form, exact total")
        << "{{Price}}+{{Shipping}}+{{Insurance}}={{Total}}" << "$1,234.50+$3.20+$0.00=$1,237.70";
    QTest::newRow("missing values are empty") << "[{{BuyerPhone}}][{{TrackingNumber}}]" << "[][]";
    QTest::newRow("unknown and malformed names stay")
        << "{{Buyer}} {{ItemNumber}} {ItemNumber} {{ Date }}" << "{{Buyer}} 123456789 {ItemNumber} {{ Date }}";
    QTest::newRow("date in the locale's short form, twice") << "{{Date}}/{{Date}}" << "3/5/24/3/5/24";
    // clang-format on
}

void TestPaperwork::fills()
{
    QFETCH(QString, html);
    QTEST(fillPaperwork(html,
                        paperworkValues(sale(), QLocale(QLocale::English, QLocale::UnitedStates))),
          "filled");
}

void TestPaperwork::savesOnePagePdf_data()
{
    QTest::addColumn<PaperKind>("kind");
    QTest::addColumn<QString>("button");
    QTest::addColumn<QStringList>("shown");    // what the PDF's page must hold
    QTest::addColumn<QStringList>("notShown"); // and must not
    QTest::newRow("invoice") << PaperKind::Invoice << "cmdInvoice"
                             << QStringList{"Pat & Co",  "$1,234.50",  "$4.10",
                                            "$1,238.60", "Sam's Shop", "Smalltown, OH 44000"}
                             << QStringList{"{{"};
    QTest::newRow("packing slip") << PaperKind::PackingSlip << "cmdPackingSlip"
                                  << QStringList{"Pat & Co", "1Z999", "Dayton, NY 12345",
                                                 "A long blue vase", "Sam's Shop"}
                                  << QStringList{"{{", "$"};
}

void TestPaperwork::savesOnePagePdf()
{
    QFETCH(PaperKind, kind);
    TestEnvironment env;
    for (const char* name : {"Invoice.htm", "PackingSlip.htm"}) {
        QFile shipped(sourceFile(QLatin1String(name)));
        QVERIFY(shipped.open(QIODevice::ReadOnly));
        env.writeFile(QLatin1String(name), shipped.readAll());
    }
    const QList<qint64> ids = env.addItems({{{"EbayID", "123456789"},
                                             {"ShortDescription", "A long blue vase"},
                                             {"SalePrice", 12345000},
                                             {"ShippingCost", 32000},
                                             {"BuyerName", "Pat & Co"},
                                             {"BuyerStreet1", "22 Elm"},
                                             {"BuyerCity", "Dayton"},
                                             {"BuyerState", "NY"},
                                             {"BuyerZip", "12345"},
                                             {"TrackingNumber", "1Z999"}}});
    AppState& s = env.context().state;
    s.currentItemId = ids.at(0);
    s.options.sendAddress[0] = QStringLiteral("Sam's Shop");
    s.options.sendAddress[1] = QStringLiteral("1 Main St");
    s.options.sendAddress[3] = QStringLiteral("Smalltown, OH 44000");
    QWidget owner;
    frmEndingAuction* ending = frmEndingAuction::openEndingAuction(env.context(), {}, owner);
    // Shipping as the seller just typed it, not yet stored.
    qobject_cast<QLineEdit*>(ending->field(28))->setText(QStringLiteral("$4.10"));

    QFETCH(QString, button);
    QTest::mouseClick(ending->findChild<QPushButton*>(button), Qt::LeftButton);
    auto* preview = ending->findChild<frmPaperwork*>(QStringLiteral("frmPaperwork"));
    QVERIFY(preview);
    QCOMPARE(preview->windowTitle(), paperTitle(kind));
    const QString name = paperTitle(kind).remove(u' ');
    QVERIFY(
        preview->grab().save(QDir::temp().filePath(QStringLiteral("tallybid-%1.png").arg(name))));

    // Saved under a name without suffix: ".pdf" is added; an old file there is replaced.
    env.writeFile(name + QStringLiteral(".pdf"), "old");
    env.prompts().queueFile(env.path(name));
    QTest::mouseClick(preview->findChild<QPushButton*>(QStringLiteral("cmdSavePdf")),
                      Qt::LeftButton);
    QCOMPARE(env.prompts().unexpected(), QStringList());
    QCOMPARE(env.prompts().shown().size(), 1);
    QCOMPARE(env.prompts().shown().at(0).title, kSavePdfTitle);
    QVERIFY(env.prompts().shown().at(0).extra.contains(name + QStringLiteral("-123456789.pdf")));
    const QString pdf = env.path(name + QStringLiteral(".pdf"));
    QFile written(pdf);
    QVERIFY(written.open(QIODevice::ReadOnly));
    QVERIFY(written.readAll().startsWith("%PDF-"));
    const std::optional<QString> info = poppler("pdfinfo", {pdf});
    if (!info)
        QSKIP("poppler-utils is not installed");
    QVERIFY2(info->contains(QRegularExpression(QStringLiteral(R"(Pages:\s+1\n)"))),
             qPrintable(*info));
    const QString text = poppler("pdftotext", {QStringLiteral("-layout"), pdf, QStringLiteral("-")})
                             .value_or(QString());
    QFETCH(QStringList, shown);
    for (const QString& part : shown)
        QVERIFY2(text.contains(part), qPrintable(part + QStringLiteral(" not in:\n") + text));
    QFETCH(QStringList, notShown);
    for (const QString& part : notShown)
        QVERIFY2(!text.contains(part), qPrintable(part + QStringLiteral(" in:\n") + text));
    // Kept for a look at the page.
    const QString kept = QDir::temp().filePath(QStringLiteral("tallybid-%1.pdf").arg(name));
    QFile::remove(kept);
    QFile::copy(pdf, kept);
}

void TestPaperwork::refusesWhatCannotBePrinted_data()
{
    QTest::addColumn<bool>("withTemplate");
    QTest::addColumn<QString>("shipping");
    QTest::addColumn<QString>("message");
    QTest::newRow("no template") << false << "$3.20"
                                 << "Invoice|The template %1 could not be read";
    QTest::newRow("shipping that is no amount")
        << true << "3 dollars"
        << "Missing Information|The shipping cost \"3 dollars\" is not an amount";
}

void TestPaperwork::refusesWhatCannotBePrinted()
{
    QFETCH(bool, withTemplate);
    TestEnvironment env;
    if (withTemplate)
        env.writeFile(QStringLiteral("Invoice.htm"), "<p>{{Total}}</p>");
    env.context().state.currentItemId = env.addItems({{{"EbayID", "1"}}}).at(0);
    QWidget owner;
    frmEndingAuction* ending = frmEndingAuction::openEndingAuction(env.context(), {}, owner);
    QFETCH(QString, shipping);
    qobject_cast<QLineEdit*>(ending->field(28))->setText(shipping);

    QCOMPARE(ending->openPaperwork(PaperKind::Invoice), nullptr);
    QCOMPARE(env.prompts().shown().size(), 1);
    const auto& shown = env.prompts().shown().at(0);
    QFETCH(QString, message);
    QVERIFY2(QString(shown.title + u'|' + shown.text)
                 .startsWith(message.replace(QStringLiteral("%1"), env.path("Invoice.htm"))),
             qPrintable(shown.text));
    QVERIFY(!ending->findChild<frmPaperwork*>());
}

QTEST_MAIN(TestPaperwork)
#include "tst_paperwork.moc"
