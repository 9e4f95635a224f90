#pragma once

#include <QString>

#include <cstddef>

namespace tools {

/// A text that stands in our own source. Only a string literal makes one, which the compiler checks, so
/// that no name, title or other text of a file ever takes its place. It lives as long as the program.
class Literal final
{
public:
    template <std::size_t N>
    consteval Literal(const char16_t (&text)[N]) // NOLINT(google-explicit-constructor)
        : m_text(text)
        , m_size(N - 1)
    {
    }
    QString text() const { return QString::fromUtf16(m_text, static_cast<qsizetype>(m_size)); }

private:
    const char16_t *m_text;
    std::size_t m_size;
};

} // namespace tools
