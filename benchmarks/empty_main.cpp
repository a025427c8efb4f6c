#include <QtCore/QCoreApplication>

// The least that the start and the end of a program with Qt cost.
int main(int argc, char* argv[])
{
    const QCoreApplication application(argc, argv);
    return 0;
}
