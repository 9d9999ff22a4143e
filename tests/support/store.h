#pragma once

#include <base/alert.h>
#include <base/appearance.h>
#include <core/taskmanager.h>
#include <files/defaults.h>
#include <support/temporaryhome.h>

#include <functional>

namespace oblino {

/// A task store of a test's own, with its settings in a temporary home.
struct Store
{
    TemporaryHome home;
    Defaults defaults{home.path(QStringLiteral("settings.ini"))};
    Appearance appearance;
    TaskManager store{defaults, appearance};
};

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
