#include "platform/Prompts.h"
#include "platform/TextRoutines.h"

#include <QElapsedTimer>
#include <QTemporaryDir>
#include <QTimer>
#include <QtTest>

class TestTextRoutines : public QObject
{
    Q_OBJECT
private slots:
    void routines_data();
    void routines();
    void readTextFile_data();
    void readTextFile();
    void pauseKeepsEventsFlowing();
};

void TestTextRoutines::routines_data()
{
    QTest::addColumn<QString>("routine");
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("find");
    QTest::addColumn<QString>("replacement");
    QTest::addColumn<QString>("expected");
    const auto row = [](const char* name, const char* routine, const QString& text,
                        const QString& find, const QString& replacement, const QString& expected) {
        QTest::newRow(name) << QString::fromLatin1(routine) << text << find << replacement
                            << expected;
    };
    // Each occurrence overwrites what was gathered before it: the seller report relies on it.
    row("all: two quotes", "all", "it's Tom's", "'", "''", "s Tom''s");
    row("all: one quote", "all", "Tom's", "'", "''", "Tom''s");
    row("all: three", "all", "a,b,c,d", ",", ";", "c;d");
    row("all: at end", "all", "abc,", ",", "", "abc");
    row("all: none", "all", "ABC", "b", "x", "ABC");
    row("all: empty find", "all", "abc", "", "x", "abc");
    row("first: of two", "first", "<b>x<b>", "<b>", "[", "[x<b>");
    row("first: at end", "first", "value=@@", "@@", "42", "value=42");
    row("first: case counts", "first", "Name", "name", "x", "Name");
    row("first: whole", "first", "abc", "abc", "", "");
    row("char", "char", "a.b.c", ".", "::", "a::b::c");
    row("name: backslashes", "name", "C:\\Pics\\cat.jpg", {}, {}, "cat.jpg");
    row("name: slashes", "name", "/home/me/dog.gif", {}, {}, "dog.gif");
    row("name: mixed", "name", "C:\\a/b\\d.png", {}, {}, "d.png");
    row("name: plain", "name", "plain.jpg", {}, {}, "plain.jpg");
    row("name: trailing", "name", "C:\\dir\\", {}, {}, "");
    row("html", "html", "Tom & Jerry's <b>\"x\"", {}, {},
        "Tom & Jerry&#39;s &lt;b&gt;&quot;x&quot;");
    row("html: entities stay", "html", "&amp; é", {}, {}, "&amp; é");
    row("color: red", "color", "255", {}, {}, "FF0000");
    row("color: blue", "color", "16711680", {}, {}, "0000FF");
    row("color: one digit", "color", "5", {}, {}, "000000");
    row("color: two digits", "color", "26", {}, {}, "1A0000");
    row("color: three digits", "color", "2748", {}, {}, "BC0A00");
    row("color: four digits", "color", "4660", {}, {}, "341200");
    row("color: five digits", "color", "74565", {}, {}, "452301");
    row("color: white", "color", "16777215", {}, {}, "FFFFFF");
    row("color: minus one", "color", "-1", {}, {}, "FFFFFF");
    row("color: system", "color", "-2147483643", {}, {}, "000080");
    row("filter: pictures", "filter", "Images (*.gif; *.jpg)|*.gif; *.jpg;|All Files (*.*)|*.*", {},
        {}, "Images (*.gif; *.jpg) (*.gif *.jpg);;All Files (*.*) (*)");
    row("filter: dangling", "filter", "Text|*.txt|Odd", {}, {}, "Text (*.txt)");
}

void TestTextRoutines::routines()
{
    QFETCH(QString, routine);
    QFETCH(QString, text);
    QFETCH(QString, find);
    QFETCH(QString, replacement);
    QString result;
    if (routine == QLatin1String("all"))
        result = ReplaceAll(text, find, replacement);
    else if (routine == QLatin1String("first"))
        result = ReplaceFirst(text, find, replacement);
    else if (routine == QLatin1String("char"))
        result = ReplaceChar(text, find.at(0), replacement);
    else if (routine == QLatin1String("name"))
        result = FileNameOfPath(text);
    else if (routine == QLatin1String("html"))
        result = HtmlEscape(text);
    else if (routine == QLatin1String("color"))
        result = ColorToHtml(text.toLongLong());
    else
        result = qtFileFilter(text);
    QTEST(result, "expected");
}

void TestTextRoutines::readTextFile_data()
{
    QTest::addColumn<QByteArray>("content"); // null: the path names no file
    QTest::addColumn<QString>("expected");
    QTest::newRow("LF only") << QByteArray("a\nb\n") << "a\r\nb\r\n";
    QTest::newRow("CR only") << QByteArray("a\rb\r") << "a\r\nb\r\n";
    QTest::newRow("CRLF") << QByteArray("a\r\nb\r\n") << "a\r\nb\r\n";
    QTest::newRow("mixed, last line open") << QByteArray("a\r\nb\nc\rd") << "a\r\nb\r\nc\r\nd\r\n";
    QTest::newRow("blank lines kept") << QByteArray("a\r\n\r\n\nb") << "a\r\n\r\n\r\nb\r\n";
    QTest::newRow("empty file") << QByteArray("") << "";
    QTest::newRow("utf-8") << QByteArray("caf\xc3\xa9\n") << QStringLiteral("café\r\n");
    QTest::newRow("8-bit") << QByteArray("caf\xe9 \xa3\n") << QStringLiteral("café £\r\n");
    QTest::newRow("missing file") << QByteArray() << "";
}

void TestTextRoutines::readTextFile()
{
    QFETCH(QByteArray, content);
    QTemporaryDir dir;
    QFile f(dir.filePath(QStringLiteral("t.txt")));
    if (!content.isNull()) {
        QVERIFY(f.open(QIODevice::WriteOnly));
        f.write(content);
        f.close();
    }
    QTEST(ReadTextFile(f.fileName()), "expected");
    QCOMPARE(ReadTextFile(QString()), QString());
    QCOMPARE(ReadTextFile(dir.path()), QString()); // a folder cannot be read
}

void TestTextRoutines::pauseKeepsEventsFlowing()
{
    bool fired = false;
    QTimer::singleShot(0, this, [&] { fired = true; });
    QElapsedTimer clock;
    clock.start();
    Pause(0.3);
    QVERIFY(fired);
    QVERIFY2(clock.elapsed() >= 295 && clock.elapsed() < 2000,
             qPrintable(QString::number(clock.elapsed())));
    clock.restart();
    Pause(0);
    Pause(-1);
    QVERIFY(clock.elapsed() < 100);
}

QTEST_GUILESS_MAIN(TestTextRoutines)
#include "tst_textroutines.moc"
