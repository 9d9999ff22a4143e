// The least that a program with a table in a window does at its start, to measure a whole program by.
#include <QApplication>
#include <QMainWindow>
#include <QTableView>

int main(int argc, char **argv)
{
    const QApplication application(argc, argv);
    QMainWindow window;
    window.setCentralWidget(new QTableView);
    window.resize(1280, 720);
    window.show();
    return QApplication::exec();
}
