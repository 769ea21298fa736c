#include "platform/ScriptedPrompts.h"

void ScriptedPrompts::queueInput(const std::optional<QString>& text)
{
    m_answers << (text ? QVariant(*text) : QVariant());
}

void ScriptedPrompts::queueFont(const std::optional<QFont>& font)
{
    m_answers << (font ? QVariant::fromValue(*font) : QVariant());
}

void ScriptedPrompts::queueColor(const std::optional<QColor>& color)
{
    m_answers << (color ? QVariant::fromValue(*color) : QVariant());
}

void ScriptedPrompts::clear()
{
    m_answers.clear();
    m_shown.clear();
    m_unexpected.clear();
}

std::optional<QVariant> ScriptedPrompts::take(const Shown& s)
{
    m_shown << s;
    if (m_answers.isEmpty())
        return std::nullopt;
    return m_answers.takeFirst();
}

PromptAnswer ScriptedPrompts::message(const QString& text, const QString& title, PromptIcon icon,
                                      PromptButtons buttons)
{
    const auto answer = take({QStringLiteral("message"), text, title, icon, buttons, {}});
    if (!answer) {
        if (buttons != PromptButtons::Ok)
            m_unexpected << text;
        return buttons == PromptButtons::YesNo || buttons == PromptButtons::YesNoCancel
                   ? PromptAnswer::No
                   : (buttons == PromptButtons::Ok ? PromptAnswer::Ok : PromptAnswer::Cancel);
    }
    return PromptAnswer(answer->toInt());
}

std::optional<QString> ScriptedPrompts::input(const QString& prompt, const QString& title,
                                              const QString& defaultText)
{
    const auto answer = take({QStringLiteral("input"), prompt, title, {}, {}, defaultText});
    if (!answer) {
        m_unexpected << prompt;
        return std::nullopt;
    }
    if (!answer->isValid())
        return std::nullopt;
    return answer->toString();
}

QString ScriptedPrompts::openFileName(const QString& title, const QString& startDir,
                                      const QString& filter)
{
    const auto answer = take({QStringLiteral("open"), filter, title, {}, {}, startDir});
    if (!answer) {
        m_unexpected << title;
        return {};
    }
    return answer->toString();
}

QString ScriptedPrompts::saveFileName(const QString& title, const QString& startDir,
                                      const QString& filter)
{
    const auto answer = take({QStringLiteral("save"), filter, title, {}, {}, startDir});
    if (!answer) {
        m_unexpected << title;
        return {};
    }
    return answer->toString();
}

std::optional<QFont> ScriptedPrompts::font(const QFont& initial)
{
    const auto answer = take({QStringLiteral("font"), initial.family(), {}, {}, {}, {}});
    if (!answer) {
        m_unexpected << QStringLiteral("font");
        return std::nullopt;
    }
    if (!answer->isValid())
        return std::nullopt;
    return answer->value<QFont>();
}

std::optional<QColor> ScriptedPrompts::color(const QColor& initial)
{
    const auto answer = take({QStringLiteral("color"), initial.name(), {}, {}, {}, {}});
    if (!answer) {
        m_unexpected << QStringLiteral("color");
        return std::nullopt;
    }
    if (!answer->isValid())
        return std::nullopt;
    return answer->value<QColor>();
}
