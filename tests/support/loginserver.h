#pragma once

#include <platform/cloud/cloudaccount.h>

#include <QTcpServer>
#include <QTcpSocket>
#include <QtEndian>

namespace oblino {

/// A database server on this machine, as far as the sign-in goes: it asks for the password in clear text,
/// keeps it, and refuses it. It needs the event loop of the thread that made it.
class LoginServer : public QTcpServer
{
public:
    LoginServer()
    {
        listen(QHostAddress::LocalHost);
        connect(this, &QTcpServer::newConnection, this, [this] {
            ++guests;
            QTcpSocket *guest = nextPendingConnection();
            connect(guest, &QTcpSocket::disconnected, this, [this] { --guests; });
            if (!isSilent)
                connect(guest, &QTcpSocket::readyRead, this, [this, guest] { converse(*guest); });
        });
    }

    [[nodiscard]] CloudAccount account() const
    {
        return {.host = QStringLiteral("127.0.0.1"),
                .port = serverPort(),
                .database = QStringLiteral("tasks"),
                .user = QStringLiteral("ann"),
                .tlsMode = TlsMode::Disable};
    }

    bool isSilent = false; ///< whether guests wait in vain
    int guests = 0;        ///< who are connected
    QStringList passwords; ///< that were offered

private:
    void converse(QTcpSocket &guest)
    {
        const bool isPassword = guest.peek(1) == "p";
        const qint64 header = isPassword ? 5 : 4;
        const QByteArray start = guest.peek(header);
        const qint64 size =
            start.size() < header ? -1 : qFromBigEndian<quint32>(start.constData() + header - 4) + header - 4;
        if (size < 0 || guest.bytesAvailable() < size)
            return;
        const QByteArray message = guest.read(size);
        if (!isPassword) {
            guest.write(QByteArray::fromHex("520000000800000003"));
            return;
        }
        passwords += QString::fromUtf8(message.mid(header).chopped(1));
        QByteArray refusal = "SFATAL|VFATAL|C28P01|Mthe password is wrong||";
        refusal.replace('|', '\0');
        const quint32 length = qToBigEndian(static_cast<quint32>(refusal.size() + 4));
        guest.write("E" + QByteArray(reinterpret_cast<const char *>(&length), sizeof length) + refusal);
        guest.disconnectFromHost();
    }
};

} // namespace oblino
