#include "app/frmSplash.h"

#include <QCoreApplication>
#include <QPainter>

namespace {
QPixmap splashPicture()
{
    QPixmap picture(QStringLiteral(":/splash.png"));
    if (!picture.isNull())
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

frmSplash::frmSplash() : QSplashScreen(splashPicture())
{
    setObjectName(QStringLiteral("frmSplash"));
    showMessage(QStringLiteral("Version %1  -  loading your items...")
                    .arg(QCoreApplication::applicationVersion()),
                Qt::AlignBottom | Qt::AlignHCenter, Qt::white);
}
