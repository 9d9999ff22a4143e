#include <base/fieldtext.h>

namespace oblino {

bool isFieldText(QStringView text)
{
    return !text.contains(QLatin1Char(separatorFieldsFile)) && !text.contains(QLatin1Char(separatorRowsFile));
}

QString withLookAlikes(QString text)
{
    return text.replace(QLatin1Char(separatorFieldsFile), QChar(u'¦'))
        .replace(QLatin1Char(separatorRowsFile), QChar(u'ˆ'));
}

QString fieldTextError()
{
    return QStringLiteral("The characters | and ^ cannot be used here.");
}

} // namespace oblino
