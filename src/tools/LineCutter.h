#pragma once

#include <QByteArray>
#include <QStringList>

namespace tools {

/// Cuts a tool's output into lines at carriage returns and line feeds. Bytes come in chunks of any
/// size; a line that is not finished waits for its rest and is decoded as a whole, so that neither a
/// letter on the border of two chunks nor one that is no UTF-8 costs a line. Of an endless line only
/// the last 64 KiB are kept.
class LineCutter
{
public:
    /// The lines that this chunk finishes, in order, without their ends; empty lines are left out.
    QStringList feed(const QByteArray &chunk);
    /// What came after the last line end, without a letter that is still incomplete.
    QString rest() const;
    void clear() { m_rest.clear(); }

private:
    QByteArray m_rest;
};

} // namespace tools
