#include <controls/emaildraft.h>

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QImage>
#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryDir>

#include <utility>

namespace oblino {

namespace {

const QString program = QStringLiteral("xdg-email");

} // namespace

EmailDraft::EmailDraft(QString folder)
    : m_drafts(std::move(folder))
{
    discard(); // what a killed program left
}

EmailDraft::~EmailDraft()
{
    discard();
}

bool EmailDraft::isPossible()
{
    return !QStandardPaths::findExecutable(program).isEmpty();
}

QString EmailDraft::compose(const QString &body, const QImage &picture, const QString &fileName)
{
    discard();
    QDir().mkpath(m_drafts);
    m_folder = std::make_unique<QTemporaryDir>(m_drafts + QStringLiteral("/XXXXXX"));
    if (!m_folder->isValid())
        return m_folder->errorString();
    QFile file(m_folder->filePath(fileName));
    if (!file.open(QIODevice::WriteOnly) || !picture.save(&file, "PNG") || !file.flush())
        return file.errorString();
    const QStringList arguments = {QStringLiteral("--utf8"), QStringLiteral("--body"), body,
                                   QStringLiteral("--attach"), file.fileName()};
    return QProcess::startDetached(program, arguments)
               ? QString()
               : QCoreApplication::translate("EmailDraft", "%1 could not be started.").arg(program);
}

void EmailDraft::discard()
{
    m_folder.reset();
    if (!m_drafts.isEmpty()) // which would be the working folder
        QDir(m_drafts).removeRecursively();
}

} // namespace oblino
