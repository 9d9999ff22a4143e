#include <platform/pasteboard.h>

#include <QClipboard>
#include <QGuiApplication>

namespace oblino {

void Pasteboard::setText(const QString &text)
{
    QGuiApplication::clipboard()->setText(text);
}

} // namespace oblino
