// The invoice and packing slip: the template filler on its own (escaping, empty values, exact
// totals, names it does not know), then the shipped templates filled from a real ending-auction
// window, previewed and saved as a PDF that is checked for its single page.
#include "AfterSaleDesk.h"

#include "aftersale/Paperwork.h"
#include "aftersale/frmPaperwork.h"
#include "platform/TextCodec.h"

#include <optional>

namespace {

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

// The paper, the ending-auction window's button for it, what its PDF page must and must not
// hold, and whether its template was saved in the Windows code page; a paper refused for a missing
// template or a shipping cost that is no amount, and the "title|text" its message starts with (%1:
// the template's path).
// clang-format off
struct Paper { PaperKind kind; QString button; QStringList shown, notShown; bool windows1252 = false; };
struct Refusal { bool withTemplate; QString shipping, message; };
// clang-format on

} // namespace

class TestPaperwork : public QObject
{
    Q_OBJECT
private slots:
    void fills_data()
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
    void fills()
    {
        QFETCH(QString, html);
        // Price 1234.5, shipping 3.2 and insurance 0.0001, which rounds away in the total only.
        // clang-format off
        const PaperworkData d{{"Sam's <Shop>", "", "1 Main St", ""}, "Pat & \"Co\"", "", "", {"22 Elm", "", ""}, "Springfield", "",
                              "12345", "123456789", "<b>Vase</b>", "", QDate(2024, 3, 5), Money::fromUnits(12345000),
                              Money::fromUnits(32000), Money::fromUnits(1)};
        // clang-format on
        QTEST(fillPaperwork(html,
                            paperworkValues(d, QLocale(QLocale::English, QLocale::UnitedStates))),
              "filled");
    }

    void savesOnePagePdf_data()
    {
        QTest::addColumn<Paper>("row");
        // clang-format off
        QTest::newRow("invoice") << Paper{PaperKind::Invoice, "cmdInvoice",
            {"Pat & Co", "$1,234.50", "$4.10", "$1,238.60", "Sam's Shop", "Smalltown, OH 44000"}, {"{{"}};
        QTest::newRow("packing slip") << Paper{PaperKind::PackingSlip, "cmdPackingSlip",
            {"Pat & Co", "1Z999", "Dayton, NY 12345", "A long blue vase", "Sam's Shop"}, {"{{", "$"}};
        QTest::newRow("invoice template in the Windows code page") << Paper{PaperKind::Invoice, "cmdInvoice",
            {"Thank you – schöne Grüße!", "$1,238.60"}, {"\uFFFD"}, true};
        // clang-format on
    }
    void savesOnePagePdf()
    {
        QFETCH(Paper, row);
        TestEnvironment env;
        for (const char* name : {"Invoice.htm", "PackingSlip.htm"}) {
            QFile shipped(qEnvironmentVariable("TB_SOURCE_DIR") + "/resources/"_L1 + name);
            QVERIFY(shipped.open(QIODevice::ReadOnly));
            QByteArray html = shipped.readAll();
            if (row.windows1252)
                html = TextCodec::toWindows1252(
                           QString::fromUtf8(html).replace(u"Thank you for your purchase!"_s,
                                                           u"Thank you – schöne Grüße!"_s))
                           .value();
            env.writeFile(QLatin1String(name), html);
        }
        OptionsRecord& o = env.context().state.options;
        o.sendAddress[0] = u"Sam's Shop"_s;
        o.sendAddress[1] = u"1 Main St"_s;
        o.sendAddress[3] = u"Smalltown, OH 44000"_s;
        // clang-format off
        Desk desk(env, {{{"EbayID", "123456789"}, {"ShortDescription", "A long blue vase"}, {"SalePrice", 12345000},
                         {"ShippingCost", 32000}, {"BuyerName", "Pat & Co"}, {"BuyerStreet1", "22 Elm"}, {"BuyerCity", "Dayton"},
                         {"BuyerState", "NY"}, {"BuyerZip", "12345"}, {"TrackingNumber", "1Z999"}}});
        // clang-format on
        desk.field(28)->setText(u"$4.10"_s); // shipping as just typed, not yet stored
        click(desk.ending, row.button);
        auto* preview = child<frmPaperwork>(desk.ending, u"frmPaperwork"_s);
        QVERIFY(preview);
        QCOMPARE(preview->windowTitle(), paperTitle(row.kind));
        const QString name = paperTitle(row.kind).remove(u' ');
        QVERIFY(preview->grab().save(QDir::temp().filePath(u"tallybid-%1.png"_s.arg(name))));

        // Saved under a name without suffix: ".pdf" is added; an old file there is replaced.
        env.writeFile(name + u".pdf"_s, "old");
        env.prompts().queueFile(env.path(name));
        click(preview, u"cmdSavePdf"_s);
        QCOMPARE(env.prompts().unexpected(), QStringList());
        QCOMPARE(env.prompts().shown().size(), 1);
        QCOMPARE(env.prompts().shown().at(0).title, kSavePdfTitle);
        QVERIFY(env.prompts().shown().at(0).extra.contains(name + u"-123456789.pdf"_s));
        const QString pdf = env.path(name + u".pdf"_s);
        QFile written(pdf);
        QVERIFY(written.open(QIODevice::ReadOnly));
        QVERIFY(written.readAll().startsWith("%PDF-"));
        const std::optional<QString> info = poppler("pdfinfo", {pdf});
        if (!info)
            QSKIP("poppler-utils is not installed");
        QVERIFY2(info->contains(QRegularExpression(u"Pages:\\s+1\\n"_s)), qPrintable(*info));
        const QString text = poppler("pdftotext", {u"-layout"_s, pdf, u"-"_s}).value_or(QString());
        for (const QString& part : row.shown)
            QVERIFY2(text.contains(part), qPrintable(part + u" not in:\n"_s + text));
        for (const QString& part : row.notShown)
            QVERIFY2(!text.contains(part), qPrintable(part + u" in:\n"_s + text));
        // The closing line is set in the template's 11pt: its words stand about that high on
        // the page, not a third taller.
        const QString boxes = poppler("pdftotext", {u"-bbox"_s, pdf, u"-"_s}).value_or(QString());
        const QRegularExpressionMatch thank =
            QRegularExpression(uR"re(yMin="([\d.]+)" xMax="[\d.]+" yMax="([\d.]+)">Thank<)re"_s)
                .match(boxes);
        QVERIFY2(thank.hasMatch(), qPrintable(boxes));
        const double points = thank.captured(2).toDouble() - thank.captured(1).toDouble();
        QVERIFY2(points > 11 && points < 11 * 1.35, qPrintable(QString::number(points)));
    }

    void refusesWhatCannotBePrinted_data()
    {
        QTest::addColumn<Refusal>("row");
        // clang-format off
        QTest::newRow("no template") << Refusal{false, "$3.20", "Invoice|The template %1 could not be read"};
        QTest::newRow("shipping that is no amount")
            << Refusal{true, "3 dollars", "Missing Information|The shipping cost \"3 dollars\" is not an amount"};
        // clang-format on
    }
    void refusesWhatCannotBePrinted()
    {
        QFETCH(Refusal, row);
        TestEnvironment env;
        if (row.withTemplate)
            env.writeFile(u"Invoice.htm"_s, "<p>{{Total}}</p>");
        Desk desk(env, {{{"EbayID", "1"}}});
        desk.field(28)->setText(row.shipping);

        QCOMPARE(desk.ending->openPaperwork(PaperKind::Invoice), nullptr);
        QCOMPARE(shownTexts(env).size(), 1);
        QVERIFY2(shownTexts(env).at(0).startsWith(
                     row.message.replace(u"%1"_s, env.path(u"Invoice.htm"_s))),
                 qPrintable(shownTexts(env).at(0)));
        QVERIFY(!desk.ending->findChild<frmPaperwork*>());
    }
};

QTEST_MAIN(TestPaperwork)
#include "tst_paperwork.moc"
