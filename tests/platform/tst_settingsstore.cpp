#include "platform/SettingsStore.h"

#include <QDir>
#include <QTemporaryDir>
#include <QtTest>

namespace {
const QString kApp = QStringLiteral("Tallybid");
const QString kOptions = QStringLiteral("Options");

QString fileText(const QString& path)
{
    QFile f(path);
    return f.open(QIODevice::ReadOnly) ? QString::fromUtf8(f.readAll()) : QString();
}
} // namespace

class TestSettingsStore : public QObject
{
    Q_OBJECT
private slots:
    void valuesRoundTrip_data();
    void valuesRoundTrip();
    void namesIgnoreCase();
    void damagedFileStillReads();
    void applicationsAndWrites();
    void booleans_data();
    void booleans();
};

void TestSettingsStore::valuesRoundTrip_data()
{
    QTest::addColumn<QString>("value");
    QTest::newRow("plain") << "smtp.example.com";
    QTest::newRow("line breaks") << "Dear buyer,\r\n\r\nThanks!\nBye";
    QTest::newRow("backslashes") << "C:\\Tallybid\\Images\\n\\";
    QTest::newRow("equals and semicolon") << "a=b; c==d";
    QTest::newRow("looks like a section") << "[Options]";
    QTest::newRow("outer blanks") << "  padded  ";
    QTest::newRow("quoted") << "\"hi\"";
    QTest::newRow("non-ASCII") << "Grüße €";
    QTest::newRow("empty") << "";
}

void TestSettingsStore::valuesRoundTrip()
{
    QFETCH(QString, value);
    QTemporaryDir dir;
    SettingsStore store(dir.path());
    QVERIFY(store.save(kApp, kOptions, QStringLiteral("Note"), value));
    QVERIFY(store.save(kApp, kOptions, QStringLiteral("After"), QStringLiteral("x")));
    const SettingsStore reread(dir.path()); // a fresh store reads the file, not the memory
    QCOMPARE(reread.get(kApp, kOptions, QStringLiteral("Note"), QStringLiteral("dflt")), value);
    QCOMPARE(reread.get(kApp, kOptions, QStringLiteral("After")), QStringLiteral("x"));
}

void TestSettingsStore::namesIgnoreCase()
{
    QTemporaryDir dir;
    SettingsStore store(dir.path());
    store.save(kApp, kOptions, QStringLiteral("ToolBar"), QStringLiteral("False"));
    store.save(kApp, QStringLiteral("OPTIONS"), QStringLiteral("toolbar"), QStringLiteral("True"));
    QCOMPARE(store.get(kApp, QStringLiteral("options"), QStringLiteral("Toolbar")),
             QStringLiteral("True"));
    QVERIFY(!store.contains(kApp, QStringLiteral("System"), QStringLiteral("Toolbar")));
    QCOMPARE(store.get(kApp, kOptions, QStringLiteral("Missing"), QStringLiteral("d")),
             QStringLiteral("d"));
    // The spelling first written is kept, once.
    QCOMPARE(fileText(store.filePath(kApp)), QStringLiteral("[Options]\nToolBar=True\n\n"));
}

void TestSettingsStore::damagedFileStillReads()
{
    QTemporaryDir dir;
    QFile file(SettingsStore(dir.path()).filePath(kApp));
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write("Orphan=before any section\n\x01\x02 garbage \xff\xfe\n[Options]\n=no key\n"
               "no equals sign\nMailServer = smtp.example.com\n[\n[System]\nItemsViewed=Open\n"
               "[options]\nImageLoc=shop/\nHalf=");
    file.close();
    SettingsStore store(dir.path());
    const auto check = [](const SettingsStore& s) {
        QCOMPARE(s.get(kApp, kOptions, QStringLiteral("MailServer")),
                 QStringLiteral("smtp.example.com"));
        QCOMPARE(s.get(kApp, QStringLiteral("System"), QStringLiteral("ItemsViewed")),
                 QStringLiteral("Open"));
        QCOMPARE(s.get(kApp, kOptions, QStringLiteral("ImageLoc")), QStringLiteral("shop/"));
        QCOMPARE(s.get(kApp, kOptions, QStringLiteral("Half"), QStringLiteral("d")), QString());
        QVERIFY(!s.contains(kApp, kOptions, QStringLiteral("Orphan")));
    };
    check(store);
    // Saving over a damaged file keeps everything that could be read.
    QVERIFY(store.save(kApp, kOptions, QStringLiteral("New"), QStringLiteral("1")));
    check(SettingsStore(dir.path()));
}

void TestSettingsStore::applicationsAndWrites()
{
    QTemporaryDir dir;
    const QString folder = dir.filePath(QStringLiteral("not/yet/there"));
    SettingsStore store(folder);
    const QString data = QStringLiteral("SystemData"), key = QStringLiteral("AppPath");
    store.save(kApp, data, key, QStringLiteral("/a"));
    QCOMPARE(store.get(QStringLiteral("Pulsewatch"), data, key), QString());
    store.save(QStringLiteral("Pulsewatch"), data, key, QStringLiteral("/b"));
    QCOMPARE(store.get(kApp, data, key), QStringLiteral("/a"));
    for (int i = 0; i < 30; ++i)
        QVERIFY(store.save(kApp, kOptions, QStringLiteral("Key%1").arg(i), QString::number(i)));
    // Every save replaced the file whole: no temporary files are left beside it.
    QCOMPARE(QDir(folder).entryList(QDir::Files | QDir::Hidden, QDir::Name),
             (QStringList{"Pulsewatch.ini", "Tallybid.ini"}));
    QCOMPARE(SettingsStore(folder).get(kApp, kOptions, QStringLiteral("Key29")),
             QStringLiteral("29"));

    SettingsStore blocked(dir.filePath(QStringLiteral("not/yet/there/Tallybid.ini")));
    QVERIFY(!blocked.save(kApp, kOptions, key, QStringLiteral("kept"))); // folder is a file
    QCOMPARE(blocked.get(kApp, kOptions, key), QStringLiteral("kept"));
}

void TestSettingsStore::booleans_data()
{
    QTest::addColumn<QString>("stored");
    QTest::addColumn<bool>("defaultValue");
    QTest::addColumn<bool>("expected");
    QTest::newRow("True") << "True" << false << true;
    QTest::newRow("false any case") << "fALSE" << true << false;
    QTest::newRow("minus one") << "-1" << false << true;
    QTest::newRow("zero") << "0" << true << false;
    QTest::newRow("blank padded") << " True " << false << true;
    QTest::newRow("garbage keeps default") << "maybe" << true << true;
    QTest::newRow("empty keeps default") << "" << true << true;
}

void TestSettingsStore::booleans()
{
    QFETCH(QString, stored);
    QFETCH(bool, defaultValue);
    QTemporaryDir dir;
    SettingsStore store(dir.path());
    store.save(kApp, kOptions, QStringLiteral("Flag"), stored);
    QTEST(store.getBool(kApp, kOptions, QStringLiteral("Flag"), defaultValue), "expected");
    QCOMPARE(store.getBool(kApp, kOptions, QStringLiteral("Unset"), defaultValue), defaultValue);
    store.saveBool(kApp, kOptions, QStringLiteral("Flag"), !defaultValue);
    QCOMPARE(store.get(kApp, kOptions, QStringLiteral("Flag")),
             SettingsStore::boolText(!defaultValue));
    QCOMPARE(SettingsStore::boolText(true), QStringLiteral("True"));
}

QTEST_GUILESS_MAIN(TestSettingsStore)
#include "tst_settingsstore.moc"
