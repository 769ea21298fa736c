#pragma once

#include <QSplashScreen>

// Shown while the item window loads.
class frmSplash : public QSplashScreen
{
    Q_OBJECT
public:
    frmSplash();

    // Closes the splash once `window` is on screen, as QSplashScreen::finish does, but without
    // its 10 ms pause after each round of events (the last one too), which held back the first
    // input after the window had painted.
    void closeWhenShown(QWidget& window);

protected:
    // Draws the status line only when there is one: even empty text needs the font list, which
    // is still being read while the splash first paints.
    void drawContents(QPainter* painter) override;
};
