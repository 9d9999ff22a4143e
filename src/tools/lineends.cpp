#include <tools/lineends.h>

#include <QList>
#include <QStringView>

#include <algorithm>

namespace oblino {

namespace {

struct Lines
{
    QList<QStringView> texts;
    QList<QStringView> ends; // one less
};

// What a text control takes for the end of a line.
bool isLineEnd(QChar character)
{
    return character == u'\n' || character == u'\r' || character == QChar::ParagraphSeparator ||
           character == QChar(0xfdd0) || character == QChar(0xfdd1);
}

Lines linesOf(QStringView text)
{
    Lines lines;
    qsizetype start = 0;
    for (qsizetype at = 0; at < text.size(); ++at) {
        if (!isLineEnd(text[at]))
            continue;
        const bool isPair = text[at] == u'\r' && at + 1 < text.size() && text[at + 1] == u'\n';
        lines.texts += text.sliced(start, at - start);
        lines.ends += text.sliced(at, isPair ? 2 : 1);
        at += isPair ? 1 : 0;
        start = at + 1;
    }
    lines.texts += text.sliced(start);
    return lines;
}

} // namespace

QString withLineEnds(const QString &edited, const QString &original)
{
    const Lines from = linesOf(original);
    const QList<QStringView> texts = QStringView(edited).split(QChar::ParagraphSeparator);
    const auto firsts = std::mismatch(texts.begin(), texts.end(), from.texts.begin(), from.texts.end());
    const qsizetype same = firsts.first - texts.begin();
    const auto lasts = std::mismatch(texts.rbegin(), texts.rend(), from.texts.rbegin(), from.texts.rend());
    const qsizetype sameAtEnd = lasts.first - texts.rbegin();
    const qsizetype added = texts.size() - from.texts.size();
    const QStringView usual = from.ends.isEmpty() ? QStringView(u"\n") : from.ends.first();

    QString result;
    result.reserve(edited.size() + texts.size());
    for (qsizetype line = 0; line < texts.size(); ++line) {
        result += texts[line];
        if (line + 1 == texts.size())
            break;
        const bool isBefore = line < same && line < from.ends.size();
        const bool isAfter = line + 1 >= texts.size() - sameAtEnd && line >= added;
        result += isBefore ? from.ends[line] : isAfter || added == 0 ? from.ends[line - added] : usual;
    }
    return result;
}

QString withControlLineEnds(QString text)
{
    text.replace(QLatin1String("\r\n"), QString(QChar::ParagraphSeparator));
    std::replace_if(text.begin(), text.end(), isLineEnd, QChar(QChar::ParagraphSeparator));
    return text;
}

} // namespace oblino
