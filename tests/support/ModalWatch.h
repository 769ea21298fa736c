#pragma once

#include <QApplication>
#include <QDialog>
#include <QObject>
#include <QString>
#include <QTimer>

// Rejects the next modal dialog that opens (within about two seconds) and remembers its name,
// for commands that open a dialog such as Options after their message.
class ModalWatch : public QObject
{
public:
    ModalWatch() { QTimer::singleShot(0, this, &ModalWatch::poll); }
    QString shown;

private:
    void poll()
    {
        if (auto* d = qobject_cast<QDialog*>(QApplication::activeModalWidget())) {
            shown = d->objectName();
            d->reject();
        } else if (++m_tries < 200) {
            QTimer::singleShot(10, this, &ModalWatch::poll);
        }
    }
    int m_tries = 0;
};
