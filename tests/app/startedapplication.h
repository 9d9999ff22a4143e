#pragma once

#include <support/temporaryhome.h>
#include <support/widgets.h>

#include <app/application.h>
#include <desktop/singleinstance.h>
#include <ui/windows/viewcontroller.h>

#include <functional>

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

    void choose(const char *action) const { window->findChild<QAction *>(QLatin1String(action))->trigger(); }

    SingleInstance instance{QDir::homePath() + QStringLiteral("/private")};
    Application application{instance};
    ViewController *window = nullptr;
};

/// Does something and presses buttons of the questions that come, in their order. @return the questions
inline QStringList answering(const QStringList &buttons, const std::function<void()> &action)
{
    QStringList asked;
    QTimer timer;
    QObject::connect(&timer, &QTimer::timeout, &timer, [&] {
        const auto *box = qobject_cast<QMessageBox *>(QApplication::activeModalWidget());
        if (!box || asked.size() == buttons.size())
            return;
        const QString wanted = buttons.at(asked.size());
        asked += box->text();
        for (QAbstractButton *button : box->buttons()) {
            if (button->text() == wanted)
                QTest::mouseClick(button, Qt::LeftButton);
        }
    });
    timer.start(5);
    action();
    (void)QTest::qWaitFor([&] { return asked.size() == buttons.size(); });
    return asked;
}

} // namespace oblino
