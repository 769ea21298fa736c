#include "platform/Prompts.h"
#include "platform/TextRoutines.h"

#include <QTemporaryDir>
#include <QtTest>
#include <functional>

using Call = std::function<QString()>;

// Writes the bytes to a fresh file (unless null) and reads it back.
static QString readBack(const QByteArray& content)
{
    QTemporaryDir dir;
    if (QFile file(dir.filePath(QStringLiteral("t.txt")));
        !content.isNull() && file.open(QIODevice::WriteOnly))
        file.write(content);
    return ReadTextFile(dir.filePath(QStringLiteral("t.txt")));
}

class TestTextRoutines : public QObject
{
    Q_OBJECT
private slots:
    void routines_data()
    {
        QTest::addColumn<Call>("call");
        QTest::addColumn<QString>("expected");
        const auto row = [](const char* name, const QString& expected, const Call& call) {
            QTest::newRow(name) << call << expected;
        };
        // Each occurrence overwrites what was gathered before it: the seller report relies on it.
        row("all: two quotes", "s Tom''s", [] { return ReplaceAll("it's Tom's", "'", "''"); });
        row("all: one quote", "Tom''s", [] { return ReplaceAll("Tom's", "'", "''"); });
        row("all: three", "c;d", [] { return ReplaceAll("a,b,c,d", ",", ";"); });
        row("all: empty find", "abc", [] { return ReplaceAll("abc", "", "x"); });
        row("first: of two", "[x<b>", [] { return ReplaceFirst("<b>x<b>", "<b>", "["); });
        row("char", "a::b::c", [] { return ReplaceChar("a.b.c", u'.', "::"); });
        row("name: mixed", "d.png", [] { return FileNameOfPath("C:\\a/b\\d.png"); });
        row("name: trailing", "", [] { return FileNameOfPath("C:\\dir\\"); });
        row("html", "Tom & Jerry&#39;s &lt;b&gt;&quot;x&quot;",
            [] { return HtmlEscape("Tom & Jerry's <b>\"x\""); });
        // clang-format off
        const std::pair<qint64, const char*> colors[] = {
            {255, "FF0000"}, {5, "000000"}, {26, "1A0000"}, {2748, "BC0A00"}, {4660, "341200"},
            {74565, "452301"}, {-1, "FFFFFF"}, {-2147483643, "000080"}};
        // clang-format on
        for (const auto& [color, html] : colors)
            row(qPrintable(QString::number(color)), html, [c = color] { return ColorToHtml(c); });
        row("filter", "Images (*.gif; *.jpg) (*.gif *.jpg);;All Files (*.*) (*)",
            [] { return qtFileFilter("Images (*.gif; *.jpg)|*.gif; *.jpg;|All Files (*.*)|*.*"); });
        row("read: line ends", "a\r\nb\r\nc\r\nd\r\n", [] { return readBack("a\r\nb\nc\rd"); });
        row("read: blank lines", "a\r\n\r\n\r\nb\r\n", [] { return readBack("a\r\n\r\n\nb"); });
        row("read: empty file", "", [] { return readBack(""); });
        row("read: utf-8", "café\r\n", [] { return readBack("caf\xc3\xa9\n"); });
        row("read: 8-bit", "café £\r\n", [] { return readBack("caf\xe9 \xa3\n"); });
        row("read: 8-bit quotes and euro", "“5 €”\r\n", [] {
            return readBack("\x93"
                            "5 \x80\x94\n");
        });
        row("read: missing file", "", [] { return readBack({}); });
    }
    void routines()
    {
        QFETCH(Call, call);
        QTEST(call(), "expected");
    }
};

QTEST_GUILESS_MAIN(TestTextRoutines)
#include "tst_textroutines.moc"
