#include <core/foldedtext.h>

#include <algorithm>
#include <string>

namespace oblino {

namespace {

QString decomposed(const QString &text)
{
    return text.normalized(QString::NormalizationForm_D);
}

} // namespace

QString foldedText(const QString &text)
{
    if (std::all_of(text.cbegin(), text.cend(), [](QChar unit) { return unit.unicode() < 0x80; }))
        return text.toLower();
    std::u32string points = decomposed(text).toStdU32String();
    for (char32_t &point : points)
        point = QChar::toCaseFolded(point);
    return decomposed(QString::fromStdU32String(points)); // again, as marks may fold to letters
}

} // namespace oblino
