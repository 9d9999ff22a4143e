#include <messaging/sendingsettings.h>

#include <core/taskmanager.h>

#include <QCoreApplication>
#include <QRegularExpression>

#include <algorithm>
#include <limits>

namespace oblino {

namespace {

QString tr(const char *text)
{
    return QCoreApplication::translate("MessagingSettings", text);
}

} // namespace

QStringList missingSettings(const QString &sid, const QString &secret, const QString &sendingPhoneNo,
                            bool isOn)
{
    QStringList missing;
    if (sid.isEmpty())
        missing += tr("the account SID");
    if (secret.isEmpty())
        missing += tr("the secret");
    if (sendingPhoneNo.isEmpty())
        missing += tr("the sending number");
    if (!isOn)
        missing += tr("the switch that allows sending");
    return missing;
}

QStringList missingSettings(const TaskManager &settings)
{
    return missingSettings(settings.getTwilioSID(), settings.getTwilioSecret(),
                           settings.getTwilioSendingPhoneNo(), settings.getNotification());
}

qint64 leadingInteger(const QString &text)
{
    static const QRegularExpression number(QStringLiteral("^\\s*([+-]?)0*([0-9]*)"));
    const QRegularExpressionMatch match = number.match(text);
    const bool isNegative = match.captured(1) == QLatin1String("-");
    using Limits = std::numeric_limits<qint32>;
    constexpr qsizetype mostDigits = 10; // of 32 bits
    const QString digits = match.captured(2);
    qint64 value = digits.size() > mostDigits ? Limits::max() + 1LL : digits.toLongLong();
    value = isNegative ? -value : value;
    return std::clamp<qint64>(value, Limits::min(), Limits::max());
}

} // namespace oblino
