#include "platform/QtPrompts.h"

#include <QApplication>
#include <QColorDialog>
#include <QFileDialog>
#include <QFontDialog>
#include <QInputDialog>
#include <QMessageBox>

namespace {
QWidget* owner()
{
    return QApplication::activeWindow();
}
} // namespace

PromptAnswer QtPrompts::message(const QString& text, const QString& title, PromptIcon icon,
                                PromptButtons buttons)
{
    QMessageBox box(owner());
    box.setText(text);
    box.setWindowTitle(title.isEmpty() ? kDefaultTitle : title);
    switch (icon) {
    case PromptIcon::None:
        box.setIcon(QMessageBox::NoIcon);
        break;
    case PromptIcon::Information:
        box.setIcon(QMessageBox::Information);
        break;
    case PromptIcon::Exclamation:
        box.setIcon(QMessageBox::Warning);
        break;
    case PromptIcon::Critical:
        box.setIcon(QMessageBox::Critical);
        break;
    case PromptIcon::Question:
        box.setIcon(QMessageBox::Question);
        break;
    }
    switch (buttons) {
    case PromptButtons::Ok:
        box.setStandardButtons(QMessageBox::Ok);
        break;
    case PromptButtons::OkCancel:
        box.setStandardButtons(QMessageBox::Ok | QMessageBox::Cancel);
        break;
    case PromptButtons::YesNo:
        box.setStandardButtons(QMessageBox::Yes | QMessageBox::No);
        break;
    case PromptButtons::YesNoCancel:
        box.setStandardButtons(QMessageBox::Yes | QMessageBox::No | QMessageBox::Cancel);
        break;
    case PromptButtons::RetryCancel:
        box.setStandardButtons(QMessageBox::Retry | QMessageBox::Cancel);
        break;
    }
    switch (box.exec()) {
    case QMessageBox::Ok:
        return PromptAnswer::Ok;
    case QMessageBox::Yes:
        return PromptAnswer::Yes;
    case QMessageBox::No:
        return PromptAnswer::No;
    case QMessageBox::Retry:
        return PromptAnswer::Retry;
    default:
        return PromptAnswer::Cancel;
    }
}

std::optional<QString> QtPrompts::input(const QString& prompt, const QString& title,
                                        const QString& defaultText)
{
    bool ok = false;
    const QString text =
        QInputDialog::getText(owner(), title, prompt, QLineEdit::Normal, defaultText, &ok);
    if (!ok)
        return std::nullopt;
    return text;
}

QString QtPrompts::openFileName(const QString& title, const QString& startDir,
                                const QString& filter)
{
    return QFileDialog::getOpenFileName(owner(), title, startDir, qtFileFilter(filter));
}

QString QtPrompts::saveFileName(const QString& title, const QString& startDir,
                                const QString& filter)
{
    return QFileDialog::getSaveFileName(owner(), title, startDir, qtFileFilter(filter));
}

std::optional<QFont> QtPrompts::font(const QFont& initial)
{
    bool ok = false;
    const QFont chosen = QFontDialog::getFont(&ok, initial, owner());
    if (!ok)
        return std::nullopt;
    return chosen;
}

std::optional<QColor> QtPrompts::color(const QColor& initial)
{
    const QColor chosen = QColorDialog::getColor(initial, owner());
    if (!chosen.isValid())
        return std::nullopt;
    return chosen;
}
