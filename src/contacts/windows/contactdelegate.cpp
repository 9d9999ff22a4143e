#include <contacts/windows/contactdelegate.h>

#include <base/fieldtext.h>
#include <contacts/contactmodel.h>
#include <controls/refusingvalidator.h>

#include <QAbstractItemView>
#include <QHelpEvent>
#include <QLineEdit>
#include <QToolTip>
#include <QValidator>

#include <limits>

namespace oblino {

namespace {

// More than any cell or tool tip shows; laying out a text of a megabyte holds the window up.
constexpr int shownLength = 500;

constexpr int padding = 5; // pixels, so that a text stands below the title of its column

constexpr const char *textAtFirst = "textAtFirst"; // property of a line edit

} // namespace

void ContactDelegate::paint(QPainter *painter, const QStyleOptionViewItem &option,
                            const QModelIndex &index) const
{
    QStyleOptionViewItem cell = option;
    initStyleOption(&cell, index);
    option.widget->style()->drawPrimitive(QStyle::PE_PanelItemViewItem, &cell, painter, option.widget);
    cell = option;
    cell.rect.adjust(padding, 0, -padding, 0);
    QStyledItemDelegate::paint(painter, cell, index);
}

QWidget *ContactDelegate::createEditor(QWidget *parent, const QStyleOptionViewItem & /*option*/,
                                       const QModelIndex &index) const
{
    const bool name = index.column() == NameColumn;
    auto *field = new QLineEdit(parent);
    field->setObjectName(name ? QStringLiteral("nameField") : QStringLiteral("phoneField"));
    field->setAccessibleName(name ? tr("Name") : tr("Phone Number"));
    field->setTextMargins(padding, 0, padding, 0);
    field->setMaxLength(std::numeric_limits<int>::max());
    new RefusingValidator(isFieldText, fieldTextError(), field);
    return field;
}

void ContactDelegate::setEditorData(QWidget *editor, const QModelIndex &index) const
{
    auto *field = qobject_cast<QLineEdit *>(editor);
    if (!field)
        return;
    QString text = index.data(Qt::EditRole).toString();
    field->validator()->fixup(text);
    field->setText(text);
    field->setProperty(textAtFirst, field->text());
}

// A text that was only looked at stays as it is stored, with characters that the line edit has replaced. Its
// isModified() is no help: the line edit forgets it where the validator changes the text.
void ContactDelegate::setModelData(QWidget *editor, QAbstractItemModel *model, const QModelIndex &index) const
{
    const auto *field = qobject_cast<QLineEdit *>(editor);
    if (field && field->text() != field->property(textAtFirst).toString())
        model->setData(index, field->text());
}

bool ContactDelegate::helpEvent(QHelpEvent *event, QAbstractItemView *view,
                                const QStyleOptionViewItem &option, const QModelIndex &index)
{
    if (event->type() != QEvent::ToolTip)
        return QStyledItemDelegate::helpEvent(event, view, option, index);
    const bool cut = index.isValid() && sizeHint(option, index).width() > option.rect.width();
    const QString text = index.data().toString().left(shownLength).toHtmlEscaped();
    QToolTip::showText(event->globalPos(), cut ? QLatin1String("<p>") + text : QString(), view);
    return true;
}

void ContactDelegate::initStyleOption(QStyleOptionViewItem *option, const QModelIndex &index) const
{
    QStyledItemDelegate::initStyleOption(option, index);
    option->text.truncate(shownLength);
}

} // namespace oblino
