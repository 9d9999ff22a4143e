#pragma once

#include <QString>
#include <QStringList>

#include <optional>

namespace oblino {

/// A modal question in warning style.
class Alert
{
public:
    struct Question
    {
        QString messageText;     ///< what is asked; may be empty
        QString informativeText; ///< the smaller text below it; may be empty
        QStringList buttons;     ///< titles, in order
        int escapeButton = -1;   ///< the button that Esc presses, or -1 for none
    };

    Alert() = default;
    Alert(const Alert &) = delete;
    Alert &operator=(const Alert &) = delete;
    virtual ~Alert() = default;

    /// Asks and waits.
    /// @return the index of the button that the user pressed; none when the question ended without an answer
    [[nodiscard]] virtual std::optional<int> ask(const Question &question) = 0;
};

} // namespace oblino
