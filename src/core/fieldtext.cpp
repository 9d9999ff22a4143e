#include <core/fieldtext.h>

namespace oblino {

bool isFieldText(QStringView text)
{
    return !text.contains(QLatin1Char('|')) && !text.contains(QLatin1Char('^'));
}

} // namespace oblino
