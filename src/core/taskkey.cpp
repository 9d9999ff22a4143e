#include <core/taskkey.h>

#include <QUuid>

namespace oblino {

QString newUuidText()
{
    return QUuid::createUuid().toString(QUuid::WithoutBraces).toUpper();
}

} // namespace oblino
