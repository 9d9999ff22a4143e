#pragma once

#include <support/store.h>
#include <support/widgets.h>

#include <controls/noticelabel.h>
#include <files/documents.h>
#include <tools/windows/viewcontrollernotes.h>

#include <QPointer>

namespace oblino {

/// A home with a notes file of a test's own, or with none, and a pad on it.
struct Notes : Store
{
    explicit Notes(const std::optional<QByteArray> &bytes = {},
                   std::chrono::milliseconds interval = std::chrono::seconds(30),
                   std::chrono::milliseconds afterLastKey = std::chrono::seconds(30),
                   FileCalls &calls = FileCalls::posix())
        : documents(home.documents(), home.privateFolder(), calls)
    {
        if (bytes)
            TemporaryHome::write(path, *bytes);
        pad = new ViewControllerNotes(store, documents, nullptr, interval, afterLastKey);
        pad->setAttribute(Qt::WA_DeleteOnClose);
        pad->show();
    }
    ~Notes() { delete pad; }

    [[nodiscard]] QPlainTextEdit &edit() const { return find<QPlainTextEdit>(*pad, "textEdit"); }
    [[nodiscard]] QString notice() const { return find<NoticeLabel>(*pad, "notice").notice(); }
    void type(const QString &text) const { QTest::keyClicks(&edit(), text); }
    void close() const
    {
        pad->close();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }
    [[nodiscard]] QByteArray saved() const { return TemporaryHome::content(path); }

    QString path = home.documents() + QStringLiteral("/ltodonotes.txt");
    Documents documents;
    QPointer<ViewControllerNotes> pad;
};

} // namespace oblino
