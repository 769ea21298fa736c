#include "web/WebCommands.h"

#include "listing/ListingGenerator.h"
#include "platform/Prompts.h"
#include "platform/Shell.h"
#include "platform/WaitCursor.h"
#include "settings/AppContext.h"
#include "settings/SettingsCatalogue.h"
#include "web/FetchPage.h"
#include "web/ItemPageReader.h"
#include "web/PageCache.h"
#include "web/SellerReport.h"
#include "web/StartForm.h"
#include "web/texts.h"

#include <QDateTime>
#include <QSqlError>

namespace {

// Page kinds of FetchPage: the start form is cached, the item page and the report never are.
constexpr int kStartFormPage = 1;
constexpr int kSellerReportPage = 3;
constexpr int kItemPage = 4;

QString option(const AppContext& ctx, const QString& key)
{
    return readSetting(ctx.store, Settings::kOptions, key);
}

// Only a value that reads as exactly 1 switches the daylight correction on.
int daylightDiff(const AppContext& ctx)
{
    return leadingNumber(option(ctx, QStringLiteral("DaylightDiff"))) == 1.0 ? 1 : 0;
}

// The page is left in temp.htm for the browser. One that cannot be written is not shown, and
// the seller is told why the browser stays closed.
void showPage(AppContext& ctx, const QString& page)
{
    const QString path = ctx.appFile(WebTexts::kShownPage);
    if (!writePrintedFile(path, page)) {
        ctx.prompts.message(WebTexts::pageNotWritten(path), WebTexts::kSaveFailedTitle,
                            PromptIcon::Exclamation);
        return;
    }
    OpenDocument(ctx.shell, path, ctx.state.appPath);
}

void reportUpdateFailure(AppContext& ctx, const QString& why)
{
    ctx.prompts.message(WebTexts::updateFailed(why), WebTexts::kSaveFailedTitle,
                        PromptIcon::Exclamation);
}

StartFormValues startFormValues(const AppContext& ctx, const ItemWindowPort& item)
{
    StartFormValues v;
    v.userEmail = option(ctx, QStringLiteral("UserEmail"));
    v.ebayPassword = option(ctx, QStringLiteral("eBayPassword"));
    v.location = option(ctx, QStringLiteral("Location"));
    v.region = option(ctx, QStringLiteral("Region"));
    v.regionNum = option(ctx, QStringLiteral("RegionNum"));
    v.country = option(ctx, QStringLiteral("Country"));
    v.countryNum = option(ctx, QStringLiteral("CountryNum"));
    for (int k = 0; k < 9; ++k)
        v.paymentOpt[k] = option(ctx, QStringLiteral("PaymentOpt %1").arg(k + 1));
    for (int k = 0; k < 4; ++k)
        v.shippingOpt[k] = option(ctx, QStringLiteral("ShippingOpt %1").arg(k + 1));
    v.shipInternationally = ctx.state.options.shipInternationally;
    v.shortDescription = item.boxText(3);
    // The pictures' web addresses are the ones the advertisement itself points at.
    ListingRequest pictures;
    pictures.picture1Path = item.boxText(5);
    pictures.picture2Path = item.boxText(6);
    pictures.picture3Path = item.boxText(7);
    pictures.imageLoc = ctx.state.options.imageLoc;
    const std::array<QString, 3> addresses = listingPictureAddresses(pictures);
    for (int k = 0; k < 3; ++k) {
        v.picturePaths[k] = item.boxText(5 + k);
        v.pictureAddresses[k] = addresses[k];
    }
    v.reserve = item.boxText(8);
    v.minBid = item.boxText(9);
    v.length = item.lengthText();
    return v;
}

} // namespace

void mnuStart_Click(AppContext& ctx, ItemWindowPort& item)
{
    const WaitCursor hourglass;
    item.checkSiteView(SiteView::StartForm);
    StartFormValues values = startFormValues(ctx, item);
    values.listingHtml = item.startFormListing();
    if (values.listingHtml.isEmpty())
        return;
    const QString form =
        FetchPage(ctx, ctx.state.options.ebayStartPage, kStartFormPage, item.ownerWindow());
    if (form.isEmpty())
        return;
    showPage(ctx, FillStartForm(form, values));
}

void mnuEbayList_Click(AppContext& ctx, ItemWindowPort& item)
{
    const QString address = ctx.state.options.ebayListing + item.boxText(1).trimmed();
    QString page = FetchPage(ctx, address, kItemPage, item.ownerWindow());
    if (page.isEmpty())
        return;

    item.saveRecord();
    const ItemPageValues values =
        ReadItemPage(page, item.boxText(1), ctx.state.timeZoneBias, daylightDiff(ctx));
    if (!applyItemPage(ctx.itemDatabase, values, QDateTime::currentDateTime()))
        reportUpdateFailure(ctx, ctx.itemDatabase.lastError().text());
    item.rereadRecord();

    item.checkSiteView(SiteView::ItemPage);
    showPage(ctx, page);
}

void mnuAllOpenRep_Click(AppContext& ctx, ItemWindowPort& item)
{
    item.saveRecord();
    const OptionsRecord& o = ctx.state.options;
    if (o.userEmail.trimmed().isEmpty()) {
        ctx.prompts.message(WebTexts::kUserIdRequired, WebTexts::kMissingInformationTitle,
                            PromptIcon::Exclamation);
        item.openOptions();
        return;
    }
    if (!o.ebaySellerReport.contains(WebTexts::kReportWithEmails)) {
        ctx.prompts.message(WebTexts::kOutdatedReport, WebTexts::kOutdatedReportTitle,
                            PromptIcon::Exclamation);
        item.openOptions();
        return;
    }

    const QString address = sellerReportAddress(
        o.ebaySellerReport, o.userEmail, option(ctx, QStringLiteral("PastDays")), o.ebayPassword);
    const QString page = FetchPage(ctx, address, kSellerReportPage, item.ownerWindow());
    if (page.isEmpty())
        return;

    const QList<ReportRow> ReportRows =
        ReadSellerReport(page, ctx.state.timeZoneBias, daylightDiff(ctx));
    const ApplyResult applied =
        ApplySellerReport(ctx.itemDatabase, ReportRows, QDateTime::currentDateTime());
    if (!applied.ok)
        reportUpdateFailure(ctx, applied.error);
    item.refreshView();

    item.checkSiteView(SiteView::AllOpenReport);
    showPage(ctx, page);
}
