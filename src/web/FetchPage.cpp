#include "web/FetchPage.h"

#include "platform/SettingsStore.h"
#include "settings/AppContext.h"
#include "settings/SettingsCatalogue.h"
#include "web/PageCache.h"
#include "web/frmLoadWebPage.h"

QString FetchPage(AppContext& ctx, const QString& url, int kind, QWidget* parent)
{
    const bool retrieveEveryTime = SettingsStore::toBool(
        readSetting(ctx.store, Settings::kOptions, QStringLiteral("RetrieveEveryTime")), false);
    return fetchPageWith(ctx.state.appPath, url, kind, retrieveEveryTime,
                         [&ctx, parent](const QString& address) {
                             ctx.state.pageUrl = address;
                             frmLoadWebPage window(ctx, parent);
                             window.exec();
                             return ctx.state.pageText;
                         });
}
