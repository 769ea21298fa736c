#include "aftersale/FeedbackForm.h"

#include "platform/TextRoutines.h"

QString fillFeedbackForm(const QString& page, const FeedbackValues& v)
{
    struct Replacement
    {
        QString tag;
        QString filled;
    };
    // The tags are searched for exactly as the site writes them; two blanks before "value"
    // where the site's own filled tags have them.
    const Replacement replacements[] = {
        {QStringLiteral("<input type=\"text\" name=\"userid\" size=\"40\">"),
         QLatin1String("<input type=\"text\" name=\"userid\" size=\"40\" value=") +
             HtmlEscape(v.userEmail) + u'>'},
        {QStringLiteral("<input type=\"password\" name=\"pass\" size=\"40\">"),
         QLatin1String("<input type=\"password\" name=\"pass\" size=\"40\" value=") +
             HtmlEscape(v.ebayPassword) + u'>'},
        {QStringLiteral("<input type=\"text\" name=\"otheruserid\" size=\"40\">"),
         QLatin1String("<input type=\"text\" name=\"otheruserid\" size=\"40\"  value='") +
             HtmlEscape(v.buyerEmail) + QLatin1String("'>")},
        {QStringLiteral("<input type=\"text\" name=\"itemno\" size=\"40\">"),
         QLatin1String("<input type=\"text\" name=\"itemno\" size=\"40\"  value='") + v.ebayId +
             QLatin1String("'>")},
        {QStringLiteral("<input type=\"radio\" name=\"which\" value=\"positive\">"),
         QStringLiteral("<input type=\"radio\" name=\"which\" value=\"positive\" checked>")},
        {QStringLiteral("<input type=\"text\" name=\"comment\" size=\"80\" maxlength=\"80\">"),
         QLatin1String(
             "<input type=\"text\" name=\"comment\" size=\"80\" maxlength=\"80\" value='") +
             HtmlEscape(v.comment) + QLatin1String("'>")},
    };
    QString text = page;
    for (const Replacement& r : replacements)
        text = ReplaceFirst(text, r.tag, r.filled);
    return text;
}
