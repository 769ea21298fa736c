#pragma once

#include "platform/Prompts.h"

class QWidget;

// Prompts shown with the real Qt dialogs, parented to the active window.
class QtPrompts : public Prompts
{
public:
    PromptAnswer message(const QString& text, const QString& title, PromptIcon icon,
                         PromptButtons buttons) override;
    std::optional<QString> input(const QString& prompt, const QString& title,
                                 const QString& defaultText) override;
    QString openFileName(const QString& title, const QString& startDir,
                         const QString& filter) override;
    QString saveFileName(const QString& title, const QString& startDir,
                         const QString& filter) override;
    std::optional<QFont> font(const QFont& initial) override;
    std::optional<QColor> color(const QColor& initial) override;
};
