#include <core/taskmanager.h>

#include <files/defaults.h>

namespace oblino {

void TaskManager::setTwilioSID(const QString &twilioSID)
{
    defaults.setText(defaultsKeys::keyOne, twilioSID);
}

void TaskManager::setTwilioSecret(const QString &twillioSecret)
{
    defaults.setText(defaultsKeys::keyTwo, twillioSecret);
}

void TaskManager::setTwilioSendingPhoneNo(const QString &twillioSendingPhoneNo)
{
    defaults.setText(defaultsKeys::keyThree, twillioSendingPhoneNo);
}

QString TaskManager::getTwilioSID() const
{
    return text(defaultsKeys::keyOne);
}

QString TaskManager::getTwilioSecret() const
{
    return text(defaultsKeys::keyTwo);
}

QString TaskManager::getTwilioSendingPhoneNo() const
{
    return text(defaultsKeys::keyThree);
}

void TaskManager::setNotification(bool yn)
{
    defaults.setBool(defaultsKeys::keyFour, yn);
}

bool TaskManager::getNotification() const
{
    return defaults.boolean(defaultsKeys::keyFour);
}

QString TaskManager::getMessageTitle() const
{
    return text(defaultsKeys::keyFive);
}

void TaskManager::setMessageTitle(const QString &messageTitle)
{
    defaults.setText(defaultsKeys::keyFive, messageTitle);
}

QString TaskManager::getMessageFooter() const
{
    return text(defaultsKeys::keyEight);
}

void TaskManager::setMessageFooter(const QString &messageFooter)
{
    defaults.setText(defaultsKeys::keyEight, messageFooter);
}

void TaskManager::setOverwrite(bool yn)
{
    defaults.setBool(defaultsKeys::keySix, yn);
}

bool TaskManager::getOverwrite() const
{
    return defaults.boolean(defaultsKeys::keySix);
}

void TaskManager::setDelay(qint64 ms)
{
    defaults.setInteger(defaultsKeys::keyNine, ms);
}

qint64 TaskManager::getDelay() const
{
    return defaults.integer(defaultsKeys::keyNine);
}

void TaskManager::setTestOhoneNo(const QString &testPhoneNo)
{
    defaults.setText(defaultsKeys::keySeven, testPhoneNo);
}

QString TaskManager::getTestPhoneNo() const
{
    return text(defaultsKeys::keySeven);
}

QString TaskManager::eraseSettingsCopies()
{
    return defaults.eraseCopies();
}

bool TaskManager::saveSettings()
{
    return defaults.save();
}

QString TaskManager::text(const QString &key) const
{
    return defaults.text(key).value_or(QString());
}

} // namespace oblino
