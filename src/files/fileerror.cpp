#include <files/fileerror.h>

#include <cerrno>

namespace oblino {

using namespace Qt::Literals::StringLiterals;

QString FileError::message() const
{
    switch (code) {
    case notRegular:
        return u"it is not a regular file"_s;
    case changed:
        return u"another program keeps changing it"_s;
    case damaged:
        return u"it is damaged"_s;
    case ENOSPC:
        return u"disk full"_s;
    default:
        return qt_error_string(code);
    }
}

QString FileError::notWritable() const
{
    return u"“%1” could not be written: %2."_s.arg(folder, message());
}

} // namespace oblino
