#include "cli/PendingOutput.h"

#include "support/TestMain.h"
#include "support/Waiting.h"

#include <QSignalSpy>
#include <QTest>

#include <csignal>
#include <fcntl.h>
#include <unistd.h>

using cli::PendingOutput;

namespace {

struct Pipe
{
    Pipe()
    {
        if (::pipe(ends) != 0)
            qFatal("no pipe");
        ::fcntl(ends[0], F_SETFL, O_NONBLOCK);
    }
    ~Pipe()
    {
        closeReader();
        ::close(ends[1]);
    }
    Q_DISABLE_COPY_MOVE(Pipe)

    void closeReader()
    {
        if (ends[0] >= 0)
            ::close(ends[0]);
        ends[0] = -1;
    }
    QByteArray read(qsizetype most = 1 << 20)
    {
        QByteArray text(most, '\0');
        const auto count = ::read(ends[0], text.data(), static_cast<std::size_t>(most));
        return count > 0 ? text.first(count) : QByteArray();
    }

    int ends[2] = {-1, -1};
};

const QByteArray block(64 * 1024, 'b'); // as much as a pipe holds

} // namespace

/// Output that waits for its reader, who is not waited for.
class PendingOutputTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { ::signal(SIGPIPE, SIG_IGN); }

    void whatThereIsRoomForIsWrittenAtOnce()
    {
        Pipe pipe;
        PendingOutput output(pipe.ends[1]);
        output.add("one\n");
        output.add("two\n", PendingOutput::WhenBehind::Lose);
        QCOMPARE(pipe.read(), "one\ntwo\n");
        QVERIFY(output.isEmpty());
    }

    void whatMayBeLostIsLostWhileTheReaderIsBehind()
    {
        Pipe pipe;
        PendingOutput output(pipe.ends[1]);
        output.add(block);
        output.add("kept 1\n");
        output.add("lost\n", PendingOutput::WhenBehind::Lose);
        output.add("kept 2\n");
        QVERIFY(!output.isEmpty());
        QByteArray text;
        QVERIFY(support::waitFor([&] { // the event loop writes on
            text += pipe.read();
            return output.isEmpty();
        }));
        output.add("more\n", PendingOutput::WhenBehind::Lose); // the reader has caught up
        text += pipe.read();
        QCOMPARE(text, block + "kept 1\nkept 2\nmore\n");
    }

    /// However little is read at a time, every byte arrives once and in its order.
    void muchComesThroughWholeAndInOrder()
    {
        Pipe pipe;
        PendingOutput output(pipe.ends[1]);
        QByteArray expected;
        for (int line = 0; line < 60000; ++line)
            expected += QByteArray::number(line) + " of many lines that take more than a pipe holds\n";
        for (qsizetype done = 0; done < expected.size(); done += 10007)
            output.add(expected.mid(done, 10007));
        QByteArray text;
        QVERIFY(support::waitFor([&] {
            text += pipe.read(100000);
            return output.isEmpty();
        }));
        text += pipe.read(expected.size());
        QVERIFY(text == expected);
    }

    void flushWaitsWhileItMay()
    {
        Pipe pipe;
        PendingOutput output(pipe.ends[1]);
        output.add(block);
        output.add("end\n");
        int looks = 0;
        output.flush([&] { return ++looks < 3; });
        QCOMPARE(looks, 3);
        QVERIFY(!output.isEmpty());
        QByteArray text;
        output.flush([&] {
            text += pipe.read();
            return true;
        });
        QVERIFY(output.isEmpty());
        QCOMPARE(text + pipe.read(), block + "end\n");
    }

    void aReaderThatIsGoneIsToldOnce()
    {
        Pipe pipe;
        PendingOutput output(pipe.ends[1]);
        QSignalSpy failed(&output, &PendingOutput::failed);
        output.add(block + "unread");
        QCOMPARE(failed.count(), 0);
        pipe.closeReader();
        QVERIFY(support::waitFor([&] { return failed.count() > 0; })); // without being given more
        output.add("more\n");
        output.flush([] { return true; });
        QCOMPARE(failed.count(), 1);
        QCOMPARE(failed.constFirst().constFirst().toInt(), EPIPE);
        QCOMPARE(output.error(), EPIPE);
        QVERIFY(output.isEmpty());
    }
};

TESSARAY_TEST(PendingOutputTest)
#include "PendingOutputTest.moc"
