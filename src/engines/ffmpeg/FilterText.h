#pragma once

#include "tools/OptionItem.h"

namespace engines {

/// A filter, or a graph of filters, for ffmpeg. It is made of literals of ours, of numbers, and of paths
/// that it escapes, so that no text of a file can become a filter: one could write and read any file.
class FilterText final
{
public:
    FilterText &operator<<(tools::Literal text);
    FilterText &operator<<(qint64 number);
    FilterText &operator<<(const FilterText &other);
    /// The path as the value of an option; as it stands where the filter reads it so.
    FilterText &addPath(const QString &path);

    bool isEmpty() const { return m_text.isEmpty(); }
    const QString &text() const { return m_text; }
    /// The text as one argument; a shell line gets it as data.
    tools::OptionItem item(tools::Quoting quoting = tools::Quoting::None) const;

private:
    QString m_text;
};

/// True when the path can stand in a filter as it is.
bool filterCanTake(const QString &path);

} // namespace engines
