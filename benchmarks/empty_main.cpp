#include <QtCore/QCoreApplication>

// What the start and the end of every program of this kind cost.
int main(int argc, char* argv[])
{
    const QCoreApplication application(argc, argv);
    return 0;
}
