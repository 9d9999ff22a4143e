#pragma once

#include <QDateTime>
#include <QList>
#include <QObject>
#include <QString>

namespace oblino {

/// What the user was told in this run, so that it can be read again when the next sentence has taken its
/// place. The oldest of very many is forgotten.
class NoticeLog : public QObject
{
    Q_OBJECT

public:
    struct Notice
    {
        QDateTime time;
        QString text;
    };

    using QObject::QObject;

    /// Adds what is told now; an empty text is none.
    void add(const QString &text);

    /// Oldest first.
    [[nodiscard]] const QList<Notice> &list() const { return m_notices; }

Q_SIGNALS:
    void added();

private:
    QList<Notice> m_notices;
};

} // namespace oblino
