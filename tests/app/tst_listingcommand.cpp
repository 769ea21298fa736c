// The item window's listing command: the advertisement it writes for the shown item equals the
// one the command line writes for the same item, for each placement and picture source.
#include "ItemWindowFixture.h"

#include "listing/BatchListing.h"
#include "listing/ListingGenerator.h"
#include "listing/frmAdStudio.h"

#include <QDirIterator>
#include <QRadioButton>

namespace {
void copyTree(const QString& from, const QString& to)
{
    QDir().mkpath(to);
    QDirIterator it(from, QDir::Files);
    while (it.hasNext()) {
        it.next();
        QFile::copy(it.filePath(), to + u'/' + it.fileName());
    }
}
} // namespace

class TestListingCommand : public QObject
{
    Q_OBJECT
private slots:
    void sameTextAsCommandLine_data();
    void sameTextAsCommandLine();
    void listingCommandEnabling_data();
    void listingCommandEnabling();
    void refusedListingOpensNothing();
};

void TestListingCommand::sameTextAsCommandLine_data()
{
    QTest::addColumn<QString>("placement");
    QTest::addColumn<bool>("remote");
    QTest::addColumn<QString>("theme");
    QTest::newRow("left, local") << "Left" << false << "Default";
    QTest::newRow("bottom, remote") << "Bottom" << true << "Default";
}

void TestListingCommand::sameTextAsCommandLine()
{
    TestEnvironment env;
    const QString resources = qEnvironmentVariable("TB_SOURCE_DIR") + QLatin1String("/resources");
    QFile::copy(resources + QLatin1String("/standard.tbt"),
                env.path(QStringLiteral("standard.tbt")));
    for (const char* d : {"Backgr", "Images", "Sounds"})
        copyTree(resources + u'/' + QLatin1String(d), env.path(QString::fromLatin1(d)));
    QImage img(120, 90, QImage::Format_RGB32);
    img.fill(Qt::darkCyan);
    const QString picture = env.path(QStringLiteral("teapot.jpg"));
    img.save(picture);
    env.store().save(QStringLiteral("Tallybid"), QStringLiteral("Options"),
                     QStringLiteral("ImageLoc"), QStringLiteral("http://example.com/shop/"));
    env.context().state.options = OptionsRecord::load(env.store());
    const qint64 id =
        env.addItems({{{QStringLiteral("ShortDescription"), QStringLiteral("Teapot")},
                       {QStringLiteral("Description"), QStringLiteral("Bone china, 1930s.")},
                       {QStringLiteral("Picture1Path"), picture},
                       {QStringLiteral("Reserve"), 0}}})
            .first();
    ItemWindow w(env);
    QFETCH(QString, placement);
    QFETCH(bool, remote);
    w.child<QComboBox>(QStringLiteral("comboImgPlace"))->setCurrentText(placement);
    w.child<QRadioButton>(remote ? QStringLiteral("optRemotely") : QStringLiteral("optLocally"))
        ->setChecked(true);
    w.menu(QStringLiteral("mnuListing"))->trigger();
    QVERIFY2(env.prompts().shown().isEmpty(), qPrintable(env.prompts().shown().value(0).text));
    QCOMPARE(env.shell().opened.size(), 1);
    QCOMPARE(env.shell().opened.first().target, listingFilePath(env.appPath()));
    QFile written(listingFilePath(env.appPath()));
    QVERIFY(written.open(QIODevice::ReadOnly));
    const QByteArray fromWindow = written.readAll();
    written.close();
    QVERIFY(fromWindow.contains("Teapot"));
    QVERIFY(w.menu(QStringLiteral("mnuListing"))->isChecked());

    QFile::remove(listingFilePath(env.appPath()));
    QString out, err;
    QTextStream outStream(&out), errStream(&err);
    QStringList args{QStringLiteral("--appdir"),    env.appPath(),
                     QStringLiteral("--listing"),   QString::number(id),
                     QStringLiteral("--placement"), placement,
                     QStringLiteral("--configdir"), env.store().folder()};
    if (remote)
        args << QStringLiteral("--remote");
    QCOMPARE(runBatchListing(args, outStream, errStream), 0);
    QVERIFY(written.open(QIODevice::ReadOnly));
    QCOMPARE(written.readAll(), fromWindow);
}

void TestListingCommand::listingCommandEnabling_data()
{
    QTest::addColumn<QString>("title");
    QTest::addColumn<QString>("text");
    QTest::addColumn<bool>("enabled");
    QTest::newRow("only a description") << ""
                                        << "Blue" << true;
    QTest::newRow("only a title") << "Vase"
                                  << "" << true;
    QTest::newRow("neither") << ""
                             << "" << false;
}

void TestListingCommand::listingCommandEnabling()
{
    QFETCH(QString, title);
    QFETCH(QString, text);
    QFETCH(bool, enabled);
    TestEnvironment env;
    env.addItems({{{QStringLiteral("ShortDescription"), title.isEmpty() ? QVariant() : title},
                   {QStringLiteral("Description"), text.isEmpty() ? QVariant() : text}},
                  {{QStringLiteral("ShortDescription"), QStringLiteral("Other")}}});
    ItemWindow w(env);
    QCOMPARE(w->toolButton(QStringLiteral("PList"))->isEnabled(), enabled);
    QCOMPARE(w.menu(QStringLiteral("mnuListing"))->isEnabled(), enabled);
    // typing a title switches it on, emptying both switches it off again
    w.field(3)->setText(QStringLiteral("x"));
    QVERIFY(w->toolButton(QStringLiteral("PList"))->isEnabled());
    w.field(3)->clear();
    w->setFieldText(4, QString());
    QVERIFY(!w->toolButton(QStringLiteral("PList"))->isEnabled());
}

void TestListingCommand::refusedListingOpensNothing()
{
    TestEnvironment env; // no themeset in the folder
    env.addItems({{{QStringLiteral("ShortDescription"), QStringLiteral("Vase")}}});
    ItemWindow w(env);
    w.menu(QStringLiteral("mnuListing"))->trigger();
    QVERIFY(!env.prompts().shown().isEmpty());
    QVERIFY(env.shell().opened.isEmpty());
}

QTEST_MAIN(TestListingCommand)
#include "tst_listingcommand.moc"
