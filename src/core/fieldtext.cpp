#include <core/fieldtext.h>

namespace oblino {

bool isFieldText(QStringView text)
{
    return !text.contains(QLatin1Char('|')) && !text.contains(QLatin1Char('^'));
}

QString whyNotFieldText()
{
    return QStringLiteral("The characters | and ^ cannot be used here.");
}

} // namespace oblino
