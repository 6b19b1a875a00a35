// The minimum cost of a program with the toolkit's core: what tolvexctl is measured against.
#include <QCoreApplication>

int main(int argc, char** argv) {
    const QCoreApplication application(argc, argv);
    return 0;
}
