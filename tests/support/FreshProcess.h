#pragma once

#include <QtCore/QCoreApplication>
#include <QtTest/QTest>

#include <algorithm>

/// What main() returns in a program of two test classes. The functions of \a Fresh depend on what a
/// process does for the first time: each runs only if it is the one that the arguments name, in a
/// process of its own and without an application object. The functions of \a Usual run as ever.
template <typename Usual, typename Fresh>
[[nodiscard]] int runUsualOrFresh(int argc, char* argv[])
{
    const bool isFresh = std::any_of(argv + 1, argv + argc, [](const char* argument) {
        return Fresh::staticMetaObject.indexOfSlot(QByteArray(argument).append("()").constData())
            >= 0;
    });
    if (isFresh) {
        Fresh test;
        return QTest::qExec(&test, argc, argv);
    }
    const QCoreApplication application(argc, argv);
    Usual test;
    return QTest::qExec(&test, argc, argv);
}
