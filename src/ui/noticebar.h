#pragma once

#include <QWidget>

class QLabel;

namespace oblino {

class NoticeLabel;

/// Sentences for the user below the table, whole and for as long as they are true or until they are put away.
/// It is hidden while there is nothing to tell.
class NoticeBar : public QWidget
{
    Q_OBJECT

public:
    explicit NoticeBar(QWidget *parent = nullptr);

    /// Shows the sentences; without any, those stay that were told before, unless they told of a failure that
    /// has passed.
    /// @param isFailing  whether something is not as it should be now
    void tell(const QStringList &notices, bool isFailing);
    [[nodiscard]] QString notice() const;
    /// Tells nothing any more.
    void putAway();

private:
    NoticeLabel *m_notice;
    QLabel *m_mark; // of a failure
    bool m_wasFailing = false;
};

} // namespace oblino
