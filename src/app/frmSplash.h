#pragma once

#include <QSplashScreen>

// Shown while the item window loads.
class frmSplash : public QSplashScreen
{
    Q_OBJECT
public:
    frmSplash();

protected:
    // Draws the status line only when there is one: even empty text needs the font list, which
    // is still being read while the splash first paints.
    void drawContents(QPainter* painter) override;
};
