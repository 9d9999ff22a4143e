
#include <controls/sharingmenu.h>
#include <support/test.h>

#include <QtWidgets>

class tst_sharingmenu : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { m_picture.fill(Qt::red); }

    void theMenuOutlivesTheWindowAndCopiesPictureAndText()
    {
        QWidget main;
        auto *window = new QDialog(&main);
        window->show();
        const TemporaryHome home;
        SharingMenu sharing(home.path(u"drafts"_s));
        sharing.show({u"a"_s, m_picture, u"b"_s}, window, SharingPicker::Edge::Top);
        delete window;
        auto *menu = main.findChild<QMenu *>(u"sharingMenu"_s);
        QVERIFY(menu && menu->isVisible());
        menu->actions().at(0)->trigger();
        const QMimeData *copied = QGuiApplication::clipboard()->mimeData();
        QCOMPARE(copied->text(), u"ab"_s);
        QCOMPARE(qvariant_cast<QImage>(copied->imageData()), m_picture);
    }

    // A program of that name stands for the desktop's, and writes down what it was given.
    void attachesThePictureToADraft()
    {
        const TemporaryHome home;
        const QByteArray path = qgetenv("PATH");
        const auto restore = qScopeGuard([&path] { qputenv("PATH", path); });
        const QString given = home.path(u"given"_s);
        TemporaryHome::write(home.path(u"xdg-email"_s),
                             u"#!/bin/sh\nprintf '%s\\n' \"$@\" > %1~; mv %1~ %1\n"_s.arg(given).toUtf8());
        QFile::setPermissions(home.path(u"xdg-email"_s), QFile::ReadOwner | QFile::ExeOwner);
        qputenv("PATH", QFileInfo(given).path().toUtf8() + ':' + path);

        QWidget window;
        auto sharing = std::make_unique<SharingMenu>(home.path(u"drafts"_s));
        QString attached;
        for (int draft = 1; draft <= 2; ++draft) {
            const QString last = attached;
            QFile::remove(given);
            press(*sharing, window, 1);
            QTRY_VERIFY(QFile::exists(given));
            const QStringList lines = QString::fromUtf8(TemporaryHome::content(given)).split(u'\n');
            QCOMPARE(lines.mid(0, 5).join(u'|'), u"--utf8|--body|Größe|below|--attach"_s);
            attached = lines.value(5);
            QCOMPARE(QImage(attached, "PNG"), m_picture);
            QVERIFY(!(QFileInfo(QFileInfo(attached).path()).permissions() & QFile::Permissions(0x0077)));
            QVERIFY(!QFile::exists(last));
        }
        sharing.reset();
        QVERIFY(!QFile::exists(attached));

        qputenv("PATH", "/nowhere");
        SharingMenu without(home.path(u"drafts"_s));
        QVERIFY(opened(without, window)->actions().at(1)->text().contains(u"Without the Picture"_s));
    }

    void savesAsAFile()
    {
        const TemporaryHome home;
        const QString path = home.path(u"whiteboard of today.png"_s);
        QWidget window;
        SharingMenu sharing(home.path(u"drafts"_s));
        QTimer::singleShot(0, &window, [&path] {
            auto *dialog = qobject_cast<QFileDialog *>(QApplication::activeModalWidget());
            QVERIFY(dialog);
            dialog->findChild<QLineEdit *>()->setText(path);
            dialog->findChild<QDialogButtonBox *>()->button(QDialogButtonBox::Save)->click();
        });
        press(sharing, window, 2);
        QCOMPARE(QImage(path, "PNG"), m_picture);
    }

private:
    QMenu *opened(SharingMenu &sharing, QWidget &window) const
    {
        sharing.show({u"Größe\n"_s, m_picture, u"below"_s}, &window, SharingPicker::Edge::Left);
        return window.findChildren<QMenu *>().last();
    }
    void press(SharingMenu &sharing, QWidget &window, int entry) const
    {
        opened(sharing, window)->actions().at(entry)->trigger();
    }

    QImage m_picture = QImage(2, 2, QImage::Format_RGB32);
};

OBLINO_TEST(tst_sharingmenu, QApplication)

#include "tst_sharingmenu.moc"
