#pragma once

#include <QMap>
#include <QStringList>
#include <QWidget>

class QLabel;

namespace oblino {

class NoticeLabel;

/// Sentences for the user below the table, whole: what is wrong for as long as it is, and what has happened
/// until something else does or it is put away. It is hidden while there is nothing to tell.
class NoticeBar : public QWidget
{
    Q_OBJECT

public:
    explicit NoticeBar(QWidget *parent = nullptr);

    /// Tells what has happened, in place of what was told of that before.
    void showNotices(const QStringList &notices);
    /// Tells what is wrong with something, or with an empty sentence that nothing is.
    void setTrouble(const QString &thing, const QString &sentence);
    /// All that stands here.
    [[nodiscard]] QString notice() const;
    /// Tells nothing any more.
    void putAway();

private:
    void show();

    NoticeLabel *m_notice;
    QLabel *m_mark;                    // of trouble
    QMap<QString, QString> m_troubles; // by what is in it
    QStringList m_notices;
};

} // namespace oblino
