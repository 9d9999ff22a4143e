#pragma once

#include <base/sharingpicker.h>
#include <desktop/emailportal.h>

#include <QUrl>

class QMenu;
class QWidget;

namespace oblino {

/// Offers the items in a menu: copy them, open them as the draft of an e-mail, save as a file. The texts are
/// joined; the file is the picture where there is one, else the texts. The draft has the picture where the
/// desktop has the e-mail portal, else the texts alone.
class SharingMenu : public SharingPicker
{
public:
    /// @param bus     the session's
    /// @param drafts  the folder for what drafts need; see EmailPortal
    SharingMenu(const QDBusConnection &bus, const QString &drafts);

    void show(const QList<SharingItem> &items, QObject *control, Edge edge) override;

    /// Removes what was written for a draft.
    void forget() { m_portal.forget(); }

    /// The address that opens a mail program with the text as the body of a draft (RFC 6068).
    [[nodiscard]] static QUrl draftOf(const QString &text);

private:
    struct Content;

    void addDrafts(QMenu &menu, const Content &content, QWidget *window);
    void openDraft(const Content &content, QWidget *window);
    static void saveAsFile(const Content &content, QWidget *window);

    EmailPortal m_portal;
};

} // namespace oblino
