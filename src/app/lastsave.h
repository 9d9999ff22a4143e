#pragma once

#include <QList>
#include <QString>

class QWidget;

namespace oblino {

class UIUtil;
class UnsavedWork;

/// Sees to it that nothing that the user has entered is lost when the program ends: everything that is
/// unsaved in the main window and the windows below it is saved once more, and goes to another place where
/// that fails.
class LastSave
{
public:
    LastSave(QWidget &mainWindow, UIUtil &utilities);

    /// Saves; where that fails, asks the user, who may save elsewhere.
    /// @return whether the program may end
    [[nodiscard]] bool confirmed();

    /// Saves, and rescues what cannot be saved and was not saved elsewhere. Asks nothing.
    void perform();

private:
    struct Failure
    {
        UnsavedWork *work;
        QString error;
    };
    enum Answer { SaveElsewhere, QuitWithoutSaving, Cancel };

    [[nodiscard]] QList<UnsavedWork *> unsaved() const;
    [[nodiscard]] QList<Failure> failures() const;
    [[nodiscard]] Answer asked(const QList<Failure> &failures) const;
    [[nodiscard]] bool savedElsewhere(const QList<Failure> &failures);

    QWidget &m_mainWindow;
    UIUtil &m_utilities;
    QList<UnsavedWork *> m_elsewhere; // saved where the user chose
};

} // namespace oblino
