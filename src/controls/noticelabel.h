#pragma once

#include <QLabel>
#include <QString>

namespace oblino {

/// A quiet line for what the user should know. It is as high as its text needs at the width it has, and
/// hidden while there is none. Paths break after a '/', other long words where they must. A screen reader
/// gets the text as it was set.
class NoticeLabel : public QLabel
{
    Q_OBJECT

public:
    explicit NoticeLabel(QWidget *parent = nullptr);

    /// @param notice  plain text; empty hides the line
    void setNotice(const QString &notice);
    [[nodiscard]] QString notice() const { return m_notice; }

private:
    QString m_notice;
};

} // namespace oblino
