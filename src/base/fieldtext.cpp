#include <base/fieldtext.h>

namespace oblino {

bool isFieldText(QStringView text)
{
    return !text.contains(QLatin1Char('|')) && !text.contains(QLatin1Char('^'));
}

QString withLookAlikes(QString text)
{
    return text.replace(QLatin1Char('|'), QChar(u'¦')).replace(QLatin1Char('^'), QChar(u'ˆ'));
}

QString fieldTextError()
{
    return QStringLiteral("The characters | and ^ cannot be used here.");
}

} // namespace oblino
