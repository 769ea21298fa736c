// The windows that print or draw charts as the program gets them: from the printing module,
// loaded when the first of them opens. Like the program, this test does not link them in; it
// finds the module beside itself once the test puts it there.
#include "../support/TestEnvironment.h"
#include "aftersale/Paperwork.h"
#include "app/frmItems.h"
#include "platform/PrintedWindows.h"
#include "reports/texts.h"

#include <QAction>
#include <QtTest>

using namespace Qt::StringLiterals;

namespace {

bool isMapped(const QByteArray& name)
{
    QFile maps(u"/proc/self/maps"_s);
    return maps.open(QIODevice::ReadOnly) && maps.readAll().contains(name);
}

QString besideTest()
{
    return QCoreApplication::applicationDirPath() + "/tallybid-printing.so"_L1;
}

} // namespace

class TestPrintingModule : public QObject
{
    Q_OBJECT
    std::unique_ptr<TestEnvironment> m_env;

    // Chooses Actions > Reports in a new item window and returns the report windows it has.
    int reportWindowsAfterChoosing(int times)
    {
        frmItems items(m_env->context(), QSize(1280, 1024));
        items.show();
        for (int i = 0; i < times; ++i)
            items.findChild<QAction*>(u"mnuActionsReports"_s)->trigger();
        int visible = 0;
        for (const QWidget* w : items.findChildren<QWidget*>(ReportTexts::kWindowName))
            visible += w->isVisible() ? 1 : 0;
        return visible;
    }

private slots:
    void init() { m_env = std::make_unique<TestEnvironment>(); }
    void cleanupTestCase() { QFile::remove(besideTest()); }

    void missingModuleIsSaid()
    {
        QFile::remove(besideTest());
        QCOMPARE(reportWindowsAfterChoosing(1), 0);
        const auto shown = m_env->prompts().shown();
        QCOMPARE(shown.size(), 1);
        QVERIFY2(shown.first().text.contains("tallybid-printing.so is missing"_L1),
                 qPrintable(shown.first().text));
        QCOMPARE(shown.first().title, ReportTexts::kTitle);
        QCOMPARE(shown.first().icon, PromptIcon::Critical);
    }

    void windowsComeFromTheModule()
    {
        QVERIFY(!isMapped("libQt6Charts"));
        QVERIFY(!isMapped("libQt6PrintSupport"));
        QVERIFY(QFile::link(QStringLiteral(TB_PRINTING_MODULE_BUILT), besideTest()));

        QCOMPARE(reportWindowsAfterChoosing(2), 1);
        QVERIFY(isMapped("/tallybid-printing.so"));
        QVERIFY(isMapped("libQt6Charts"));

        QString why;
        const std::unique_ptr<QWidget> preview(PrintedWindows::makePaperwork(
            m_env->context(), PaperKind::Invoice, u"<p>Invoice</p>"_s, u"Invoice"_s, nullptr, why));
        QVERIFY2(preview, qPrintable(why));
        QCOMPARE(preview->objectName(), u"frmPaperwork"_s);
        QVERIFY(m_env->prompts().shown().isEmpty());
    }
};

QTEST_MAIN(TestPrintingModule)
#include "tst_printingmodule.moc"
