// The program as a user gets it: installed with `cmake --install` into a temporary DESTDIR
// and started offscreen with an empty home, as a separate process.
#include "app/AppFolder.h"
#include "platform/Database.h"

#include <QDirIterator>
#include <QProcess>
#include <QRegularExpression>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QtTest>

namespace {

// Owner, group and others; Qt's "user" bits only repeat whichever applies to us.
constexpr QFile::Permissions kModeBits = QFile::Permissions::fromInt(0x7077);

int itemCount(const QString& database)
{
    const QString name = QStringLiteral("count");
    int count = -1;
    {
        QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), name);
        db.setDatabaseName(database);
        db.setConnectOptions(QStringLiteral("QSQLITE_OPEN_READONLY"));
        if (QFileInfo::exists(database) && db.open()) {
            QSqlQuery q(db);
            if (q.exec(QStringLiteral("SELECT count(*) FROM Items")) && q.next())
                count = q.value(0).toInt();
        }
    }
    QSqlDatabase::removeDatabase(name);
    return count;
}

QByteArray readFile(const QString& path)
{
    QFile f(path);
    return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
}

} // namespace

class TestInstalled : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase();
    void installedFiles();
    void validators_data();
    void validators();
    void commandLine_data();
    void commandLine();
    void manPageCoversHelp();
    void firstStartSecondCopyAndRestart();
    void settingsFileIsPrivate(); // after a start has written the file
    void cleanup();

private:
    // A process of the installed program with an empty home of its own.
    std::unique_ptr<QProcess> program(const QStringList& arguments) const;
    QString lockHolder() const; // the pid in the lock file, "" when none
    QString home(const QString& relative) const
    {
        return m_root.filePath(QStringLiteral("home/") + relative);
    }
    QString installed(const QString& relative) const
    {
        return m_root.filePath(QStringLiteral("stage/usr/") + relative);
    }
    QTemporaryDir m_root;
    std::vector<std::unique_ptr<QProcess>> m_running;
};

void TestInstalled::initTestCase()
{
    QVERIFY(m_root.isValid());
    QProcess install;
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    env.insert(QStringLiteral("DESTDIR"), m_root.filePath(QStringLiteral("stage")));
    install.setProcessEnvironment(env);
    install.start(QStringLiteral(TB_CMAKE_COMMAND),
                  {QStringLiteral("--install"), QStringLiteral(TB_BINARY_DIR),
                   QStringLiteral("--prefix"), QStringLiteral("/usr")});
    QVERIFY(install.waitForFinished(60000));
    QVERIFY2(install.exitCode() == 0, install.readAllStandardError().constData());
    QVERIFY(QDir().mkpath(home(QString())));
    QVERIFY(QDir().mkdir(m_root.filePath(QStringLiteral("runtime")),
                         QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner));
}

void TestInstalled::cleanup()
{
    for (const auto& p : m_running) {
        p->kill();
        p->waitForFinished(5000);
    }
    m_running.clear();
}

std::unique_ptr<QProcess> TestInstalled::program(const QStringList& arguments) const
{
    auto p = std::make_unique<QProcess>();
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    env.remove(QStringLiteral("TALLYBID_CONFIG_DIR"));
    env.insert(QStringLiteral("HOME"), home(QString()));
    env.insert(QStringLiteral("XDG_CONFIG_HOME"), home(QStringLiteral(".config")));
    env.insert(QStringLiteral("XDG_DATA_HOME"), home(QStringLiteral(".local/share")));
    env.insert(QStringLiteral("XDG_RUNTIME_DIR"), m_root.filePath(QStringLiteral("runtime")));
    env.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("offscreen"));
    p->setProcessEnvironment(env);
    p->start(installed(QStringLiteral("bin/tallybid")), arguments);
    return p;
}

QString TestInstalled::lockHolder() const
{
    return QString::fromUtf8(readFile(m_root.filePath(QStringLiteral("runtime/tallybid.lock")))
                                 .split('\n')
                                 .value(0))
        .trimmed();
}

void TestInstalled::installedFiles()
{
    QStringList expected{
        "bin/tallybid",
        "share/applications/org.tallybid.Tallybid.desktop",
        "share/metainfo/org.tallybid.Tallybid.metainfo.xml",
        "share/icons/hicolor/scalable/apps/org.tallybid.Tallybid.svg",
        "share/man/man1/tallybid.1",
        "share/tallybid/standard.tbt",
        "share/tallybid/tb2ug.htm",
        "share/tallybid/URLSetup.htm",
        "share/tallybid/logovksm.gif",
        "share/tallybid/schema.sql",
        "share/tallybid/Backgr/linen.jpg",
        "share/tallybid/Images/flower.gif",
        "share/tallybid/Sounds/chime.wav",
    };
    for (const char* size : {"16x16", "24x24", "32x32", "48x48", "64x64", "128x128", "256x256"})
        expected << QStringLiteral("share/icons/hicolor/%1/apps/org.tallybid.Tallybid.png")
                        .arg(QLatin1String(size));
    for (const QString& file : expected)
        QVERIFY2(QFileInfo(installed(file)).isFile(), qPrintable(file));
    QVERIFY(QFileInfo(installed(QStringLiteral("bin/tallybid"))).isExecutable());
    // The program alone: no test, tool or benchmark slips into bin/.
    QCOMPARE(QDir(installed(QStringLiteral("bin"))).entryList(QDir::Files),
             QStringList{QStringLiteral("tallybid")});
    // The window system finds the entry by the id the program announces.
    QVERIFY(QFileInfo::exists(installed(QStringLiteral("share/applications/")) +
                              QLatin1String(AppFolder::kDesktopId) + QLatin1String(".desktop")));
}

void TestInstalled::validators_data()
{
    QTest::addColumn<QString>("tool");
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("file");
    QTest::newRow("desktop entry") << "desktop-file-validate" << QStringList()
                                   << "share/applications/org.tallybid.Tallybid.desktop";
    QTest::newRow("metainfo") << "appstreamcli" << QStringList{"validate", "--no-net"}
                              << "share/metainfo/org.tallybid.Tallybid.metainfo.xml";
}

void TestInstalled::validators()
{
    QFETCH(QString, tool);
    QFETCH(QStringList, arguments);
    QFETCH(QString, file);
    const QString path = QStandardPaths::findExecutable(tool);
    if (path.isEmpty())
        QSKIP(qPrintable(tool + QStringLiteral(" is not installed (scripts/setup installs it)")));
    QProcess p;
    p.start(path, arguments << installed(file));
    QVERIFY(p.waitForFinished(30000));
    const QByteArray said = p.readAllStandardOutput() + p.readAllStandardError();
    QVERIFY2(p.exitCode() == 0, said.constData());
}

void TestInstalled::commandLine_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<int>("exitCode");
    QTest::addColumn<QString>("out"); // expected standard output, or what it starts with + "..."
    QTest::addColumn<QString>("err");
    QTest::newRow("version") << QStringList{"--version"} << 0
                             << QStringLiteral("Tallybid " TALLYBID_VERSION "\n") << QString();
    QTest::newRow("help") << QStringList{"--help"} << 0 << QStringLiteral("Usage: tallybid...")
                          << QString();
    QTest::newRow("unknown option")
        << QStringList{"--frobnicate"} << 2 << QString()
        << QStringLiteral("tallybid: unknown option --frobnicate\n\nUsage: tallybid...");
    QTest::newRow("stray argument")
        << QStringList{"items.mdb"} << 2 << QString()
        << QStringLiteral("tallybid: unexpected argument items.mdb\n\nUsage: tallybid...");
}

void TestInstalled::commandLine()
{
    QFETCH(QStringList, arguments);
    const auto p = program(arguments);
    // None of these opens a window, so each ends at once on its own.
    QVERIFY(p->waitForFinished(15000));
    QTEST(p->exitCode(), "exitCode");
    const auto matches = [](const QString& actual, const QString& expected) {
        return expected.endsWith(QLatin1String("...")) ? actual.startsWith(expected.chopped(3))
                                                       : actual == expected;
    };
    const QString printed = QString::fromUtf8(p->readAllStandardOutput());
    const QString complained = QString::fromUtf8(p->readAllStandardError());
    QFETCH(QString, out);
    QFETCH(QString, err);
    QVERIFY2(matches(printed, out), qPrintable(printed));
    QVERIFY2(matches(complained, err), qPrintable(complained));
    QVERIFY(!QFileInfo::exists(home(QStringLiteral(".local/share/tallybid"))));
}

void TestInstalled::manPageCoversHelp()
{
    const auto p = program({QStringLiteral("--help")});
    QVERIFY(p->waitForFinished(15000));
    const QString help = QString::fromUtf8(p->readAllStandardOutput());
    const QString man =
        QString::fromUtf8(readFile(installed(QStringLiteral("share/man/man1/tallybid.1"))));
    QSet<QString> options;
    for (const auto& m : QRegularExpression(QStringLiteral("--[a-z]+")).globalMatch(help))
        options << m.captured();
    QVERIFY(options.size() >= 10);
    for (const QString& option : options)
        QVERIFY2(man.contains(QString(option).replace(u'-', QLatin1String("\\-"))),
                 qPrintable(option + QStringLiteral(" is missing from the man page")));
}

void TestInstalled::firstStartSecondCopyAndRestart()
{
    const QString folder = home(QStringLiteral(".local/share/tallybid"));
    const QString database = folder + QStringLiteral("/tb2.mdb");

    // First start: the data folder is made and filled, the item window adds one new item.
    m_running.push_back(program({}));
    QProcess& first = *m_running.back();
    QVERIFY(first.waitForStarted());
    QTRY_COMPARE_WITH_TIMEOUT(lockHolder(), QString::number(first.processId()), 20000);
    QTRY_COMPARE_WITH_TIMEOUT(itemCount(database), 1, 20000);
    QCOMPARE(QFileInfo(folder).permissions() & kModeBits,
             QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    for (const char* shipped : {"standard.tbt", "tb2ug.htm", "URLSetup.htm", "logovksm.gif",
                                "Backgr/linen.jpg", "Sounds/chime.wav"})
        QCOMPARE(readFile(folder + u'/' + QLatin1String(shipped)),
                 readFile(installed(QStringLiteral("share/tallybid/")) + QLatin1String(shipped)));

    // A second copy on another folder is refused; it never reaches its item window, so its
    // empty database stays empty.
    const QString other = m_root.filePath(QStringLiteral("other"));
    QVERIFY(QDir().mkpath(other));
    QCOMPARE(
        createDatabaseIfMissing(other + QStringLiteral("/tb2.mdb"), AppFolder::builtInSchema()),
        QString());
    m_running.push_back(program({QStringLiteral("--appdir"), other}));
    QProcess& second = *m_running.back();
    QByteArray said;
    QTRY_VERIFY_WITH_TIMEOUT(
        (said += second.readAllStandardError()).contains("A copy of Tallybid is already running"),
        20000);
    QCOMPARE(itemCount(other + QStringLiteral("/tb2.mdb")), 0);
    QCOMPARE(lockHolder(), QString::number(first.processId()));
    // Refused before it saved anything: the settings still name the running copy's folder.
    QVERIFY(readFile(home(QStringLiteral(".config/tallybid/Tallybid.ini")))
                .contains(QByteArray("AppPath=" + folder.toUtf8() + '\n')));
    second.kill();
    first.kill();
    QVERIFY(first.waitForFinished(5000));

    // A restart uses the folder as it is: the user's changes stay, nothing is seeded again.
    QFile themes(folder + QStringLiteral("/standard.tbt"));
    QVERIFY(themes.open(QIODevice::WriteOnly));
    themes.write("changed by the user");
    themes.close();
    m_running.push_back(program({}));
    QProcess& restart = *m_running.back();
    QVERIFY(restart.waitForStarted());
    QTRY_COMPARE_WITH_TIMEOUT(lockHolder(), QString::number(restart.processId()), 20000);
    QCOMPARE(itemCount(database), 1);
    QCOMPARE(readFile(folder + QStringLiteral("/standard.tbt")), QByteArray("changed by the user"));
    QCOMPARE(restart.state(), QProcess::Running);
}

// The settings file holds the FTP, auction-site and mail passwords: it and its folder must be
// the user's alone.
// NOTE: this passes once the settings store creates its file 0600 and its folder 0700 (the
// settings-store branch); until that is merged it fails on its own, hiding no other check.
void TestInstalled::settingsFileIsPrivate()
{
    const QString settings = home(QStringLiteral(".config/tallybid/Tallybid.ini"));
    QVERIFY2(QFileInfo::exists(settings), "the first start writes the settings file");
    QCOMPARE(QFileInfo(settings).permissions() & kModeBits, QFile::ReadOwner | QFile::WriteOwner);
    QCOMPARE(QFileInfo(QFileInfo(settings).absolutePath()).permissions() & kModeBits,
             QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
}

QTEST_GUILESS_MAIN(TestInstalled)
#include "tst_installed.moc"
