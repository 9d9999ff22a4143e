#pragma once

#include <support/store.h>
#include <support/test.h>
#include <support/widgets.h>

#include <base/notificationcenter.h>
#include <core/tasklistfile.h>
#include <ui/uiutil.h>

namespace oblino {

[[nodiscard]] inline QByteArray pngOf(QSize size, QColor color, QImage::Format format = QImage::Format_RGB32,
                                      const QString &text = {})
{
    QImage image(size, format);
    image.fill(color);
    image.setText(QStringLiteral("Comment"), text);
    QByteArray bytes;
    QBuffer buffer(&bytes);
    image.save(&buffer, "PNG");
    return bytes;
}

/// A home of a test's own, whose documents folder is the working folder too, and what the tools work on.
struct ToolHome : Store
{
    explicit ToolHome(FileCalls &calls = FileCalls::posix())
        : documents(home.documents(), home.privateFolder(), calls)
    {
        QDir::setCurrent(home.documents());
    }
    ToolHome(const ToolHome &) = delete;
    ToolHome &operator=(const ToolHome &) = delete;
    ~ToolHome() { QDir::setCurrent(QDir::rootPath()); }

    /// Puts the three files there and reads the list.
    void fill(const QByteArray &rows, const QByteArray &text, const QByteArray &picture)
    {
        TemporaryHome::write(home.listPath(), rows);
        TemporaryHome::write(notes, text);
        TemporaryHome::write(board, picture);
        (void)list.splitStringFile(list.readFromFile());
    }

    OwnFolders ownFolders{home};
    QString notes = home.documents() + QStringLiteral("/ltodonotes.txt");
    QString board = home.documents() + QStringLiteral("/ltodolistwhiteboard.png");
    Documents documents;
    TaskListFile list{store, documents};
    NotificationCenter notifications;
    ScriptedAlert::Script questions;
    UIUtil utilities{std::make_unique<ScriptedAlert>(questions)};
};

} // namespace oblino
