#pragma once

#include <QDBusConnection>
#include <QObject>
#include <QString>

#include <functional>
#include <memory>

class QImage;
class QTemporaryDir;

namespace oblino {

/// The desktop's portal for e-mail (`org.freedesktop.portal.Email`), which opens the draft of an e-mail with
/// a file attached. Nothing here waits for the bus.
class EmailPortal : public QObject
{
    Q_OBJECT

public:
    using Failed = std::function<void(const QString &error)>;

    /// @param folder  for files of drafts; it is the object's own, and emptied
    EmailPortal(const QDBusConnection &bus, const QString &folder);
    ~EmailPortal() override;

    /// Asks whether the desktop has the portal, and calls back if it has, unless the context is gone by then.
    void whenPresent(QObject *context, const std::function<void()> &present);

    /// Opens a draft of the text with the picture as an attached PNG file of that name. The file is the
    /// user's alone and stays until the next draft, forget() or the end of this object. A failure may be told
    /// at once, or later; that of an earlier draft no more.
    void compose(const QString &body, const QImage &picture, const QString &fileName, Failed failed);

    /// Removes the file of the last draft.
    void forget();

private Q_SLOTS:
    void takeResponse(uint response);

private:
    [[nodiscard]] QString write(const QImage &picture, const QString &fileName);
    void followRequest(const QString &token);
    void leaveRequest();

    QDBusConnection m_bus;
    QString m_drafted;                       // the folder for all drafts
    std::unique_ptr<QTemporaryDir> m_folder; // of the last draft; null without one
    QString m_file;                          // in the folder
    QString m_request;                       // object path; empty while no draft is being opened
    Failed m_failed;
    int m_drafts = 0;
};

} // namespace oblino
