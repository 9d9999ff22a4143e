#pragma once

#include <base/sharingpicker.h>
#include <controls/emaildraft.h>

#include <QUrl>

class QMenu;
class QWidget;

namespace oblino {

/// Offers the items in a menu: copy them, open them as the draft of an e-mail, save as a file. The texts are
/// joined; the file is the picture where there is one, else the texts. The draft has the picture where
/// xdg-email is installed, else the texts alone.
class SharingMenu : public SharingPicker
{
public:
    /// @param drafts  the folder for what drafts need; see EmailDraft
    explicit SharingMenu(const QString &drafts);

    void show(const QVariantList &items, QObject *control, Edge edge) override;

    /// Removes what was written for a draft.
    void removeDraft() { m_draft.discard(); }

    /// The address that opens a mail program with the text as the body of a draft (RFC 6068).
    [[nodiscard]] static QUrl draftOf(const QString &text);

private:
    struct Content;

    void addDrafts(QMenu &menu, const Content &content, QWidget *window);
    void openDraft(const Content &content, QWidget *window);
    static void saveAsFile(const Content &content, QWidget *window);

    EmailDraft m_draft;
};

} // namespace oblino
