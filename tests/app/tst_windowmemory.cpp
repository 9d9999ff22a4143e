#include <support/test.h>
#include <support/widgets.h>

#include <app/windowmemory.h>
#include <controls/headerstate.h>
#include <controls/shortcutlist.h>
#include <controls/windowplace.h>
#include <files/defaults.h>

class tst_windowmemory : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void bringsAWindowBackInTheNextRun()
    {
        const TemporaryHome home;
        const QString path = home.path(u"settings.ini"_s);
        {
            Defaults settings(path);
            WindowMemory memory(settings);
            qApp->installEventFilter(&memory);
            ShortcutsWindow window({});
            showActive(window);
            window.resize(321, 234);
            window.move(123, 45);
            window.close();
            QDialog foreign; // of Qt's own
            showActive(foreign);
            foreign.close();
            QVERIFY(settings.save());
        }
        QCOMPARE(TemporaryHome::content(path), "[General]\nwindow.ShortcutsWindow=321x234+123+45\n");
        const QRect screen = QGuiApplication::primaryScreen()->availableGeometry();
        for (const auto &[kept, place] : {std::pair("300x200+70-20", QPoint(70, 0)),
                                          {"300x2000+700+20", QPoint(-1, 0)},
                                          {"300x200", QPoint()}}) {
            TemporaryHome::write(path, QByteArray("[General]\nwindow.ShortcutsWindow=") + kept + '\n');
            Defaults settings(path);
            WindowMemory memory(settings);
            qApp->installEventFilter(&memory);
            ShortcutsWindow window({});
            const QSize own = window.size();
            showActive(window);
            QTRY_VERIFY(screen.contains(window.frameGeometry()));
            if (place.isNull())
                QCOMPARE(window.size(), own);
            else
                QVERIFY(window.pos().y() == 0 && (place.x() < 0 || window.pos().x() == place.x()));
        }
    }

    void placesAFrameOnAScreen_data()
    {
        const QList<QRect> two = {QRect(0, 30, 1000, 700), QRect(1000, 0, 800, 600)};
        const Table<QRect, QList<QRect>, QRect> row;
        row("as it was", {10, 40, 300, 200}, two, {10, 40, 300, 200});
        row("its title above the top", {10, -40, 300, 200}, two, {10, 30, 300, 200});
        row("on the second", {1700, 500, 300, 200}, two, {1500, 400, 300, 200});
        row("the screen has gone", {1900, 900, 300, 200}, two, {700, 530, 300, 200});
        row("larger than the screen", {-5, -5, 5000, 5000}, two, {0, 30, 1000, 700});
        row("no screen", {1, 2, 3, 4}, {}, {1, 2, 3, 4});
    }
    void placesAFrameOnAScreen()
    {
        const auto [frame, screens, placed] = Table<QRect, QList<QRect>, QRect>::cells();
        QCOMPARE(placedOnScreen(frame, screens), placed);
    }

    void keepsColumns()
    {
        QStandardItemModel model(1, 3);
        QTableView table;
        table.setModel(&model);
        restoreHeader(*table.horizontalHeader(), u"2:70,0:-,1:90"_s);
        const auto state = [&table] { return headerState(*table.horizontalHeader()); };
        QCOMPARE(state(), u"2:70,0:-,1:90"_s);
        for (const QString &damaged : {u""_s, u"0:1"_s, u"0:50,1:50,1:50"_s, u"0:50,1:50,3:50"_s,
                                       u"0:-,1:-,2:-"_s, u"0:50,1:x,2:50"_s, u"0:50,1:0,2:99999999999"_s}) {
            restoreHeader(*table.horizontalHeader(), damaged);
            QCOMPARE(state(), u"2:70,0:-,1:90"_s);
        }
    }
};

OBLINO_TEST(tst_windowmemory, QApplication)

#include "tst_windowmemory.moc"
