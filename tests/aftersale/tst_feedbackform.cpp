// The leave-feedback form filled in: each plain tag replaced once by its tag with a value, the
// values escaped except the item number.
#include "aftersale/FeedbackForm.h"

#include <QtTest>

namespace {

const QString kForm =
    QStringLiteral("<form>\n"
                   "<input type=\"text\" name=\"userid\" size=\"40\">\n"
                   "<input type=\"password\" name=\"pass\" size=\"40\">\n"
                   "<input type=\"text\" name=\"otheruserid\" size=\"40\">\n"
                   "<input type=\"text\" name=\"itemno\" size=\"40\">\n"
                   "<input type=\"radio\" name=\"which\" value=\"positive\">\n"
                   "<input type=\"radio\" name=\"which\" value=\"negative\">\n"
                   "<input type=\"text\" name=\"comment\" size=\"80\" maxlength=\"80\">\n"
                   "</form>\n");

} // namespace

class TestFeedbackForm : public QObject
{
    Q_OBJECT
private slots:
    void fill_data();
    void fill();
};

void TestFeedbackForm::fill_data()
{
    QTest::addColumn<QString>("page");
    QTest::addColumn<QStringList>("values"); // user, password, buyer, item, comment
    QTest::addColumn<QString>("filled");
    QTest::newRow("the site's form")
        << kForm
        << QStringList{"sam@example.com", "secret", "pat@example.com", "123456789",
                       "Prompt payment, thanks!"}
        << QStringLiteral(
               "<form>\n"
               "<input type=\"text\" name=\"userid\" size=\"40\" value=sam@example.com>\n"
               "<input type=\"password\" name=\"pass\" size=\"40\" value=secret>\n"
               "<input type=\"text\" name=\"otheruserid\" size=\"40\"  value='pat@example.com'>\n"
               "<input type=\"text\" name=\"itemno\" size=\"40\"  value='123456789'>\n"
               "<input type=\"radio\" name=\"which\" value=\"positive\" checked>\n"
               "<input type=\"radio\" name=\"which\" value=\"negative\">\n"
               "<input type=\"text\" name=\"comment\" size=\"80\" maxlength=\"80\" "
               "value='Prompt payment, thanks!'>\n"
               "</form>\n");
    QTest::newRow("escaped values, the item number as it is")
        << QStringLiteral("<input type=\"password\" name=\"pass\" size=\"40\">"
                          "<input type=\"text\" name=\"itemno\" size=\"40\">"
                          "<input type=\"text\" name=\"comment\" size=\"80\" maxlength=\"80\">")
        << QStringList{"", "a\"b<c>", "", "1'2", "It's A&B"}
        << QStringLiteral("<input type=\"password\" name=\"pass\" size=\"40\" "
                          "value=a&quot;b&lt;c&gt;>"
                          "<input type=\"text\" name=\"itemno\" size=\"40\"  value='1'2'>"
                          "<input type=\"text\" name=\"comment\" size=\"80\" maxlength=\"80\" "
                          "value='It&#39;s A&B'>");
    QTest::newRow("only the first of two tags")
        << QStringLiteral("<input type=\"text\" name=\"userid\" size=\"40\">"
                          "<input type=\"text\" name=\"userid\" size=\"40\">")
        << QStringList{"sam", "", "", "", ""}
        << QStringLiteral("<input type=\"text\" name=\"userid\" size=\"40\" value=sam>"
                          "<input type=\"text\" name=\"userid\" size=\"40\">");
    QTest::newRow("tags written otherwise are not touched")
        << QStringLiteral("<INPUT type=\"text\" name=\"userid\" size=\"40\">"
                          "<input type='text' name='itemno' size='40'>")
        << QStringList{"sam", "", "", "1", ""}
        << QStringLiteral("<INPUT type=\"text\" name=\"userid\" size=\"40\">"
                          "<input type='text' name='itemno' size='40'>");
    QTest::newRow("empty page") << QString() << QStringList{"sam", "", "", "1", ""} << QString();
}

void TestFeedbackForm::fill()
{
    QFETCH(QString, page);
    QFETCH(QStringList, values);
    const FeedbackValues v{values.at(0), values.at(1), values.at(2), values.at(3), values.at(4)};
    QTEST(fillFeedbackForm(page, v), "filled");
}

QTEST_MAIN(TestFeedbackForm)
#include "tst_feedbackform.moc"
