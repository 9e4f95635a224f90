#pragma once

#include <QByteArray>

#include <array>

namespace tools {

/// The two output pipes of a shell line. Made before the line starts, claimed in the child, and read
/// at the same time until both have ended, which is when the last program that holds them is gone:
/// not always the shell. Owned by one run; the descriptors go with it.
class ShellStreams final
{
public:
    enum Stream { Output, Error };

    ShellStreams();
    ~ShellStreams();
    Q_DISABLE_COPY_MOVE(ShellStreams)

    /// False when the pipes could not be made; they then count as ended.
    bool areOpen() const { return m_open; }
    /// Puts the writing ends in place of the child's own streams. Runs between fork and exec.
    void claimInChild() const;
    /// Our copies of the writing ends: without this no stream ever ends.
    void closeWriters();

    int reader(Stream stream) const { return m_readers.at(stream); }
    bool hasEnded(Stream stream) const { return m_ended.at(stream); }
    bool haveEnded() const { return m_ended[Output] && m_ended[Error]; }
    /// Takes what is there without waiting.
    void read(Stream stream);
    /// Waits for bytes or for an end, so long at most (-1: no limit), and takes what is there.
    void waitAndRead(int milliseconds);
    const QByteArray &bytes(Stream stream) const { return m_bytes.at(stream); }

private:
    bool m_open = false;
    std::array<int, 2> m_readers{-1, -1};
    std::array<int, 2> m_writers{-1, -1};
    std::array<bool, 2> m_ended{false, false};
    std::array<QByteArray, 2> m_bytes;
};

} // namespace tools
