#include <controls/refusingvalidator.h>

#include <QLineEdit>
#include <QToolTip>

namespace oblino {

namespace {

// A carriage return goes with the line feed that follows it, and the position with the text before it.
void makeOneLine(QString &text, int &position)
{
    for (qsizetype at = text.indexOf(QLatin1String("\r\n")); at >= 0;
         at = text.indexOf(QLatin1String("\r\n"), at)) {
        text.remove(at, 1);
        position -= at < position ? 1 : 0;
    }
    for (QChar &character : text) {
        const QChar::Category category = character.category();
        if (category == QChar::Other_Control || category == QChar::Separator_Line ||
            category == QChar::Separator_Paragraph)
            character = QLatin1Char(' ');
    }
}

} // namespace

RefusingValidator::RefusingValidator(Predicate accepts, const QString &why, QLineEdit *field)
    : QValidator(field)
    , m_accepts(std::move(accepts))
{
    field->setValidator(this);
    connect(field, &QLineEdit::inputRejected, this,
            [field, why] { QToolTip::showText(field->mapToGlobal(QPoint(0, field->height())), why, field); });
}

QValidator::State RefusingValidator::validate(QString &input, int &position) const
{
    makeOneLine(input, position);
    return m_accepts(input) ? Acceptable : Invalid;
}

void RefusingValidator::fixup(QString &input) const
{
    for (QChar &character : input) {
        if (!m_accepts(QStringView(&character, 1)))
            character = QLatin1Char(' ');
    }
}

} // namespace oblino
