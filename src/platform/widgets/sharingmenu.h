#pragma once

#include <platform/sharingpicker.h>

#include <QUrl>

class QWidget;

namespace oblino {

/// Offers a text in a menu: copy it, open it as the draft of an e-mail, save it as a file.
class SharingMenu : public SharingPicker
{
public:
    void show(const QString &text, QObject *control) override;

    /// The address that opens a mail program with the text as the body of a draft (RFC 6068).
    [[nodiscard]] static QUrl draftOf(const QString &text);

private:
    static void saveAsFile(const QString &text, QWidget *window);
};

} // namespace oblino
