#include <platform/widgets/sharingmenu.h>

#include <platform/pasteboard.h>

#include <QDesktopServices>
#include <QFileDialog>
#include <QMenu>
#include <QMessageBox>
#include <QSaveFile>
#include <QScreen>
#include <QWidget>

namespace oblino {

namespace {

// The system passes an address of at most 128 KiB to another program.
constexpr qsizetype longestDraft = 122'880; // bytes

// Left of the widget, and below it where the screen ends.
QPoint placeBeside(const QWidget &widget, const QSize &menu)
{
    const QPoint left = widget.mapToGlobal(QPoint(-menu.width(), 0));
    const bool fits = left.x() >= widget.screen()->availableGeometry().left();
    return fits ? left : widget.mapToGlobal(widget.rect().bottomLeft());
}

} // namespace

void SharingMenu::show(const QString &text, QObject *control)
{
    auto *widget = qobject_cast<QWidget *>(control);
    if (!widget)
        return;
    auto *menu = new QMenu(widget);
    menu->setObjectName(QStringLiteral("sharingMenu"));
    menu->setAttribute(Qt::WA_DeleteOnClose);
    menu->setToolTipsVisible(true);
    menu->addAction(QObject::tr("&Copy"), menu, [text] { Pasteboard::setText(text); });

    const QUrl draft = draftOf(text);
    QAction *mail =
        menu->addAction(QObject::tr("&E-mail Draft"), menu, [draft] { QDesktopServices::openUrl(draft); });
    mail->setEnabled(draft.toEncoded().size() <= longestDraft);
    if (!mail->isEnabled())
        mail->setToolTip(QObject::tr("The text is too long for a draft. Save it as a file and attach that."));

    QWidget *window = widget->window();
    menu->addAction(QObject::tr("&Save as File…"), menu, [text, window] { saveAsFile(text, window); });
    menu->popup(placeBeside(*widget, menu->sizeHint()));
}

QUrl SharingMenu::draftOf(const QString &text)
{
    QString body = text;
    body.replace(QLatin1String("\r\n"), QLatin1String("\n"))
        .replace(QLatin1Char('\n'), QLatin1String("\r\n"));
    return QUrl::fromEncoded("mailto:?body=" + QUrl::toPercentEncoding(body), QUrl::StrictMode);
}

void SharingMenu::saveAsFile(const QString &text, QWidget *window)
{
    const QString path =
        QFileDialog::getSaveFileName(window, QObject::tr("Save as File"), QStringLiteral("task.txt"),
                                     QObject::tr("Text files (*.txt);;All files (*)"));
    if (path.isEmpty())
        return;
    QSaveFile file(path);
    const QByteArray bytes = text.toUtf8();
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size() || !file.commit())
        QMessageBox::warning(window, QString(),
                             QObject::tr("%1 could not be written: %2").arg(path, file.errorString()));
}

} // namespace oblino
