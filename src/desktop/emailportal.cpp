#include <desktop/emailportal.h>

#include <QDBusMessage>
#include <QDBusMetaType>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusUnixFileDescriptor>
#include <QDir>
#include <QFile>
#include <QImage>
#include <QTemporaryDir>

#include <utility>

namespace oblino {

namespace {

const QString service = QStringLiteral("org.freedesktop.portal.Desktop");
const QString path = QStringLiteral("/org/freedesktop/portal/desktop");
const QString interface = QStringLiteral("org.freedesktop.portal.Email");
const QString requestInterface = QStringLiteral("org.freedesktop.portal.Request");
const QString responseSignal = QStringLiteral("Response");
constexpr uint endedOtherwise = 2; // neither done nor cancelled by the user

} // namespace

EmailPortal::EmailPortal(const QDBusConnection &bus, const QString &folder)
    : m_bus(bus)
    , m_drafted(folder)
{
    forget(); // what a killed program left
    qDBusRegisterMetaType<QList<QDBusUnixFileDescriptor>>();
}

EmailPortal::~EmailPortal()
{
    forget();
}

// A portal that is not running yet is started by the question; the owner of its name would not show that.
void EmailPortal::whenPresent(QObject *context, const std::function<void()> &present)
{
    QDBusMessage get = QDBusMessage::createMethodCall(
        service, path, QStringLiteral("org.freedesktop.DBus.Properties"), QStringLiteral("Get"));
    get << interface << QStringLiteral("version");
    auto *watcher = new QDBusPendingCallWatcher(m_bus.asyncCall(get), context);
    connect(watcher, &QDBusPendingCallWatcher::finished, context, [watcher, present] {
        watcher->deleteLater();
        if (!watcher->isError())
            present();
    });
}

void EmailPortal::compose(const QString &body, const QImage &picture, const QString &fileName, Failed failed)
{
    leaveRequest();
    if (const QString error = write(picture, fileName); !error.isEmpty())
        return failed(error);
    QFile file(m_file);
    if (!file.open(QIODevice::ReadOnly))
        return failed(file.errorString());
    m_failed = std::move(failed);
    const QString token = QStringLiteral("oblino%1").arg(++m_drafts);
    followRequest(token);
    const QList<QDBusUnixFileDescriptor> attachments = {QDBusUnixFileDescriptor(file.handle())};
    const QVariantMap options = {{QStringLiteral("handle_token"), token},
                                 {QStringLiteral("body"), body},
                                 {QStringLiteral("attachment_fds"), QVariant::fromValue(attachments)}};
    QDBusMessage call =
        QDBusMessage::createMethodCall(service, path, interface, QStringLiteral("ComposeEmail"));
    call << QString() << options;
    auto *watcher = new QDBusPendingCallWatcher(m_bus.asyncCall(call), this);
    connect(watcher, &QDBusPendingCallWatcher::finished, this, [this, watcher, request = m_request] {
        watcher->deleteLater();
        if (!watcher->isError() || request != m_request)
            return;
        leaveRequest();
        std::exchange(m_failed, {})(watcher->error().message());
    });
}

void EmailPortal::forget()
{
    m_folder.reset();
    if (!m_drafted.isEmpty()) // which would be the working folder
        QDir(m_drafted).removeRecursively();
}

void EmailPortal::takeResponse(uint response)
{
    if (m_request.isEmpty()) // the second response to one request
        return;
    leaveRequest();
    if (response == endedOtherwise)
        std::exchange(m_failed, {})(tr("the desktop has opened no draft."));
}

QString EmailPortal::write(const QImage &picture, const QString &fileName)
{
    forget();
    QDir().mkpath(m_drafted);
    m_folder = std::make_unique<QTemporaryDir>(m_drafted + QStringLiteral("/XXXXXX"));
    if (!m_folder->isValid())
        return m_folder->errorString();
    QFile file(m_folder->filePath(fileName));
    if (!file.open(QIODevice::WriteOnly) || !picture.save(&file, "PNG") || !file.flush())
        return file.errorString();
    m_file = file.fileName();
    return {};
}

// The portal names the request after the caller and the token, so that no response is missed. The service is
// left out because naming it would mean waiting for its owner.
void EmailPortal::followRequest(const QString &token)
{
    const QString caller = m_bus.baseService().mid(1).replace(QLatin1Char('.'), QLatin1Char('_'));
    m_request = path + QStringLiteral("/request/%1/%2").arg(caller, token);
    m_bus.connect(QString(), m_request, requestInterface, responseSignal, this, SLOT(takeResponse(uint)));
}

void EmailPortal::leaveRequest()
{
    if (!m_request.isEmpty())
        m_bus.disconnect(QString(), m_request, requestInterface, responseSignal, this,
                         SLOT(takeResponse(uint)));
    m_request.clear();
}

} // namespace oblino
