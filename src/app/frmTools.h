#pragma once

#include "app/Calculator.h"

#include <QDialog>

class QLineEdit;

// Tools > Calculator: a pocket calculator for working out prices and postage.
class frmCalculator : public QDialog
{
    Q_OBJECT
public:
    explicit frmCalculator(QWidget* parent = nullptr);

protected:
    void keyPressEvent(QKeyEvent* event) override;

private:
    void press(const QString& key);

    Calculator m_calculator;
    QLineEdit* txtDisplay;
};

// Tools > Calendar: a month calendar for counting auction days.
class frmCalendar : public QDialog
{
    Q_OBJECT
public:
    explicit frmCalendar(QWidget* parent = nullptr);
};
