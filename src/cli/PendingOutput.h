#pragma once

#include <QByteArray>
#include <QObject>
#include <QSocketNotifier>

#include <functional>
#include <memory>

namespace cli {

/// What is on its way to a stream whose reader may be slow. Nothing here waits but flush(): what the reader
/// has no room for is kept, and goes out when the event loop learns that there is room. Owned by the console.
class PendingOutput final : public QObject
{
    Q_OBJECT

public:
    /// What becomes of it while the reader is behind.
    enum class WhenBehind { Keep, Lose };

    explicit PendingOutput(int descriptor);
    ~PendingOutput() override;

    void add(const QByteArray &bytes, WhenBehind whenBehind = WhenBehind::Keep);
    /// Waits until all is written, as long as the condition holds.
    void flush(const std::function<bool()> &goesOn);
    /// Whether the reader has taken all that it was given.
    bool isEmpty() const { return m_done == m_bytes.size(); }
    /// The error that ended the writing; 0 while there was none. Nothing is written behind it.
    int error() const { return m_error; }

Q_SIGNALS:
    void failed(int error);

private:
    bool hasRoom(int milliseconds) const;
    void writeWhatFits();
    void writeSome();
    void fail(int error);

    int m_descriptor;
    QByteArray m_bytes;
    qsizetype m_done = 0; ///< of m_bytes, so many are written
    int m_error = 0;
    std::unique_ptr<QSocketNotifier> m_room;
};

} // namespace cli
