#pragma once

#include "aftersale/MailLog.h"

#include <QDialog>

// One note from the mail log, read-only: recipients, subject, the date it went out and the
// body exactly as sent.
class frmSentNote : public QDialog
{
    Q_OBJECT
public:
    explicit frmSentNote(const LoggedNote& note, QWidget* parent = nullptr);
};
