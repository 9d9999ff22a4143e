#pragma once

#include <QImage>
#include <QList>
#include <QRect>
#include <QString>

namespace oblino {

/// The steps by which a picture was changed, to be undone and redone. Of each it keeps the pixels of the
/// rectangle that the step changed, where both pictures are plain and of one size, else the other picture;
/// the oldest steps go where all that is more than the limit.
class BoardHistory
{
public:
    /// @param limit  in bytes
    explicit BoardHistory(qint64 limit = qint64(100) << 20)
        : m_limit(limit)
    {
    }

    /// A step has been done. Nothing where the pictures are the same.
    /// @param name  such as "Stroke"
    void record(const QString &name, const QImage &before, const QImage &after);

    /// The name of the step that would be undone, or redone; empty where there is none.
    [[nodiscard]] QString undoName() const { return nameOf(m_done); }
    [[nodiscard]] QString redoName() const { return nameOf(m_undone); }

    /// @param now  the picture as the last step has left it
    /// @return the picture before the step that is undone; after the one that is redone. `now` without any.
    [[nodiscard]] QImage undo(const QImage &now) { return move(m_done, m_undone, now); }
    [[nodiscard]] QImage redo(const QImage &now) { return move(m_undone, m_done, now); }

    void clear();

private:
    struct Step
    {
        QString name;
        QRect changed; // null for the whole picture
        QImage pixels; // of the other side
    };
    using Steps = QList<Step>;

    [[nodiscard]] static QString nameOf(const Steps &steps);
    [[nodiscard]] static QImage move(Steps &from, Steps &to, const QImage &now);

    Steps m_done;
    Steps m_undone; // the next one last
    qint64 m_limit;
};

} // namespace oblino
