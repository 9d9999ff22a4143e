#pragma once

#include <QString>
#include <QStringList>

namespace oblino {

/// A kind of object in an object store. Every attribute is an optional text.
struct Entity
{
    QString name;
    QStringList attributes;
};

} // namespace oblino
