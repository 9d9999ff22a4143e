#pragma once

#include <platform/sharingpicker.h>

#include <QUrl>

class QWidget;

namespace oblino {

/// Offers the items in a menu: copy them, open the texts as the draft of an e-mail, save as a file. The texts
/// are joined; the file is the picture where there is one, else the texts.
class SharingMenu : public SharingPicker
{
public:
    using SharingPicker::show;
    void show(const QList<SharingItem> &items, QObject *control) override;

    /// The address that opens a mail program with the text as the body of a draft (RFC 6068).
    [[nodiscard]] static QUrl draftOf(const QString &text);

private:
    struct Content;

    static void saveAsFile(const Content &content, QWidget *window);
};

} // namespace oblino
