#include <support/temporaryhome.h>
#include <support/testmain.h>

#include <app/application.h>
#include <platform/singleinstance.h>

#include <QApplication>
#include <QMessageBox>
#include <QTableView>
#include <QTimer>
#include <QToolButton>

#include <unistd.h>

#include <csignal>

using namespace oblino;
using namespace Qt::Literals::StringLiterals;

class tst_ending : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aSignalAnswersNoQuestion()
    {
        const TemporaryHome home;
        qputenv("HOME", QFile::encodeName(home.path({})));
        qputenv("DBUS_SESSION_BUS_ADDRESS", "unix:path=/nonexistent");
        const QByteArray list =
            "3/7/24|Paint fence|Two coats|1.0|0.5|0.0|1.0|3/9/24|0|2|Open|High|key-1|false|9|30|17|0|Harbor "
            "Cafe|Dana^";
        TemporaryHome::write(home.listPath(), list);

        SingleInstance instance(home.privateFolder());
        Application application(instance);
        application.start();
        QWidgetList windows = QApplication::topLevelWidgets();
        windows.removeIf([](QWidget *window) { return !window->inherits("QMainWindow"); });
        QWidget *window = windows.value(0);
        auto *table = window->findChild<QTableView *>(u"tblView"_s);
        QCOMPARE(table->model()->rowCount(), 1);
        table->selectRow(0);
        QTimer::singleShot(0, window, [window] {
            QTest::mouseClick(window->findChild<QToolButton *>(u"deleteButton"_s), Qt::LeftButton);
        });
        QTimer question;
        connect(&question, &QTimer::timeout, window, [&question] {
            if (qobject_cast<QMessageBox *>(QApplication::activeModalWidget())) {
                question.stop();
                QCOMPARE(::raise(SIGTERM), 0);
            }
        });
        question.start(10);
        QCOMPARE(QApplication::exec(), 0);
        ::alarm(0);
        QVERIFY2(!question.isActive(), "it was asked");
        QCOMPARE(TemporaryHome::content(home.listPath()), list);
    }
};

OBLINO_TEST(tst_ending, QApplication)

#include "tst_ending.moc"
