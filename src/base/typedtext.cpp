#include <base/typedtext.h>

namespace oblino {

QString foldedTyping(const QString &text)
{
    QString folded = text.normalized(QString::NormalizationForm_KC).toCaseFolded().simplified();
    folded.removeIf([](QChar c) { return c.category() == QChar::Other_Format; }); // marks of direction
    for (QChar &c : folded) {
        if (const int digit = c.digitValue(); digit >= 0)
            c = QLatin1Char(static_cast<char>('0' + digit));
        else if (c == u'\u2212' || c == u'\u2010' || c == u'\u2011') // a minus sign, hyphens
            c = u'-';
    }
    return folded;
}

} // namespace oblino
