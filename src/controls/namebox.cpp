#include <controls/namebox.h>

#include <QAbstractItemView>
#include <QAccessible>
#include <QCompleter>
#include <QFocusEvent>
#include <QLineEdit>

#include <algorithm>

namespace oblino {

namespace {

constexpr int shownLength = 24; // characters

} // namespace

QString soleMatch(const QString &typed, const QStringList &names)
{
    const QString sought = typed.trimmed();
    if (sought.isEmpty())
        return {};
    const auto sole = [&](auto &&isMatch) {
        QStringList found = names;
        found.removeIf([&](const QString &name) { return !isMatch(name); });
        found.removeDuplicates();
        return found.size() == 1 ? found.first() : QString();
    };
    for (const QString &match :
         {sole([&](const QString &name) { return name.compare(sought, Qt::CaseInsensitive) == 0; }),
          sole([&](const QString &name) { return name.startsWith(sought, Qt::CaseInsensitive); }),
          sole([&](const QString &name) { return name.contains(sought, Qt::CaseInsensitive); })}) {
        if (!match.isEmpty())
            return match;
    }
    return {};
}

NameBox::NameBox(QWidget *parent)
    : QComboBox(parent)
{
    setEditable(true);
    setInsertPolicy(QComboBox::NoInsert);
    // Its layout would measure every name of a long directory.
    setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    setMinimumContentsLength(shownLength);
    completer()->setCompletionMode(QCompleter::PopupCompletion);
    completer()->setFilterMode(Qt::MatchContains);
    completer()->setCaseSensitivity(Qt::CaseInsensitive);
    // On leaving, the box would take the first name that differs from the text by case alone.
    disconnect(lineEdit(), &QLineEdit::editingFinished, this, nullptr);
    connect(lineEdit(), &QLineEdit::textEdited, this, [this] {
        m_isTyped = true;
        passNameTo(*completer()->popup());
    });
    connect(this, &QComboBox::activated, this, &NameBox::nameEntered);
}

QStringList NameBox::names() const
{
    QStringList names;
    names.reserve(count());
    for (int i = 0; i < count(); ++i)
        names += itemText(i);
    return names;
}

void NameBox::setNames(const QStringList &names)
{
    const QString text = currentText();
    clear();
    addItems(names);
    setName(text);
}

void NameBox::setName(const QString &name)
{
    setCurrentIndex(findText(name, Qt::MatchFixedString | Qt::MatchCaseSensitive));
    setEditText(name);
}

void NameBox::showPopup()
{
    passNameTo(*view());
    QComboBox::showPopup();
}

void NameBox::showEvent(QShowEvent *event)
{
    passNameTo(*lineEdit());
    QComboBox::showEvent(event);
}

// A screen reader is told of the part that has the focus, which has no name of its own.
void NameBox::passNameTo(QWidget &part)
{
    if (const QAccessibleInterface *box = QAccessible::queryAccessibleInterface(this))
        part.setAccessibleName(box->text(QAccessible::Name)); // that of its label, without any other
}

bool NameBox::isKnown() const
{
    return currentText().trimmed().isEmpty() || findText(currentText().trimmed(), Qt::MatchFixedString) >= 0;
}

void NameBox::focusInEvent(QFocusEvent *event)
{
    m_isTyped = m_isTyped && event->reason() == Qt::PopupFocusReason;
    QComboBox::focusInEvent(event);
}

void NameBox::focusOutEvent(QFocusEvent *event)
{
    QComboBox::focusOutEvent(event);
    const bool isForNow =
        event->reason() == Qt::PopupFocusReason || event->reason() == Qt::ActiveWindowFocusReason;
    if (isForNow)
        return;
    const bool isTab = event->reason() == Qt::TabFocusReason;
    if (const QString match = m_isTyped && isTab ? soleMatch(currentText(), names()) : QString();
        !match.isEmpty())
        setName(match);
    Q_EMIT nameEntered();
}

} // namespace oblino
