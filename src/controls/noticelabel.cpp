#include <controls/noticelabel.h>

namespace oblino {

namespace {

// A word of more characters than this would keep the window from getting narrow.
constexpr int longestWord = 24;

// The text with invisible places at which a line may break.
QString breakable(const QString &text)
{
    constexpr QChar breakHere(0x200b);
    QString result;
    int length = 0; // of the word
    for (const QChar character : text) {
        if (length >= longestWord && !character.isLowSurrogate() && !character.isMark()) {
            result += breakHere;
            length = 0;
        }
        result += character;
        length = character.isSpace() ? 0 : length + 1;
        if (character == QLatin1Char('/')) {
            result += breakHere;
            length = 0;
        }
    }
    return result;
}

} // namespace

NoticeLabel::NoticeLabel(QWidget *parent)
    : QLabel(parent)
{
    setTextFormat(Qt::PlainText);
    setWordWrap(true);
    hide();
}

void NoticeLabel::setNotice(const QString &notice)
{
    m_notice = notice;
    setText(breakable(notice));
    setAccessibleName(notice);
    setVisible(!notice.isEmpty());
}

} // namespace oblino
