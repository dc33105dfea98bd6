// The least that a program with a window takes: what the console's start is measured against.
#include <QApplication>
#include <QMainWindow>

int main(int count, char** arguments)
{
    const QApplication program(count, arguments);
    QMainWindow window;
    window.resize(1000, 700);
    window.show();
    window.repaint();
    QApplication::processEvents();
    return 0;
}
