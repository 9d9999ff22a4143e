#pragma once

#include <support/test.h>
#include <support/widgets.h>

#include <app/application.h>
#include <desktop/singleinstance.h>
#include <ui/windows/viewcontroller.h>

namespace oblino {

/// Lets the program find its files in a home of a test's own, and no desktop. To be called first.
inline void moveTo(const TemporaryHome &home)
{
    qputenv("HOME", QFile::encodeName(home.path({})));
    qputenv("DBUS_SESSION_BUS_ADDRESS", "unix:path=/nonexistent");
    for (const char *folder : {"XDG_STATE_HOME", "TMPDIR"}) { // where texts are rescued to
        QDir().mkdir(home.path(QLatin1String(folder)));
        qputenv(folder, QFile::encodeName(home.path(QLatin1String(folder))));
    }
    qputenv("QT_MEDIA_BACKEND", "ffmpeg"); // as the program chooses
    QDir::setCurrent(home.path({}));
}

/// The program, with its main window shown.
struct StartedApplication
{
    StartedApplication()
    {
        application.start();
        for (QWidget *widget : QApplication::topLevelWidgets())
            window = qobject_cast<ViewController *>(widget) ? qobject_cast<ViewController *>(widget) : window;
        showActive(*window);
    }

    void choose(const char *action) const { find<QAction>(*window, action).trigger(); }

    SingleInstance instance{QDir::homePath() + QStringLiteral("/private")};
    Application application{instance};
    ViewController *window = nullptr;
};

/// Does something and answers the questions that come, in their order: presses buttons, chooses files to save
/// in; an empty file cancels. @return the questions
inline QStringList answering(const QStringList &answers, const std::function<void()> &action)
{
    QStringList asked;
    QPointer<QWidget> last;
    QTimer timer;
    QObject::connect(&timer, &QTimer::timeout, &timer, [&] {
        auto *dialog = qobject_cast<QDialog *>(QApplication::activeModalWidget());
        if (!dialog || dialog == last || asked.size() == answers.size())
            return;
        last = dialog;
        const QString answer = answers.at(asked.size());
        const auto *box = qobject_cast<QMessageBox *>(dialog);
        asked += box ? box->text() : dialog->windowTitle();
        for (QAbstractButton *button : box ? box->buttons() : QList<QAbstractButton *>()) {
            if (button->text() == answer)
                QTest::mouseClick(button, Qt::LeftButton);
        }
        if (!box && !answer.isEmpty())
            find<QLineEdit>(*dialog, "fileNameEdit").setText(answer);
        if (!box)
            answer.isEmpty() ? dialog->reject() : dialog->accept();
    });
    timer.start(5);
    action();
    (void)QTest::qWaitFor([&] { return asked.size() == answers.size(); });
    return asked;
}

} // namespace oblino
