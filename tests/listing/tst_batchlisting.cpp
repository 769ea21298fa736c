#include "listing/BatchListing.h"
#include "listing/ListingGenerator.h"

#include "../support/TestEnvironment.h"
#include "platform/Database.h"
#include "settings/SettingsCatalogue.h"

#include <QDir>
#include <QDirIterator>
#include <QImage>
#include <QPainter>
#include <QSqlQuery>
#include <QtTest>

// The command-line listing against a real application folder: the shipped themeset and media,
// a tb2.mdb with items, a settings folder. Set TB_RENDER_DIR to keep one listing per shipped
// theme (with the folder it refers to) for looking at in a browser.

namespace {

struct Run
{
    int code = -1;
    QString out;
    QString err;
};

Run runBatch(const QStringList& arguments)
{
    Run run;
    QTextStream out(&run.out);
    QTextStream err(&run.err);
    run.code = runBatchListing(QStringList{QStringLiteral("tallybid")} + arguments, out, err);
    return run;
}

void copyTree(const QString& from, const QString& to)
{
    QDirIterator it(from, QDir::Files, QDirIterator::Subdirectories);
    while (it.hasNext()) {
        const QString source = it.next();
        const QString target = to + source.mid(from.size());
        QDir().mkpath(QFileInfo(target).absolutePath());
        QFile::remove(target);
        QFile::copy(source, target);
    }
}

QByteArray readAll(const QString& path)
{
    QFile f(path);
    return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
}

// An item photo, drawn so the rendered listings have something to show.
void drawPicture(const QString& path, QColor shade)
{
    QImage image(220, 180, QImage::Format_RGB32);
    image.fill(QColor(0xf2, 0xee, 0xe6));
    QPainter p(&image);
    p.setRenderHint(QPainter::Antialiasing);
    p.setBrush(shade);
    p.setPen(shade.darker(160));
    p.drawPolygon(QPolygon({{70, 30}, {150, 30}, {175, 95}, {45, 95}}));
    p.drawRect(102, 95, 16, 50);
    p.drawEllipse(QPoint(110, 155), 45, 12);
    p.end();
    image.save(path, "JPG", 85);
}

} // namespace

class TestBatchListing : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void sameAsTheGenerator_data();
    void sameAsTheGenerator();
    void refusals_data();
    void refusals();
    void settingsFolder();
    void shippedThemes();

private:
    void prepare(const QString& appDir, SettingsStore& store);
    QList<qint64> m_items;
    std::unique_ptr<TestEnvironment> m_env;
};

void TestBatchListing::prepare(const QString& appDir, SettingsStore& store)
{
    copyTree(qEnvironmentVariable("TB_SOURCE_DIR") + QStringLiteral("/resources"), appDir);
    QDir(appDir).mkpath(QStringLiteral("pics"));
    drawPicture(appDir + QStringLiteral("/pics/lamp 1.jpg"), QColor(0xc9, 0xa2, 0x27));
    drawPicture(appDir + QStringLiteral("/pics/lamp 2.jpg"), QColor(0x2e, 0x86, 0xab));
    const QString& o = Settings::kOptions;
    store.save(Settings::kApp, o, QStringLiteral("ImageLoc"),
               QStringLiteral("http://example.com/p"));
    store.save(Settings::kApp, o, QStringLiteral("UserEmail"),
               QStringLiteral("seller@example.com"));
    store.save(Settings::kApp, o, QStringLiteral("SubHeading"),
               QStringLiteral("Polished and ready to shine"));
    store.save(Settings::kApp, o, QStringLiteral("TaxMsg"),
               QStringLiteral("Buyers in our state add 7% sales tax."));
}

void TestBatchListing::initTestCase()
{
    m_env = std::make_unique<TestEnvironment>();
    prepare(m_env->appPath(), m_env->store());
    const QString pics = m_env->appPath() + QStringLiteral("/pics/");
    m_items = m_env->addItems(
        {{{"ShortDescription", "Solid brass desk lamp"},
          {"Description", "Heavy solid brass lamp from the 1930s.\r\nRewired, works perfectly."},
          {"Picture1Path", QString(pics + "lamp 1.jpg")},
          {"Picture2Path", QString(pics + "lamp 2.jpg")},
          {"Reserve", 0}},
         {{"ShortDescription", "Blue glass shade"},
          {"Description", "Hand blown shade, no chips."},
          {"Reserve", 125000}},
         {{"ShortDescription", "   "}, {"Description", "No heading"}}});
}

void TestBatchListing::sameAsTheGenerator_data()
{
    QTest::addColumn<int>("item");
    QTest::addColumn<QStringList>("options");
    QTest::addColumn<QString>("theme");
    QTest::addColumn<QString>("placement");
    QTest::addColumn<bool>("remote");
    QTest::addColumn<bool>("escape");

    QTest::newRow("defaults") << 0 << QStringList() << "Default"
                              << "Left" << false << false;
    QTest::newRow("theme with media, remote")
        << 0 << QStringList{"--theme", "Ocean Breeze", "--placement", "Right", "--remote"}
        << "Ocean Breeze"
        << "Right" << true << false;
    QTest::newRow("escaped, no pictures")
        << 1 << QStringList{"--theme=Midnight", "--placement=Top", "--escape", "--remote"}
        << "Midnight"
        << "Top" << true << true;
    QTest::newRow("other themeset file")
        << 1 << QStringList{"--themeset", "@APP@/copy.tbt", "--theme", "Parchment"} << "Parchment"
        << "Left" << false << false;
}

void TestBatchListing::sameAsTheGenerator()
{
    QFETCH(int, item);
    QFETCH(QStringList, options);
    QFETCH(QString, theme);
    QFETCH(QString, placement);
    QFETCH(bool, remote);
    QFETCH(bool, escape);
    const QString app = m_env->appPath();
    QFile::copy(app + QStringLiteral("/standard.tbt"), app + QStringLiteral("/copy.tbt"));
    options.replaceInStrings(QStringLiteral("@APP@"), app);

    const Run run =
        runBatch(QStringList{"--appdir", app, "--listing", QString::number(m_items.at(item)),
                             "--configdir", m_env->store().folder()} +
                 options);
    QCOMPARE(run.err, QString());
    QCOMPARE(run.code, 0);
    QCOMPARE(run.out.toUtf8(), readAll(listingFilePath(app)));

    // What the item window would ask for with the Ad Studio showing the same theme.
    ListingRequest r;
    r.themeSetPath =
        app + (options.contains(QStringLiteral("--themeset")) ? QStringLiteral("/copy.tbt")
                                                              : QStringLiteral("/standard.tbt"));
    r.themeName = theme;
    r.media = ListingMedia::fromTheme(*loadTheme(r.themeSetPath, theme, app).theme);
    r.roleTexts = loadRoleTexts(m_env->store());
    r.shortDescription = m_env->storedValue(m_items.at(item), "ShortDescription").toString();
    r.description = m_env->storedValue(m_items.at(item), "Description").toString();
    r.picture1Path = m_env->storedValue(m_items.at(item), "Picture1Path").toString();
    r.picture2Path = m_env->storedValue(m_items.at(item), "Picture2Path").toString();
    r.reserve = item == 0 ? QStringLiteral("0") : QStringLiteral("12.5");
    r.placement = placement;
    r.imageLoc = QStringLiteral("http://example.com/p");
    r.ebaySellerReport = settingDefault(Settings::kOptions, QStringLiteral("EbaySellerReport"));
    r.userEmail = QStringLiteral("seller@example.com");
    r.remote = remote;
    r.escape = escape;
    r.appPath = app;
    const ListingResult direct = generateListing(r);
    QVERIFY(direct.ok());
    QCOMPARE(run.out, direct.html + QStringLiteral("\r\n"));
    QCOMPARE(direct.html.contains(QStringLiteral("NO RESERVE!")), item == 0);
}

void TestBatchListing::refusals_data()
{
    QTest::addColumn<QStringList>("arguments"); // after --appdir and --configdir
    QTest::addColumn<int>("code");
    QTest::addColumn<QString>("err"); // start of what is printed; "@APP@" for the folder

    QTest::newRow("no such item") << QStringList{"--listing", "999"} << 1
                                  << "Missing Item: There is no item with ID 999 in @APP@/tb2.mdb.";

    QTest::newRow("item without heading")
        << QStringList{"--listing", "@3@"} << 1
        << "Missing Information: A short description is required. Please supply.\n";
    QTest::newRow("no such theme")
        << QStringList{"--listing", "@1@", "--theme", "default"} << 1
        << "Missing Theme: Theme: default does not exist in Themeset: @APP@/standard.tbt.  "
           "Request aborted.\n";
    QTest::newRow("no such themeset")
        << QStringList{"--listing", "@1@", "--themeset", "@APP@/none.tbt"} << 1
        << "Missing Themeset: The requested Themeset file does not exist.  Request aborted.\n";
    QTest::newRow("wrong placement")
        << QStringList{"--listing", "@1@", "--placement", "left"} << 2
        << "tallybid: --placement must be Left, Right, Top or Bottom\nUsage:";

    QTest::newRow("unknown option") << QStringList{"--listing", "@1@", "--colour", "red"} << 2
                                    << "tallybid: unknown argument --colour\n";
}

void TestBatchListing::refusals()
{
    QFETCH(QStringList, arguments);
    QFETCH(int, code);
    QFETCH(QString, err);
    const QString app = m_env->appPath();
    arguments.replaceInStrings(QStringLiteral("@APP@"), app);
    arguments.replaceInStrings(QStringLiteral("@1@"), QString::number(m_items.at(0)));
    arguments.replaceInStrings(QStringLiteral("@3@"), QString::number(m_items.at(2)));
    QFile::remove(listingFilePath(app));

    const Run run =
        runBatch(QStringList{"--appdir", app, "--configdir", m_env->store().folder()} + arguments);
    QCOMPARE(run.code, code);
    QVERIFY2(run.err.startsWith(err.replace(QStringLiteral("@APP@"), app)), qPrintable(run.err));
    QCOMPARE(run.out, QString());
    QVERIFY(!QFile::exists(listingFilePath(app)));
}

void TestBatchListing::settingsFolder()
{
    const QString app = m_env->appPath();
    const QTemporaryDir other;
    SettingsStore(other.path())
        .save(Settings::kApp, Settings::kOptions, QStringLiteral("SubHeading"),
              QStringLiteral("From the environment"));
    const QStringList base{"--appdir", app, "--listing", QString::number(m_items.at(0))};

    qputenv("TALLYBID_CONFIG_DIR", other.path().toLocal8Bit());
    const Run fromEnvironment = runBatch(base);
    const Run fromOption = runBatch(base + QStringList{"--configdir", m_env->store().folder()});
    qunsetenv("TALLYBID_CONFIG_DIR");

    QCOMPARE(fromEnvironment.code, 0);
    QVERIFY(fromEnvironment.out.contains(QStringLiteral(">From the environment<")));
    QVERIFY(fromOption.out.contains(QStringLiteral(">Polished and ready to shine<")));
}

void TestBatchListing::shippedThemes()
{
    // Every shipped theme makes a listing, locally and for the web, without a message.
    const QString renderDir = qEnvironmentVariable("TB_RENDER_DIR");
    QTemporaryDir temp;
    const QString app = renderDir.isEmpty() ? temp.path() : renderDir + QStringLiteral("/app");
    QDir().mkpath(app);
    SettingsStore store(app + QStringLiteral("/config"));
    prepare(app, store);

    const QString db = app + QStringLiteral("/tb2.mdb");
    QFile::remove(db);
    QFile schema(QStringLiteral(TB_SCHEMA_FILE));
    QVERIFY(schema.open(QIODevice::ReadOnly));
    QCOMPARE(createDatabaseIfMissing(db, QString::fromUtf8(schema.readAll())), QString());
    {
        DatabaseOpenResult opened = openDatabase(db, QStringLiteral("shipped"));
        QSqlQuery insert(opened.database);
        insert.prepare(QStringLiteral("INSERT INTO Items (ShortDescription, Description, "
                                      "Picture1Path, Picture2Path, Reserve) VALUES (?,?,?,?,0)"));
        insert.addBindValue(QStringLiteral("Solid brass desk lamp"));
        insert.addBindValue(QStringLiteral("Heavy solid brass lamp from the 1930s, rewired and "
                                           "working. A fine piece for a study or a reading "
                                           "corner."));
        insert.addBindValue(QString(app + QStringLiteral("/pics/lamp 1.jpg")));
        insert.addBindValue(QString(app + QStringLiteral("/pics/lamp 2.jpg")));
        QVERIFY(insert.exec());
        opened.database.close();
    }
    QSqlDatabase::removeDatabase(QStringLiteral("shipped"));

    const QStringList themes = listThemeNames(app + QStringLiteral("/standard.tbt")).names;
    QVERIFY(themes.size() >= 4);
    for (const QString& theme : themes) {
        const Run run = runBatch(
            {"--appdir", app, "--listing", "1", "--configdir", store.folder(), "--theme", theme});
        QVERIFY2(run.code == 0 && run.err.isEmpty(), qPrintable(theme + u' ' + run.err));
        QVERIFY(run.out.contains(QStringLiteral("Solid brass desk lamp")));
        if (!renderDir.isEmpty()) {
            const QString kept =
                renderDir + u'/' + QString(theme).replace(u' ', u'_').remove(u'\'') + ".htm";
            QFile::remove(kept);
            QFile::copy(listingFilePath(app), kept);
        }
    }
}

QTEST_GUILESS_MAIN(TestBatchListing)
#include "tst_batchlisting.moc"
