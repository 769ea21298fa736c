#include "app/frmSplash.h"

#include "platform/AppImages.h"

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QPainter>
#include <QTimer>
#include <QWindow>

namespace {
// The artwork carries its own line about what is happening; only the plain fallback needs one.
QPixmap splashPicture(bool& hasStatusLine)
{
    QPixmap picture = AppImages::pixmap(QStringLiteral(":/splash.ppm"), "ppm");
    hasStatusLine = !picture.isNull();
    if (hasStatusLine)
        return picture;
    // Without the artwork the splash still says what is starting.
    picture = QPixmap(420, 260);
    picture.fill(QColor(0x1f, 0x4e, 0x79));
    QPainter p(&picture);
    p.setPen(Qt::white);
    QFont f = p.font();
    f.setPointSize(28);
    f.setBold(true);
    p.setFont(f);
    p.drawText(picture.rect(), Qt::AlignCenter, QStringLiteral("Tallybid"));
    return picture;
}
} // namespace

// The artwork lives in a static library; its resources must be registered by hand.
static void initResources()
{
    Q_INIT_RESOURCE(icons);
}

frmSplash::frmSplash()
{
    initResources();
    setObjectName(QStringLiteral("frmSplash"));
    bool hasStatusLine = false;
    setPixmap(splashPicture(hasStatusLine));
    if (!hasStatusLine)
        showMessage(QStringLiteral("Version %1  -  loading your items...")
                        .arg(QCoreApplication::applicationVersion()),
                    Qt::AlignBottom | Qt::AlignHCenter, Qt::white);
}

void frmSplash::closeWhenShown(QWidget& window)
{
    window.winId(); // the native window whose showing is waited for
    const QWindow* shown = window.windowHandle();
    // The desktop may never show it (another workspace): a second at most, as before.
    const QDeadlineTimer deadline(1000);
    QTimer wake; // ends the wait below when no other event comes
    wake.start(10);
    while (shown && !shown->isExposed() && !deadline.hasExpired())
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    close();
}

void frmSplash::drawContents(QPainter* painter)
{
    if (!message().isEmpty())
        QSplashScreen::drawContents(painter);
}
