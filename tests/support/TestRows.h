#pragma once

#include <QtTest/QTest>

/// The table of a data-driven test function. It is made with the names of its columns and is then
/// called once for each row, with the row's name and its values.
///
/// \code
/// const TestRows<QString, int> row("text", "length");
/// row("empty", u""_s, 0);
/// row("letter", u"a"_s, 1);
/// \endcode
template <typename... Values>
class TestRows
{
public:
    template <typename... Names>
    explicit TestRows(Names... columns)
    {
        (QTest::addColumn<Values>(columns), ...);
    }

    void operator()(const char* name, const Values&... values) const
    {
        (QTest::newRow(name) << ... << values);
    }
};
