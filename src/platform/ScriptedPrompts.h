#pragma once

#include "platform/Prompts.h"

#include <QList>
#include <QVariant>

// Test double of Prompts: answers come from a queue the test fills beforehand and every prompt
// is recorded. A prompt with nothing queued is recorded as unexpected (an OK-only message box is
// the exception: it needs no answer); tests check unexpected() is empty.
class ScriptedPrompts : public Prompts
{
public:
    struct Shown
    {
        QString kind; // "message", "input", "open", "save", "font", "color"
        QString text;
        QString title;
        PromptIcon icon = PromptIcon::None;
        PromptButtons buttons = PromptButtons::Ok;
        QString extra; // start folder and filter of file dialogs
    };

    void queueAnswer(PromptAnswer answer) { m_answers << QVariant::fromValue(int(answer)); }
    void queueInput(const std::optional<QString>& text);
    void queueFile(const QString& path) { m_answers << path; }
    void queueFont(const std::optional<QFont>& font);
    void queueColor(const std::optional<QColor>& color);

    const QList<Shown>& shown() const { return m_shown; }
    QStringList unexpected() const { return m_unexpected; }
    qsizetype pendingAnswers() const { return m_answers.size(); }
    void clear();

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

private:
    std::optional<QVariant> take(const Shown& s);

    QList<QVariant> m_answers;
    QList<Shown> m_shown;
    QStringList m_unexpected;
};
