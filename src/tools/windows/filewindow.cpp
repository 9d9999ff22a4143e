#include <tools/windows/filewindow.h>

#include <base/datakind.h>
#include <base/trace.h>
#include <files/safefile.h>

#include <utility>

namespace oblino {

FileWindow::FileWindow(DataKind kind, EarlierVersions versions, QWidget *parent, QSize leastSize)
    : ToolWindow(parent, leastSize)
    , m_kind(kind)
    , m_versions(std::move(versions))
{
}

QString FileWindow::saveNow()
{
    if (isUnsaved())
        save();
    return isUnsaved() ? m_error : QString();
}

QString FileWindow::rescue()
{
    return m_versions.rescue(unsavedContent());
}

void FileWindow::dataErased(DataKind kind)
{
    if (kind != m_kind)
        return;
    forgetSteps();
    if (isVisible())
        return;
    discard();
    delete this; // not later: whoever opens the window meanwhile is to get another one
}

void FileWindow::dataRestored(DataKind kind)
{
    if (kind != m_kind)
        return;
    revert();
    forgetSteps();
}

void FileWindow::viewDidDisappear()
{
    if (isUnsaved())
        setAttribute(Qt::WA_DeleteOnClose, false);
}

void FileWindow::showNotices(const QStringList &notices)
{
    for (const QString &notice : notices)
        trace(notice);
    if (!notices.isEmpty())
        m_notices = notices;
    showState();
}

void FileWindow::setFailure(const QString &error, const QString &reason)
{
    m_error = error;
    m_reason = reason;
    showState();
}

void FileWindow::showResult(const FileWriting &writing)
{
    showNotices(writing.notices);
    setFailure(writing.error, writing.reason);
}

void FileWindow::showState()
{
    QStringList sentences = m_notices;
    if (!m_reason.isEmpty())
        sentences.prepend(QStringLiteral("Not saved: ") + m_reason +
                          (m_reason.endsWith(QLatin1Char('.')) ? QString() : QStringLiteral(".")));
    showNotice(sentences.join(QLatin1Char(' ')));
}

} // namespace oblino
