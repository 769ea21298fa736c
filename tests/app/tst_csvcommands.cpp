// File > Export Items and Import Items driven in the item window: where the commands sit, what
// the export holds, and the import preview with Import and Cancel.
#include "ItemWindowFixture.h"
#include "app/frmImport.h"
#include "app/texts.h"
#include "db/ItemColumns.h"

#include <QLabel>
#include <QMenu>
#include <QTableWidget>
#include <functional>

namespace {

QString writeText(const QString& path, const QByteArray& bytes)
{
    QFile f(path);
    if (!f.open(QIODevice::WriteOnly) || f.write(bytes) != bytes.size())
        qFatal("cannot write %s", qPrintable(path));
    return path;
}

// Runs `act` on the import dialog once it is shown modal; the command that opened it waits.
class WhenImportShown : public QObject
{
public:
    explicit WhenImportShown(std::function<void(frmImport&)> act) : m_act(std::move(act))
    {
        QTimer::singleShot(0, this, &WhenImportShown::poll);
    }
    bool ran = false;

private:
    void poll()
    {
        if (auto* d = qobject_cast<frmImport*>(QApplication::activeModalWidget())) {
            ran = true;
            m_act(*d);
        } else if (++m_tries < 300) {
            QTimer::singleShot(10, this, &WhenImportShown::poll);
        }
    }
    std::function<void(frmImport&)> m_act;
    int m_tries = 0;
};

QStringList column(const QTableWidget* table, int c)
{
    QStringList out;
    for (int r = 0; r < table->rowCount(); ++r)
        out << (table->item(r, c) ? table->item(r, c)->text() : QString());
    return out;
}

const QByteArray kFile("\xEF\xBB\xBFshortdescription;Cost;Colour\r\n"
                       "\"Lamp; brass\";12.50;red\r\n"
                       "Vase;ten;blue\r\n"
                       "Clock;;\r\n");

} // namespace

class TestCsvCommands : public QObject
{
    Q_OBJECT
private slots:
    void menuItems();
    void exportsTheView();
    void importPreviewAndImport();
    void importCancelled();
};

// Export and Import sit just above the backup commands, which stay next to Exit's separator.
void TestCsvCommands::menuItems()
{
    TestEnvironment env;
    ItemWindow w(env);
    const QList<QAction*> file = w.child<QMenu>(QStringLiteral("mnuFile"))->actions();
    const qsizetype exportAt = file.indexOf(w.menu(QStringLiteral("mnuExportItems")));
    QCOMPARE(file.at(exportAt + 1), w.menu(QStringLiteral("mnuImportItems")));
    QCOMPARE(file.at(exportAt + 2), w.menu(QStringLiteral("mnuBackUpNow")));
    QCOMPARE(file.at(exportAt + 3), w.menu(QStringLiteral("mnuRestoreBackup")));
    QVERIFY(file.at(exportAt + 4)->isSeparator());
    QCOMPARE(file.at(exportAt + 5), w.menu(QStringLiteral("mnuExit")));
    QCOMPARE(w.menu(QStringLiteral("mnuExportItems"))->text(), Texts::kExportItemsMenu);
}

// The Active view's items, in its order, with what was typed into the current one.
void TestCsvCommands::exportsTheView()
{
    TestEnvironment env;
    env.addNumberedItems(6); // 3 and 6 are inactive
    ItemWindow w(env);
    w->mnuOpen_Click();
    w.field(3)->setText(QStringLiteral("Item 1, edited"));
    const QString path = env.path(QStringLiteral("active.csv"));
    env.prompts().queueFile(path);
    w.menu(QStringLiteral("mnuExportItems"))->trigger();
    QCOMPARE(env.prompts().unexpected(), QStringList());
    QCOMPARE(env.prompts().shown().last().text,
             Texts::exportDone(4, QDir::toNativeSeparators(path)));
    QFile f(path);
    QVERIFY(f.open(QIODevice::ReadOnly));
    const auto records = ItemCsv::parse(QString::fromUtf8(f.readAll()), u',');
    const qsizetype sd = ItemColumns::names().indexOf(QStringLiteral("ShortDescription"));
    QStringList names;
    for (qsizetype r = 1; r < records.size(); ++r)
        names << records.at(r).fields.at(sd);
    QCOMPARE(names, (QStringList{"Item 1, edited", "Item 2", "Item 4", "Item 5"}));
    QCOMPARE(w.total(), QStringLiteral("4")); // the view is as it was
}

// The preview shows the first rows and the row that cannot be read; Import adds the good rows,
// reports, and the window counts them.
void TestCsvCommands::importPreviewAndImport()
{
    TestEnvironment env;
    env.addNumberedItems(2);
    ItemWindow w(env);
    QCOMPARE(w.total(), QStringLiteral("2"));
    env.prompts().queueFile(writeText(env.path(QStringLiteral("in.csv")), kFile));
    QStringList preview, problems, unknown;
    bool canImport = false;
    WhenImportShown watch([&](frmImport& d) {
        const auto* grid = d.findChild<QTableWidget*>(QStringLiteral("grdPreview"));
        preview = column(grid, 1) + column(grid, 2);
        problems = column(d.findChild<QTableWidget*>(QStringLiteral("grdProblems")), 1);
        unknown << d.findChild<QLabel*>(QStringLiteral("lblUnknown"))->text();
        auto* import = d.findChild<QPushButton*>(QStringLiteral("cmdImport"));
        canImport = import->isEnabled();
        QTest::mouseClick(import, Qt::LeftButton);
    });
    w.menu(QStringLiteral("mnuImportItems"))->trigger();
    QVERIFY(watch.ran);
    QCOMPARE(preview, (QStringList{"Lamp; brass", "Vase", "Clock", "12.50", "ten", ""}));
    QCOMPARE(problems, QStringList{QStringLiteral("Cost: \"ten\" is not an amount")});
    QCOMPARE(unknown, QStringList{Texts::importUnknown({QStringLiteral("Colour")})});
    QVERIFY(canImport);
    QCOMPARE(env.prompts().unexpected(), QStringList());
    QCOMPARE(env.prompts().shown().last().text, Texts::importDone(2, 1));
    QCOMPARE(env.itemCount(), 4);
    QCOMPARE(w.total(), QStringLiteral("4"));
    QCOMPARE(env.storedValue(3, QStringLiteral("ShortDescription")).toString(),
             QStringLiteral("Lamp; brass"));
    QCOMPARE(env.storedValue(3, QStringLiteral("Cost")).toLongLong(), 125000);
}

// Cancel in the preview adds nothing and says nothing.
void TestCsvCommands::importCancelled()
{
    TestEnvironment env;
    env.addNumberedItems(2);
    ItemWindow w(env);
    env.prompts().queueFile(writeText(env.path(QStringLiteral("in.csv")), kFile));
    WhenImportShown watch([](frmImport& d) {
        QTest::mouseClick(d.findChild<QPushButton*>(QStringLiteral("cmdCancel")), Qt::LeftButton);
    });
    w.menu(QStringLiteral("mnuImportItems"))->trigger();
    QVERIFY(watch.ran);
    QCOMPARE(env.itemCount(), 2);
    QCOMPARE(w.total(), QStringLiteral("2"));
    QCOMPARE(env.prompts().shown().size(), 1); // the file dialog only
    QCOMPARE(env.prompts().unexpected(), QStringList());
}

QTEST_MAIN(TestCsvCommands)
#include "tst_csvcommands.moc"
