// A program of the toolkit that shows a window with nothing in it: what the start of the settings window is beside.
#include <QApplication>
#include <QWidget>

int main(int argc, char** argv) {
    const QApplication application(argc, argv);
    QWidget window;
    window.resize(780, 680);
    window.show();
    return QApplication::exec();
}
