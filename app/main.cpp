// (placeholder: the app's start-up comes with the shell's own change)
#include <QGuiApplication>

int main(int argc, char** argv) {
    QGuiApplication app(argc, argv);
    return 0;
}
