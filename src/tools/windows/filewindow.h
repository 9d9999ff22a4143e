#pragma once

#include <base/unsavedwork.h>
#include <controls/toolwindow.h>
#include <files/earlierversions.h>

#include <QString>
#include <QStringList>

namespace oblino {

struct FileWriting;

/// What the notes pad and the whiteboard have in common: each shows one file, and says what last happened to
/// it and, as long as it is so, that what is shown is not saved. With Qt::WA_DeleteOnClose the window all the
/// same outlives its closing while that is in no file.
class FileWindow : public ToolWindow, public UnsavedWork
{
    Q_OBJECT

public:
    /// @param versions  of the file
    FileWindow(DataKind kind, EarlierVersions versions, QWidget *parent, QSize leastSize = {});

    [[nodiscard]] DataKind kind() const { return m_kind; }

    /// Gives up what is in no file.
    virtual void discard() = 0;

    [[nodiscard]] QString saveNow() override;
    [[nodiscard]] QString rescue() override;
    void dataErased(DataKind kind) override;
    void dataRestored(DataKind kind) override;

protected:
    void viewDidDisappear() override;

    virtual void save() = 0;
    /// Shows what the file holds.
    virtual void revert() = 0;
    virtual void showNotice(const QString &notice) = 0;
    /// What was done can no longer be undone.
    virtual void forgetSteps() = 0;

    /// @param notices  whole sentences, which take the place of earlier ones; without any, those stay
    void showNotices(const QStringList &notices);
    /// Keeps why the content is not saved; nothing of that when it is.
    /// @param error   a sentence
    /// @param reason  the end of that sentence, or one of its own
    void setFailure(const QString &error, const QString &reason);
    /// What came of a save.
    void showResult(const FileWriting &writing);

private:
    void showState();

    DataKind m_kind;
    EarlierVersions m_versions;
    QString m_error;
    QString m_reason;
    QStringList m_notices;
};

} // namespace oblino
