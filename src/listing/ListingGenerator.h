#pragma once

#include "listing/ThemeSet.h"

#include <QList>
#include <QString>

#include <array>

// The media of the theme in use, as the Ad Studio's controls hold them (paths already expanded).
// The listing takes these from the editor, not from the themeset file, so edits that were not
// saved still show.
struct ListingMedia
{
    QString backgroundImage;   // txtBackgroundImage
    QString soundFile;         // txtSoundFile
    QString borderImage;       // txtBorderImage
    QString titleImage;        // txtTitleImage
    QString inlineImage;       // txtInlineImage
    bool loop = true;          // chkLoop
    bool borderImgTop = true;  // chkBorderImgTop
    bool borderImgBot = true;  // chkBorderImgBot
    bool titleImgLeft = true;  // chkTitleImgLeft
    bool titleImgRight = true; // chkTitleImgRight
    bool inlineImg = true;     // chkInlineImg

    // What the Ad Studio shows right after loading that theme.
    static ListingMedia fromTheme(const Theme& theme);
};

// Everything one run of the listing generator needs.
struct ListingRequest
{
    QString themeSetPath; // ThemeSetFN
    QString themeName;    // the Ad Studio's cmbThemes text
    ListingMedia media;
    RoleTexts roleTexts; // the Ad Studio's txtListText 1, 3, 4, 5, 6

    // The item, as the item window's boxes show it.
    QString shortDescription;
    QString description;
    QString picture1Path;
    QString picture2Path;
    QString picture3Path;
    QString reserve;

    QString placement = QStringLiteral("Left"); // comboImgPlace: Left, Right, Top or Bottom

    // Settings.
    QString imageLoc;         // web address of the uploaded pictures
    QString ebaySellerReport; // for the link to the seller's other auctions
    QString userEmail;

    bool remote = false; // pictures referred to under imageLoc rather than on this disk
    bool escape = false; // markup escaped, to be shown as text
    QString appPath;     // listing.htm is written here
};

// Where the caller should put the focus after a refusal.
enum class ListingFocus
{
    None,
    ShortDescription,
    Description
};

struct ListingResult
{
    QString html; // empty when the run was refused
    // To be shown in this order (a missing background or sound is reported and the listing
    // is still made).
    QList<ThemeSetMessage> messages;
    ListingFocus focus = ListingFocus::None;

    bool ok() const { return !html.isEmpty(); }
};

// Checks the request, builds the advertisement, writes it (followed by CR LF) to appPath's
// listing.htm and returns it.
ListingResult generateListing(const ListingRequest& request);

// appPath + "/listing.htm"
QString listingFilePath(const QString& appPath);

// An item box's text as the listing places it: leading and trailing blanks dropped.
QString listingItemText(const QString& text);
// The web address of a file uploaded to imageLoc: the location, a "/" when it lacks one, and the
// file's name without its folder, escaped.
QString webImageAddress(const QString& imageLoc, const QString& path);
// The web addresses under which a listing made from this request refers to pictures 1..3 when
// they come from the web space; "" for a blank picture box.
std::array<QString, 3> listingPictureAddresses(const ListingRequest& request);

// The small conversions the listing is built from.
// Point size -> HTML font size 1..7 (sizes below 8 give 0 or less).
int PointSizeToHtmlSize(int pointSize);
// "\" -> "/", blank -> "%20", "#" -> "%23".
QString UrlPathEscape(const QString& path);
// The text up to and including the first line feed, removed from text; "" when there is none.
QString FirstLine(QString& text);
// Meant as the inverse of HtmlEscape, but it compares single characters with whole entities and
// so returns its input unchanged; kept that way because nothing relies on it doing more.
QString HtmlUnescape(const QString& text);
