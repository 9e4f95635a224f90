#pragma once

#include <QByteArray>
#include <QStringDecoder>
#include <QStringList>

namespace tools
{

/// Cuts a tool's output into lines at carriage returns and line feeds. Bytes come in chunks of any
/// size; UTF-8 is decoded across their borders, and a line that is not finished waits for its rest; of an
/// endless one only the last 64 Ki characters are kept.
class LineCutter
{
  public:
    /// The lines that this chunk finishes, in order, without their ends; empty lines are left out.
    QStringList feed(const QByteArray &chunk);
    /// What came after the last line end.
    QString rest() const { return m_rest; }
    void clear();

  private:
    QStringDecoder m_decoder{QStringDecoder::Utf8};
    QString m_rest;
};

} // namespace tools
