#pragma once

#include <QString>

#include <memory>

class QImage;
class QTemporaryDir;

namespace oblino {

/// The draft of an e-mail with a picture attached, opened in the user's mail program by `xdg-email`.
class EmailDraft
{
public:
    /// @param folder  for files of drafts; it is the object's own, and emptied
    explicit EmailDraft(QString folder);
    EmailDraft(const EmailDraft &) = delete;
    EmailDraft &operator=(const EmailDraft &) = delete;
    ~EmailDraft();

    /// Whether drafts can be opened here.
    [[nodiscard]] static bool isPossible();

    /// Opens a draft of the text with the picture as an attached PNG file of that name. The file is the
    /// user's alone and stays until the next draft, discard() or the end of this object.
    /// @return an error in words for the user, empty when the mail program was asked
    [[nodiscard]] QString compose(const QString &body, const QImage &picture, const QString &fileName);

    /// Removes the file of the last draft.
    void discard();

private:
    QString m_drafts;                        // the folder for all drafts
    std::unique_ptr<QTemporaryDir> m_folder; // of the last draft; null without one
};

} // namespace oblino
