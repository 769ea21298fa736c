// The program as a user gets it: installed with `cmake --install` into a temporary DESTDIR
// and started offscreen with an empty home, as a separate process.
#include "app/AppFolder.h"
#include "platform/Database.h"
#include "platform/PrintedWindows.h"

#include <QLibrary>
#include <QProcess>
#include <QRegularExpression>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QtTest>

using namespace Qt::StringLiterals;

namespace {

// Owner, group and others; Qt's "user" bits only repeat whichever applies to us.
constexpr QFile::Permissions kModeBits = QFile::Permissions::fromInt(0x7077);
constexpr QFile::Permissions kOwnerAll = QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner;
// Installed, and copied into a new data folder.
const char* const kShipped[] = {"standard.tbt", "tb2ug.htm",        "URLSetup.htm",
                                "logovksm.gif", "Backgr/linen.jpg", "Sounds/chime.wav"};

int itemCount(const QString& database)
{
    int count = -1;
    {
        QSqlDatabase db = QSqlDatabase::addDatabase(u"QSQLITE"_s, u"count"_s);
        db.setDatabaseName(database);
        db.setConnectOptions(u"QSQLITE_OPEN_READONLY"_s);
        if (QFileInfo::exists(database) && db.open()) {
            QSqlQuery q(db);
            if (q.exec(u"SELECT count(*) FROM Items"_s) && q.next())
                count = q.value(0).toInt();
        }
    }
    QSqlDatabase::removeDatabase(u"count"_s);
    return count;
}

QByteArray readFile(const QString& path)
{
    QFile f(path);
    return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
}

// The libraries a running process has mapped whose names hold any of the parts.
QStringList mappedLibraries(qint64 pid, const QList<QByteArray>& parts)
{
    QStringList found;
    for (const QByteArray& line : readFile(u"/proc/%1/maps"_s.arg(pid)).split('\n'))
        for (const QByteArray& part : parts)
            if (line.contains(part) && !found.contains(QString::fromUtf8(part)))
                found << QString::fromUtf8(part);
    return found;
}

} // namespace

class TestInstalled : public QObject
{
    Q_OBJECT

    QTemporaryDir m_root;
    std::vector<std::unique_ptr<QProcess>> m_running;

    QString home(const QString& relative = {}) const
    {
        return m_root.filePath("home/"_L1 + relative);
    }
    QString installed(const QString& relative) const
    {
        return m_root.filePath("stage/usr/"_L1 + relative);
    }
    QString lockHolder() const // the pid in the lock file, "" when none
    {
        return QString::fromUtf8(readFile(m_root.filePath(u"runtime/tallybid.lock"_s)))
            .section(u'\n', 0, 0)
            .trimmed();
    }
    // A process of the installed program with an empty home of its own, kept until cleanup.
    QProcess& program(const QStringList& arguments)
    {
        auto& p = m_running.emplace_back(std::make_unique<QProcess>());
        QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
        env.remove(u"TALLYBID_CONFIG_DIR"_s);
        env.insert(u"HOME"_s, home());
        env.insert(u"XDG_CONFIG_HOME"_s, home(u".config"_s));
        env.insert(u"XDG_DATA_HOME"_s, home(u".local/share"_s));
        env.insert(u"XDG_RUNTIME_DIR"_s, m_root.filePath(u"runtime"_s));
        env.insert(u"QT_QPA_PLATFORM"_s, u"offscreen"_s);
        p->setProcessEnvironment(env);
        p->start(installed(u"bin/tallybid"_s), arguments);
        return *p;
    }

private slots:
    void initTestCase()
    {
        QVERIFY(m_root.isValid());
        QProcess install;
        QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
        env.insert(u"DESTDIR"_s, m_root.filePath(u"stage"_s));
        install.setProcessEnvironment(env);
        install.start(QStringLiteral(TB_CMAKE_COMMAND),
                      {u"--install"_s, QStringLiteral(TB_BINARY_DIR), u"--prefix"_s, u"/usr"_s});
        QVERIFY(install.waitForFinished(60000));
        QVERIFY2(install.exitCode() == 0, install.readAllStandardError().constData());
        QVERIFY(QDir().mkpath(home()));
        QVERIFY(QDir().mkdir(m_root.filePath(u"runtime"_s), kOwnerAll));
    }
    void cleanup()
    {
        for (const auto& p : m_running) {
            p->kill();
            p->waitForFinished(5000);
        }
        m_running.clear();
    }

    void installedFiles()
    {
        // The id the program announces names the desktop entry the window system finds.
        QStringList expected{"bin/tallybid",
                             "share/applications/"_L1 + AppFolder::kDesktopId + ".desktop"_L1,
                             "share/applications/org.tallybid.Tallybid.desktop",
                             "share/metainfo/org.tallybid.Tallybid.metainfo.xml",
                             "share/icons/hicolor/scalable/apps/org.tallybid.Tallybid.svg",
                             "share/man/man1/tallybid.1"};
        for (const char* file : {"schema.sql", "Images/flower.gif"})
            expected << "share/tallybid/"_L1 + file;
        for (const char* file : kShipped)
            expected << "share/tallybid/"_L1 + file;
        for (const char* size : {"16x16", "24x24", "32x32", "48x48", "64x64", "128x128", "256x256"})
            expected << u"share/icons/hicolor/%1/apps/org.tallybid.Tallybid.png"_s.arg(size);
        for (const QString& file : expected)
            QVERIFY2(QFileInfo(installed(file)).isFile(), qPrintable(file));
        QVERIFY(QFileInfo(installed(u"bin/tallybid"_s)).isExecutable());
        // The printing module, where the installed program looks for it, gives its windows.
        const QString module = PrintedWindows::moduleCandidates(installed(u"bin"_s)).constLast();
        QLibrary printing(module);
        const auto makers = reinterpret_cast<const TbPrintedWindowMakers* (*)()>(
            printing.resolve("tb_printed_window_makers"));
        QVERIFY2(makers, qPrintable(printing.errorString()));
        QVERIFY(makers()->reports && makers()->paperwork);
        // The program alone: no test, tool or benchmark slips into bin/.
        QCOMPARE(QDir(installed(u"bin"_s)).entryList(QDir::Files), QStringList{u"tallybid"_s});
    }

    void validators_data()
    {
        QTest::addColumn<QStringList>("command"); // the tool, its arguments, the file
        QTest::newRow("desktop entry") << QStringList{
            "desktop-file-validate", "share/applications/org.tallybid.Tallybid.desktop"};
        QTest::newRow("metainfo") << QStringList{
            "appstreamcli", "validate", "--no-net",
            "share/metainfo/org.tallybid.Tallybid.metainfo.xml"};
    }
    void validators()
    {
        QFETCH(QStringList, command);
        const QString tool = command.takeFirst(), path = QStandardPaths::findExecutable(tool);
        if (path.isEmpty())
            QSKIP(qPrintable(tool + " is not installed (scripts/setup installs it)"_L1));
        command.last() = installed(command.last());
        QProcess p;
        p.start(path, command);
        QVERIFY(p.waitForFinished(30000));
        const QByteArray said = p.readAllStandardOutput() + p.readAllStandardError();
        QVERIFY2(p.exitCode() == 0, said.constData());
    }

    void commandLine_data()
    {
        QTest::addColumn<QString>("argument");
        QTest::addColumn<int>("exitCode");
        QTest::addColumn<QString>("out"); // expected standard output, or its start + "..."
        QTest::addColumn<QString>("err");
        const QString usage = u"\n\nUsage: tallybid..."_s;
        // clang-format off
        QTest::newRow("version")        << "--version"    << 0 << u"Tallybid " TALLYBID_VERSION "\n"_s << QString();
        QTest::newRow("help")           << "--help"       << 0 << u"Usage: tallybid..."_s << QString();
        QTest::newRow("unknown option") << "--frobnicate" << 2 << QString() << "tallybid: unknown option --frobnicate" + usage;
        QTest::newRow("stray argument") << "items.mdb"    << 2 << QString() << "tallybid: unexpected argument items.mdb" + usage;
        // clang-format on
    }
    void commandLine()
    {
        QFETCH(QString, argument);
        QProcess& p = program({argument});
        QVERIFY(p.waitForFinished(15000)); // none of these opens a window
        QTEST(p.exitCode(), "exitCode");
        const auto matches = [](const QString& actual, const QString& expected) {
            return expected.endsWith("..."_L1) ? actual.startsWith(expected.chopped(3))
                                               : actual == expected;
        };
        const QString printed = QString::fromUtf8(p.readAllStandardOutput());
        const QString complained = QString::fromUtf8(p.readAllStandardError());
        QFETCH(QString, out);
        QFETCH(QString, err);
        QVERIFY2(matches(printed, out), qPrintable(printed));
        QVERIFY2(matches(complained, err), qPrintable(complained));
        QVERIFY(!QFileInfo::exists(home(u".local/share/tallybid"_s)));
    }

    void manPageCoversHelp()
    {
        QProcess& p = program({u"--help"_s});
        QVERIFY(p.waitForFinished(15000));
        const QString help = QString::fromUtf8(p.readAllStandardOutput());
        const QString man = QString::fromUtf8(readFile(installed(u"share/man/man1/tallybid.1"_s)));
        QSet<QString> options;
        for (const auto& m : QRegularExpression(u"--[a-z]+"_s).globalMatch(help))
            options << m.captured();
        QVERIFY(options.size() >= 10);
        for (const QString& option : options)
            QVERIFY2(man.contains(QString(option).replace(u'-', "\\-"_L1)),
                     qPrintable(option + " is missing from the man page"_L1));
    }

    void firstStartSecondCopyAndRestart()
    {
        const QString folder = home(u".local/share/tallybid"_s);
        const QString database = folder + "/tb2.mdb"_L1;

        // First start: the data folder is made and filled, the item window adds one new item.
        QProcess& first = program({});
        QVERIFY(first.waitForStarted());
        QTRY_COMPARE_WITH_TIMEOUT(lockHolder(), QString::number(first.processId()), 20000);
        QTRY_COMPARE_WITH_TIMEOUT(itemCount(database), 1, 20000);
        QCOMPARE(QFileInfo(folder).permissions() & kModeBits, kOwnerAll);
        for (const char* shipped : kShipped)
            QCOMPARE(readFile(folder + u'/' + shipped),
                     readFile(installed("share/tallybid/"_L1 + shipped)));

        // A second copy on another folder is refused; it never reaches its item window, so its
        // empty database stays empty.
        const QString other = m_root.filePath(u"other"_s);
        QVERIFY(QDir().mkpath(other));
        QCOMPARE(createDatabaseIfMissing(other + "/tb2.mdb"_L1, AppFolder::builtInSchema()),
                 QString());
        QProcess& second = program({u"--appdir"_s, other});
        QByteArray said;
        QTRY_VERIFY_WITH_TIMEOUT((said += second.readAllStandardError())
                                     .contains("A copy of Tallybid is already running"),
                                 20000);
        QCOMPARE(itemCount(other + "/tb2.mdb"_L1), 0);
        QCOMPARE(lockHolder(), QString::number(first.processId()));
        // Refused before it saved anything: the settings still name the running copy's folder.
        QVERIFY(readFile(home(u".config/tallybid/Tallybid.ini"_s))
                    .contains(QByteArray("AppPath=" + folder.toUtf8() + '\n')));
        second.kill();
        first.kill();
        QVERIFY(first.waitForFinished(5000));

        // A restart uses the folder as it is: the user's changes stay, nothing is seeded again.
        QFile themes(folder + "/standard.tbt"_L1);
        QVERIFY(themes.open(QIODevice::WriteOnly) && themes.write("changed by the user") > 0);
        themes.close();
        QProcess& restart = program({});
        QVERIFY(restart.waitForStarted());
        QTRY_COMPARE_WITH_TIMEOUT(lockHolder(), QString::number(restart.processId()), 20000);
        QCOMPARE(itemCount(database), 1);
        QCOMPARE(readFile(themes.fileName()), QByteArray("changed by the user"));
        QCOMPARE(restart.state(), QProcess::Running);
        // The print and chart libraries wait until a window that prints opens.
        QCOMPARE(mappedLibraries(restart.processId(),
                                 {"libQt6Charts", "libQt6PrintSupport", "tallybid-printing"}),
                 QStringList());
    }

    // The settings file holds the FTP, auction-site and mail passwords: it and its folder must be
    // the user's alone. Runs after a start has written the file.
    // NOTE: this passes once the settings store creates its file 0600 and its folder 0700 (the
    // settings-store branch); until that is merged it fails on its own, hiding no other check.
    void settingsFileIsPrivate()
    {
        const QString settings = home(u".config/tallybid/Tallybid.ini"_s);
        QVERIFY2(QFileInfo::exists(settings), "the first start writes the settings file");
        QCOMPARE(QFileInfo(settings).permissions() & kModeBits,
                 QFile::ReadOwner | QFile::WriteOwner);
        QCOMPARE(QFileInfo(QFileInfo(settings).absolutePath()).permissions() & kModeBits,
                 kOwnerAll);
    }
};

QTEST_GUILESS_MAIN(TestInstalled)
#include "tst_installed.moc"
