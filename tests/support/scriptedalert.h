#pragma once

#include <base/alert.h>

#include <QList>

#include <functional>

namespace oblino {

/// Answers questions as a test says, and records them.
class ScriptedAlert : public Alert
{
public:
    struct Script
    {
        QList<Question> asked;
        std::optional<int> answer = 0;    ///< the button pressed, or none when the question ends unanswered
        std::function<void()> whileAsked; ///< what happens while the question is open
    };

    explicit ScriptedAlert(Script &script)
        : m_script(script)
    {
    }

    [[nodiscard]] std::optional<int> ask(const Question &question) override
    {
        m_script.asked.append(question);
        if (m_script.whileAsked)
            m_script.whileAsked();
        return m_script.answer;
    }

private:
    Script &m_script;
};

} // namespace oblino
