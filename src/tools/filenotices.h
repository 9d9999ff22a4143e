#pragma once

#include <QString>
#include <QStringList>

namespace oblino {

/// What the line at the bottom of a window says of the window's file: what last happened to it, and as long
/// as it is so, that what is shown is not saved.
class FileNotices
{
public:
    /// @param notices  whole sentences, which take the place of earlier ones; without any, those stay
    void tell(const QStringList &notices);

    /// @param reason  why it is not saved, a sentence or the end of one; empty when it is saved
    void setFailure(const QString &reason) { m_failure = reason; }

    [[nodiscard]] QString text() const;

private:
    QString m_failure;
    QStringList m_notices;
};

} // namespace oblino
