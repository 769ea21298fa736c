#include "listing/ListingGenerator.h"

#include "listing/ListingTexts.h"
#include "platform/AtomicFile.h"
#include "platform/TextRoutines.h"
#include "settings/SettingsCatalogue.h"

#include <QDir>
#include <QFileInfo>
#include <QLocale>

#include <cmath>

using namespace ListingText;

namespace {

// Leading and trailing blanks only: tabs and line ends inside a description are the user's.
QString trimBlanks(const QString& text)
{
    qsizetype start = 0;
    qsizetype end = text.size();
    while (start < end && text.at(start) == u' ')
        ++start;
    while (end > start && text.at(end - 1) == u' ')
        --end;
    return text.mid(start, end - start);
}

ThemeSetMessage exclamation(const QString& text, const QString& title)
{
    return {text, title, PromptIcon::Exclamation};
}

// A picture path that names a web address (or cannot name a file at all) is a bad file name,
// not a missing file.
bool isBadFileName(const QString& path)
{
    return path.contains(QLatin1String("://")) || path.contains(QChar(0));
}

bool fileExists(const QString& path)
{
    return QFileInfo(path).isFile();
}

struct FontStyle
{
    QString open;  // <font ...> and the <b>/<i> that follow it
    QString close; // </b>/</i> in the order they were opened
};

FontStyle fontStyle(const FontGroup& font, const QString& colorHex)
{
    FontStyle style;
    style.open = QStringLiteral("<font face='") + font.face + QStringLiteral("' color=#") +
                 colorHex + QStringLiteral(" size=") +
                 QString::number(PointSizeToHtmlSize(int(font.size))) + u'>';
    if (font.bold) {
        style.open += QLatin1String("<b>");
        style.close += QLatin1String("</b>");
    }
    if (font.italic) {
        style.open += QLatin1String("<i>");
        style.close += QLatin1String("</i>");
    }
    return style;
}

bool isNumeric(const QString& text, double& value)
{
    bool ok = false;
    value = text.toDouble(&ok);
    if (!ok)
        value = QLocale().toDouble(text, &ok);
    return ok && std::isfinite(value);
}

class Builder
{
public:
    Builder(const ListingRequest& request, const Theme& theme) : m_request(request), m_theme(theme)
    {
        // Every colour is turned into its HTML form once, before anything is built.
        m_tableColor = ColorToHtml(theme.tableColor);
        for (int i = 0; i < kFontGroupCount; ++i)
            m_fonts[i] = fontStyle(theme.fonts[i], ColorToHtml(theme.fonts[i].color));
    }

    QString build(QList<ThemeSetMessage>& messages);

private:
    void line(const QString& fragment) { m_text += fragment + kCrLf; }

    QString remoteReference(const QString& path) const
    {
        return webImageAddress(m_request.imageLoc, path);
    }
    // A file URL of a path on this disk; documented with "file:///" or "file://" before a drive
    // letter. An absolute path of this platform brings its own leading "/", so it always gets
    // "file://" and the URL has exactly three slashes.
    static QString localReference(const QString& path, const QString& prefix)
    {
        if (path.startsWith(u'/'))
            return QStringLiteral("file://") + UrlPathEscape(path);
        if (QDir::isRelativePath(path) && fileExists(path) &&
            !(path.size() > 1 && path.at(1) == u':'))
            return QStringLiteral("file://") + UrlPathEscape(QFileInfo(path).absoluteFilePath());
        return prefix + UrlPathEscape(path);
    }
    QString reference(const QString& path, const QString& localPrefix) const
    {
        return m_request.remote ? remoteReference(path) : localReference(path, localPrefix);
    }
    QString image(const QString& path) const
    {
        return QStringLiteral("<img align=top hspace=5 src='") +
               reference(path, QStringLiteral("file://")) + QStringLiteral("'>");
    }
    void fontBlock(int role, const QString& inner)
    {
        m_text += m_fonts[role].open + inner + m_fonts[role].close;
    }
    // A paragraph of text in its role's font, ended by "</font><br>" and "<p>".
    void paragraph(int role, const QString& inner)
    {
        fontBlock(role, inner);
        line(QStringLiteral("</font><br>"));
        m_text += QLatin1String("<p>");
    }

    QString pictureCell() const;
    void background(QList<ThemeSetMessage>& messages);
    void sound(QList<ThemeSetMessage>& messages);
    void borderImage(bool shown)
    {
        if (shown && !trimBlanks(m_request.media.borderImage).isEmpty())
            m_text += QStringLiteral("<br>") + image(trimBlanks(m_request.media.borderImage)) +
                      QStringLiteral("<br><p>");
    }
    void titleImage(bool shown)
    {
        if (shown && !trimBlanks(m_request.media.titleImage).isEmpty())
            m_text += image(trimBlanks(m_request.media.titleImage));
    }

    const ListingRequest& m_request;
    const Theme& m_theme;
    QString m_tableColor;
    FontStyle m_fonts[kFontGroupCount];
    QString m_text;
};

QString Builder::pictureCell() const
{
    const QString pictures[3] = {trimBlanks(m_request.picture1Path),
                                 trimBlanks(m_request.picture2Path),
                                 trimBlanks(m_request.picture3Path)};
    if (pictures[0].isEmpty() && pictures[1].isEmpty() && pictures[2].isEmpty())
        return {};
    QString cell =
        QStringLiteral("<td align=") + m_theme.cellAlign + QStringLiteral(" width='1%'>");
    for (const QString& picture : pictures) {
        if (!picture.isEmpty())
            cell += QStringLiteral("<br><br><img align=top hspace=5 src='") +
                    reference(picture, QStringLiteral("file:///")) + QStringLiteral("'>");
    }
    return cell + QStringLiteral("</td>");
}

void Builder::background(QList<ThemeSetMessage>& messages)
{
    const QString path = trimBlanks(m_request.media.backgroundImage);
    if (path.isEmpty())
        return;
    if (!fileExists(path)) {
        messages << exclamation(kGraphicNotFound, noBackgroundImageTitle(path));
        return;
    }
    if (!m_request.remote) {
        line(QStringLiteral("<body background='") +
             localReference(path, QStringLiteral("file:///")) + QStringLiteral("'>"));
        return;
    }
    const QString r = remoteReference(path);
    const QString bodyTag =
        QStringLiteral("document.write(\"<body background='") + r + QStringLiteral("'>\");");
    line(QStringLiteral("<SCRIPT LANGUAGE=JavaScript>"));
    line(QStringLiteral("if (navigator.appName == 'Microsoft Internet Explorer') {"));
    line(QStringLiteral("  if (navigator.appVersion.substring(0,1) < 4) {"));
    line(QStringLiteral("    ") + bodyTag);
    line(QStringLiteral("  }"));
    line(QStringLiteral("  else {"));
    line(QStringLiteral("    document.write(\"<HEAD>\");"));
    line(QStringLiteral("    document.write(\"<STYLE type='text/css'>\");"));
    line(QStringLiteral("    document.write(\"  BODY { background: url(") + r +
         QStringLiteral(") }\");"));
    line(QStringLiteral("    document.write(\"</STYLE>\");"));
    line(QStringLiteral("    document.write(\"</HEAD>\");"));
    line(QStringLiteral("  }"));
    line(QStringLiteral("}"));
    line(QStringLiteral("else {  //Default to Netscape settings."));
    line(QStringLiteral("    ") + bodyTag);
    line(QStringLiteral("}"));
    line(QStringLiteral("</SCRIPT>"));
}

void Builder::sound(QList<ThemeSetMessage>& messages)
{
    const QString path = trimBlanks(m_request.media.soundFile);
    if (path.isEmpty())
        return;
    if (!fileExists(path)) {
        messages << exclamation(kGraphicNotFound, noBackgroundSoundTitle(path));
        return;
    }
    // The two forms order their attributes differently; pages made before keep their look.
    if (m_request.remote)
        m_text += QStringLiteral("<embed src='") + remoteReference(path) +
                  QStringLiteral("' autostart=true controls=console volume=100 hidden=true ");
    else
        m_text += QStringLiteral("<embed src='") +
                  localReference(path, QStringLiteral("file:///")) +
                  QStringLiteral("' autostart=true volume=100 controls=console hidden=true ");
    m_text += m_request.media.loop ? QStringLiteral("loop=true>") : QStringLiteral("loop=false>");
}

QString Builder::build(QList<ThemeSetMessage>& messages)
{
    const ListingRequest& r = m_request;
    const ListingMedia& media = r.media;
    const QString cell = pictureCell();

    line(QStringLiteral("</BLOCKQUOTE>"));
    background(messages);
    line(QStringLiteral("<br>"));
    line(QStringLiteral("<table align=center cellpadding=8 width='100%' border=") +
         QString::number(m_theme.borderWidth) + QStringLiteral(" cellspacing=0 bgcolor=") +
         m_tableColor + u'>');
    line(QStringLiteral("<tr>"));
    if (r.placement == QLatin1String("Left") || r.placement == QLatin1String("Top"))
        m_text += cell;
    if (r.placement == QLatin1String("Top"))
        m_text += QLatin1String("</tr><tr>");
    line(QStringLiteral("<td valign=top align=") + m_theme.cellAlign + u'>');

    borderImage(media.borderImgTop);
    titleImage(media.titleImgLeft);
    fontBlock(Role::Heading, listingItemText(r.shortDescription));
    m_text += QLatin1String("</font>");
    titleImage(media.titleImgRight);
    line(QStringLiteral("<br>"));

    paragraph(Role::SubHeading, trimBlanks(r.roleTexts.subHeading));
    sound(messages);
    if (media.inlineImg && !trimBlanks(media.inlineImage).isEmpty())
        m_text += QStringLiteral("<br>") + image(trimBlanks(media.inlineImage)) +
                  QStringLiteral("<br><p>");
    paragraph(Role::Description, trimBlanks(r.description));

    double reserve = 0;
    if (isNumeric(trimBlanks(r.reserve), reserve) && reserve <= 0)
        paragraph(Role::ReserveMessage, trimBlanks(r.roleTexts.noReserve));
    paragraph(Role::PayOptions, trimBlanks(r.roleTexts.payOptions));

    const QString seeOther = trimBlanks(r.roleTexts.seeOther);
    if (!seeOther.isEmpty()) {
        QString report = trimBlanks(r.ebaySellerReport);
        report.remove(QStringLiteral("WithEmails"));
        paragraph(Role::SeeOther, QStringLiteral("<a href='") + report + trimBlanks(r.userEmail) +
                                      QStringLiteral("&since=-1&sort=2'>") + seeOther +
                                      QStringLiteral("</a>"));
    }

    fontBlock(Role::TaxMessage, trimBlanks(r.roleTexts.taxMsg));
    line(QStringLiteral("</font><br>"));
    borderImage(media.borderImgBot);
    line(QStringLiteral("</td>"));

    if (r.placement == QLatin1String("Bottom"))
        m_text += QLatin1String("</tr><tr>");
    if (r.placement == QLatin1String("Right") || r.placement == QLatin1String("Bottom"))
        m_text += cell;
    line(QStringLiteral("</tr></table>"));

    m_text += QStringLiteral("<!-- --------------------------------------------------------- -->"
                             "<!-- I'd appreciate the advertising, but if you rather not,    -->"
                             "<!-- then don't include everything below the line.             -->"
                             "<center><small>This HTML automatically generated with <a href='") +
              DefaultAddress::kHomePage + QStringLiteral("'>") + kProductName +
              QStringLiteral("</a> from <a href='") + kMakerAddress + QStringLiteral("'>") +
              kMakerName + QStringLiteral("</a></small></center>");
    return m_text;
}

// Runs the documented checks; the first refusal ends the run.
std::optional<ThemeSetMessage> check(const ListingRequest& r, ListingFocus& focus)
{
    if (trimBlanks(r.shortDescription).isEmpty()) {
        focus = ListingFocus::ShortDescription;
        return exclamation(kShortDescriptionRequired, kMissingInformationTitle);
    }
    if (trimBlanks(r.description).isEmpty()) {
        focus = ListingFocus::Description;
        return exclamation(kDescriptionRequired, kMissingInformationTitle);
    }
    for (const QString& picture : {r.picture1Path, r.picture2Path, r.picture3Path}) {
        const QString path = trimBlanks(picture);
        if (path.isEmpty())
            continue;
        if (isBadFileName(path))
            return exclamation(kMissingFile, kMissingFileTitle);
        if (!fileExists(path))
            return exclamation(kGraphicNotFound, fileNotFoundTitle(path));
    }
    const QString media[5] = {r.media.backgroundImage, r.media.soundFile, r.media.borderImage,
                              r.media.titleImage, r.media.inlineImage};
    for (int i = 0; i < 5; ++i) {
        const QString path = trimBlanks(media[i]);
        if (path.isEmpty())
            continue;
        if (isBadFileName(path))
            return exclamation(kMissingFile, kMissingFileTitle);
        if (!fileExists(path))
            return exclamation(kMediaNotFound[i] + path + kSpecifiedInAdStudio,
                               fileNotFoundTitle(path));
    }
    return {};
}

std::optional<ThemeSetMessage> writeListing(const QString& appPath, const QString& text)
{
    if (!QFileInfo(appPath).isDir())
        return exclamation(kInvalidDirectory, kInvalidDirectoryTitle);
    // Scratch copies left by a run that was stopped go first; another copy's are left alone.
    const AtomicFile::Outcome failure =
        AtomicFile::write(listingFilePath(appPath), (text + kCrLf).toUtf8());
    if (!failure)
        return {};
    return exclamation(errorText(kErrPathFileAccess, QStringLiteral("Path/File access error") +
                                                         kCrLf + listingFilePath(appPath) +
                                                         QStringLiteral(": ") + failure->reason),
                       kErrorTitle);
}

} // namespace

ListingMedia ListingMedia::fromTheme(const Theme& theme)
{
    ListingMedia media;
    media.backgroundImage = theme.backgroundImage;
    media.soundFile = theme.soundFile;
    media.borderImage = theme.borderImage;
    media.titleImage = theme.titleImage;
    media.inlineImage = theme.inlineImage;
    media.loop = theme.loop;
    media.borderImgTop = theme.borderImgTop;
    media.borderImgBot = theme.borderImgBot;
    media.titleImgLeft = theme.titleImgLeft;
    media.titleImgRight = theme.titleImgRight;
    media.inlineImg = theme.inlineImg;
    return media;
}

ListingResult generateListing(const ListingRequest& request)
{
    ListingResult result;
    const ThemeLoadResult theme = readThemeForListing(request.themeSetPath, request.themeName);
    if (!theme.theme) {
        if (theme.message)
            result.messages << *theme.message;
        return result;
    }
    if (auto refusal = check(request, result.focus)) {
        result.messages << *refusal;
        return result;
    }
    QString text = Builder(request, *theme.theme).build(result.messages);
    if (request.escape)
        text = HtmlEscape(text);
    if (auto failure = writeListing(request.appPath, text)) {
        result.messages << *failure;
        return result;
    }
    result.html = text;
    return result;
}

QString listingFilePath(const QString& appPath)
{
    return appPath + QStringLiteral("/listing.htm");
}

QString listingItemText(const QString& text)
{
    return trimBlanks(text);
}

QString webImageAddress(const QString& imageLoc, const QString& path)
{
    QString prefix = imageLoc;
    if (!prefix.endsWith(u'/'))
        prefix += u'/';
    return prefix + UrlPathEscape(FileNameOfPath(path));
}

std::array<QString, 3> listingPictureAddresses(const ListingRequest& request)
{
    std::array<QString, 3> addresses;
    const QString paths[3] = {request.picture1Path, request.picture2Path, request.picture3Path};
    for (int i = 0; i < 3; ++i) {
        const QString path = trimBlanks(paths[i]);
        if (!path.isEmpty())
            addresses[i] = webImageAddress(request.imageLoc, path);
    }
    return addresses;
}

int PointSizeToHtmlSize(int pointSize)
{
    if (pointSize < 12) {
        // Half steps go to the even neighbour: 9 gives 2, 11 gives 2, 7 gives 0.
        const double value = (pointSize - 12) / 2.0 + 3;
        const double below = std::floor(value);
        if (value - below != 0.5)
            return int(std::lround(value));
        return int(std::fmod(below, 2.0) == 0 ? below : below + 1);
    }
    if (pointSize == 12)
        return 3;
    if (pointSize == 13)
        return 4;
    if (pointSize <= 17)
        return 5;
    if (pointSize <= 23)
        return 6;
    return 7;
}

QString UrlPathEscape(const QString& path)
{
    QString escaped = ReplaceChar(path, u'\\', QStringLiteral("/"));
    escaped = ReplaceChar(escaped, u' ', QStringLiteral("%20"));
    return ReplaceChar(escaped, u'#', QStringLiteral("%23"));
}

QString FirstLine(QString& text)
{
    const qsizetype at = text.indexOf(u'\n');
    if (at < 0)
        return {};
    const QString first = text.left(at + 1);
    text.remove(0, at + 1);
    return first;
}

QString HtmlUnescape(const QString& text)
{
    static const QString entities[4] = {QStringLiteral("&lt;"), QStringLiteral("&gt;"),
                                        QStringLiteral("&quot;"), QStringLiteral("&#39")};
    static const QChar plain[4] = {u'<', u'>', u'"', u'\''};
    QString out;
    out.reserve(text.size());
    for (const QChar c : text) {
        QChar taken = c;
        for (int i = 0; i < 4; ++i) {
            if (QString(c) == entities[i])
                taken = plain[i];
        }
        out += taken;
    }
    return out;
}
