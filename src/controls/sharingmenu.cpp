#include <controls/sharingmenu.h>

#include <QClipboard>
#include <QDesktopServices>
#include <QFileDialog>
#include <QGuiApplication>
#include <QImage>
#include <QMenu>
#include <QMessageBox>
#include <QMimeData>
#include <QSaveFile>
#include <QScreen>
#include <QWidget>

namespace oblino {

namespace {

// The system passes an address of at most 128 KiB to another program.
constexpr qsizetype longestDraft = 122'880; // bytes

const QString pictureName = QStringLiteral("whiteboard.png");

// Beside the widget, on another side where the screen has no room on the preferred one.
QPoint placeBeside(const QWidget &widget, const QSize &menu, SharingPicker::Edge edge)
{
    const QPoint left = widget.mapToGlobal(QPoint(-menu.width(), 0));
    const QPoint above = widget.mapToGlobal(QPoint(0, -menu.height()));
    const QPoint below = widget.mapToGlobal(QPoint(0, widget.height()));
    const QPoint right = widget.mapToGlobal(QPoint(widget.width(), -menu.height()));
    const QPoint preferred = edge == SharingPicker::Edge::Left ? left : above;
    const QRect screen = widget.screen()->availableGeometry();
    for (const QPoint &place : {preferred, below, above, left, right}) {
        if (screen.contains(QRect(place, menu)))
            return place;
    }
    return preferred; // the menu moves itself into the screen
}

// The control's own window may close while the menu is open.
QWidget *outermostWindow(QWidget *widget)
{
    QWidget *window = widget->window();
    while (window->parentWidget())
        window = window->parentWidget()->window();
    return window;
}

} // namespace

struct SharingMenu::Content
{
    explicit Content(const QVariantList &items)
    {
        for (const QVariant &item : items) {
            if (item.typeId() == QMetaType::QImage)
                image = item.value<QImage>();
            else
                text += item.toString();
        }
    }

    void copy() const
    {
        auto *data = new QMimeData; // of which a program that is pasted into takes what it can use
        data->setText(text);
        if (!image.isNull())
            data->setImageData(image);
        QGuiApplication::clipboard()->setMimeData(data);
    }

    bool writeTo(QIODevice &file) const
    {
        if (!image.isNull())
            return image.save(&file, "PNG");
        const QByteArray bytes = text.toUtf8();
        return file.write(bytes) == bytes.size();
    }

    QString text;
    QImage image; // null without one
};

SharingMenu::SharingMenu(const QString &drafts)
    : m_draft(drafts)
{
}

void SharingMenu::show(const QVariantList &items, QObject *control, Edge edge)
{
    auto *widget = qobject_cast<QWidget *>(control);
    if (!widget)
        return;
    const Content content(items);
    QWidget *window = outermostWindow(widget);
    auto *menu = new QMenu(window);
    menu->setObjectName(QStringLiteral("sharingMenu"));
    menu->setAttribute(Qt::WA_DeleteOnClose);
    menu->setToolTipsVisible(true);
    menu->addAction(QObject::tr("&Copy"), menu, [content] { content.copy(); });

    addDrafts(*menu, content, window);
    menu->addAction(QObject::tr("&Save as File…"), menu, [content, window] { saveAsFile(content, window); });
    menu->popup(placeBeside(*widget, menu->sizeHint(), edge));
}

void SharingMenu::addDrafts(QMenu &menu, const Content &content, QWidget *window)
{
    const QUrl draft = draftOf(content.text);
    QAction *mail = menu.addAction(QObject::tr("&E-mail Draft"));
    if (!content.image.isNull() && EmailDraft::isPossible()) {
        QObject::connect(mail, &QAction::triggered, &menu,
                         [this, content, window] { openDraft(content, window); });
        return;
    }
    QObject::connect(mail, &QAction::triggered, &menu, [draft] { QDesktopServices::openUrl(draft); });
    if (!content.image.isNull()) {
        mail->setText(QObject::tr("&E-mail Draft Without the Picture"));
        mail->setToolTip(QObject::tr("Save the picture as a file and attach that to the draft."));
    }
    mail->setEnabled(draft.toEncoded().size() <= longestDraft);
    if (!mail->isEnabled())
        mail->setToolTip(QObject::tr("The text is too long for a draft. Save it as a file and attach that."));
}

void SharingMenu::openDraft(const Content &content, QWidget *window)
{
    const QString error = m_draft.compose(content.text, content.image, pictureName);
    if (error.isEmpty())
        return;
    auto *box =
        new QMessageBox(QMessageBox::Warning, QString(),
                        QObject::tr("The draft could not be opened: %1").arg(error), QMessageBox::Ok, window);
    box->setAttribute(Qt::WA_DeleteOnClose);
    box->open();
}

QUrl SharingMenu::draftOf(const QString &text)
{
    QString body = text;
    body.replace(QLatin1String("\r\n"), QLatin1String("\n"))
        .replace(QLatin1Char('\n'), QLatin1String("\r\n"));
    return QUrl::fromEncoded("mailto:?body=" + QUrl::toPercentEncoding(body), QUrl::StrictMode);
}

void SharingMenu::saveAsFile(const Content &content, QWidget *window)
{
    const bool isImage = !content.image.isNull();
    const QString path = QFileDialog::getSaveFileName(
        window, QObject::tr("Save as File"), isImage ? pictureName : QStringLiteral("task.txt"),
        isImage ? QObject::tr("PNG pictures (*.png)") : QObject::tr("Text files (*.txt);;All files (*)"));
    if (path.isEmpty())
        return;
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly) || !content.writeTo(file) || !file.commit())
        QMessageBox::warning(window, QString(),
                             QObject::tr("%1 could not be written: %2").arg(path, file.errorString()));
}

} // namespace oblino
