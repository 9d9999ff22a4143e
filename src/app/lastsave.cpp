#include <app/lastsave.h>

#include <base/alert.h>
#include <base/unsavedwork.h>
#include <ui/uiutil.h>

#include <QCoreApplication>
#include <QDir>
#include <QFileDialog>
#include <QSaveFile>
#include <QWidget>

#include <algorithm>

namespace oblino {

namespace {

QString tr(const char *text)
{
    return QCoreApplication::translate("oblino::LastSave", text);
}

// @return an error in words for the user, empty when it was written
QString write(const QByteArray &content, const QString &path)
{
    QSaveFile file(path);
    file.setDirectWriteFallback(true);
    if (file.open(QIODevice::WriteOnly) && file.write(content) == content.size() && file.commit())
        return {};
    return tr("“%1” could not be written: %2.").arg(path, file.errorString());
}

} // namespace

LastSave::LastSave(QWidget &mainWindow, UIUtil &utilities)
    : m_mainWindow(mainWindow)
    , m_utilities(utilities)
{
}

QList<UnsavedWork *> LastSave::unsaved() const
{
    QList<UnsavedWork *> works;
    for (QWidget *window : QList<QWidget *>{&m_mainWindow} + m_mainWindow.findChildren<QWidget *>()) {
        auto *work = dynamic_cast<UnsavedWork *>(window);
        if (work && work->isUnsaved())
            works.append(work);
    }
    return works;
}

QList<LastSave::Failure> LastSave::failures() const
{
    QList<Failure> failures;
    for (UnsavedWork *work : unsaved()) {
        const QString error = work->saveNow();
        if (!error.isEmpty() && !m_elsewhere.contains(work))
            failures.append({work, error});
    }
    return failures;
}

bool LastSave::confirmed()
{
    m_elsewhere.clear();
    for (;;) {
        const QList<Failure> failed = failures();
        if (failed.isEmpty())
            return true;
        const Answer answer = asked(failed);
        if (answer == Cancel) {
            m_elsewhere.clear(); // what is changed from now on lies nowhere
            return false;
        }
        if (answer == QuitWithoutSaving || savedElsewhere(failed))
            return true;
    }
}

LastSave::Answer LastSave::asked(const QList<Failure> &failures) const
{
    QStringList lines;
    for (const Failure &failure : failures)
        lines += tr("%1: %2").arg(failure.work->workTitle(), failure.error);
    lines += QString();
    lines += tr("If you quit all the same, Oblino tries to keep a copy, and offers it at the next start.");
    const Alert::Question question = {
        .messageText = tr("Not everything could be saved."),
        .informativeText = lines.join(u'\n'),
        .buttons = {tr("Save elsewhere…"), tr("Quit without saving"), tr("Cancel")},
        .escapeButton = Cancel};
    return static_cast<Answer>(m_utilities.ask(question).value_or(Cancel));
}

bool LastSave::savedElsewhere(const QList<Failure> &failures)
{
    for (const Failure &failure : failures) {
        const QString path = QFileDialog::getSaveFileName(
            &m_mainWindow, tr("Save elsewhere: %1").arg(failure.work->workTitle()),
            QDir::home().filePath(failure.work->unsavedFileName()));
        if (path.isEmpty())
            return false;
        if (const QString error = write(failure.work->unsavedContent(), path); !error.isEmpty()) {
            m_utilities.dialogOK(error);
            return false;
        }
        m_elsewhere.append(failure.work);
    }
    return true;
}

void LastSave::perform()
{
    for (const Failure &failure : failures())
        (void)failure.work->rescue();
}

} // namespace oblino
