#pragma once

#include <QtCore/QCoreApplication>

#include <array>
#include <optional>

/// The application object of a test that sees it come and go.
class ApplicationObject
{
public:
    void begin() { m_application.emplace(m_argumentCount, m_arguments.data()); }
    void end() { m_application.reset(); }

private:
    int m_argumentCount = 1;
    std::array<char, 5> m_name { "test" };
    std::array<char*, 2> m_arguments { m_name.data(), nullptr };
    std::optional<QCoreApplication> m_application;
};
