#pragma once

#include <QSplashScreen>

// Shown while the item window loads.
class frmSplash : public QSplashScreen
{
    Q_OBJECT
public:
    frmSplash();
};
