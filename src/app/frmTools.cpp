#include "app/frmTools.h"

#include "platform/WindowFitUi.h"

#include <QCalendarWidget>
#include <QGridLayout>
#include <QKeyEvent>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

frmCalculator::frmCalculator(QWidget* parent) : QDialog(parent)
{
    setObjectName(QStringLiteral("frmCalculator"));
    setWindowTitle(QStringLiteral("Calculator"));
    auto* grid = new QGridLayout(this);
    txtDisplay = new QLineEdit(m_calculator.display(), this);
    txtDisplay->setObjectName(QStringLiteral("txtDisplay"));
    txtDisplay->setReadOnly(true);
    txtDisplay->setAlignment(Qt::AlignRight);
    txtDisplay->setFocusPolicy(Qt::NoFocus);
    QFont big = txtDisplay->font();
    big.setPointSize(big.pointSize() + 4);
    txtDisplay->setFont(big);
    grid->addWidget(txtDisplay, 0, 0, 1, 4);
    static const char* const keys[5][4] = {{"C", "\u2190", "\u00b1", "/"},
                                           {"7", "8", "9", "*"},
                                           {"4", "5", "6", "-"},
                                           {"1", "2", "3", "+"},
                                           {"0", ".", "=", ""}};
    for (int r = 0; r < 5; ++r)
        for (int c = 0; c < 4; ++c) {
            const QString key = QString::fromUtf8(keys[r][c]);
            if (key.isEmpty())
                continue;
            auto* button = new QPushButton(key, this);
            button->setObjectName(QLatin1String("cmdKey_") + QString::number(r * 4 + c));
            button->setFocusPolicy(Qt::NoFocus);
            button->setMinimumSize(48, 36);
            connect(button, &QPushButton::clicked, this, [this, key] { press(key); });
            grid->addWidget(button, r + 1, c, 1, key == QLatin1String("=") ? 2 : 1);
        }
    fitToScreen(*this);
}

void frmCalculator::press(const QString& key)
{
    m_calculator.press(key.at(0));
    txtDisplay->setText(m_calculator.display());
}

void frmCalculator::keyPressEvent(QKeyEvent* event)
{
    const QString t = event->text();
    if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter)
        press(QStringLiteral("="));
    else if (event->key() == Qt::Key_Backspace)
        press(QStringLiteral("\u2190"));
    else if (event->key() == Qt::Key_Delete)
        press(QStringLiteral("C"));
    else if (t.size() == 1 && QStringLiteral("0123456789.+-*/=").contains(t))
        press(t);
    else
        QDialog::keyPressEvent(event);
}

frmCalendar::frmCalendar(QWidget* parent) : QDialog(parent)
{
    setObjectName(QStringLiteral("frmCalendar"));
    setWindowTitle(QStringLiteral("Calendar"));
    auto* layout = new QVBoxLayout(this);
    auto* calendar = new QCalendarWidget(this);
    calendar->setObjectName(QStringLiteral("calMonth"));
    calendar->setGridVisible(true);
    layout->addWidget(calendar);
    fitToScreen(*this);
}
