#include "engines/join/JoinCheck.h"

#include <QCoreApplication>
#include <QEventLoop>
#include <QThread>
#include <QThreadPool>

#include <algorithm>
#include <memory>
#include <vector>

using namespace Qt::StringLiterals;

namespace engines {

namespace {

constexpr auto alertTime = std::chrono::seconds(15);

/// What of a file is compared.
struct Properties
{
    explicit Properties(const KXVideoFile &file);

    QString frameRate;
    QStringList size;
    QStringList counts;
    QStringList types;
    QStringList codecs;
};

/// The tracks are sorted by their numbers as texts, on purpose: 10 comes before 2.
Properties::Properties(const KXVideoFile &file)
    : frameRate(file.theFPS())
    , size{file.theWidth(), file.theHeight()}
    , counts{file.theNumberOfVideoTracks(), file.theNumberOfAudioTracks(), file.theNumberOfSubTracks()}
{
    TrackList tracks = file.trackList();
    std::stable_sort(tracks.begin(), tracks.end(), [](const TrackPointer &one, const TrackPointer &other) {
        return one->trackMp4boxID() < other->trackMp4boxID();
    });
    for (const TrackPointer &track : std::as_const(tracks)) {
        types.append(track->trackType());
        codecs.append(track->trackCodec());
    }
}

/// On the main thread the window goes on meanwhile.
void waitForAll(QThreadPool &pool)
{
    const auto *application = QCoreApplication::instance();
    if (application == nullptr || QThread::currentThread() != application->thread()) {
        pool.waitForDone();
        return;
    }
    QEventLoop loop;
    const std::unique_ptr<QThread> waiter(QThread::create([&pool] { pool.waitForDone(); }));
    QObject::connect(waiter.get(), &QThread::finished, &loop, &QEventLoop::quit);
    waiter->start();
    loop.exec();
    waiter->wait();
}

} // namespace

QStringList mismatchedProperties(const QList<VideoFilePointer> &files)
{
    bool rate = false;
    bool size = false;
    bool counts = false;
    bool types = false;
    bool codecs = false;
    for (qsizetype i = 0; i + 1 < files.size(); ++i) {
        const Properties one(*files.at(i));
        const Properties next(*files.at(i + 1));
        rate = rate || one.frameRate != next.frameRate;
        size = size || one.size != next.size;
        counts = counts || one.counts != next.counts;
        types = types || one.types != next.types;
        codecs = codecs || one.codecs != next.codecs;
    }
    QStringList names;
    for (const auto &[differs, name] :
         {std::pair(rate, u"Frame Rate"_s), std::pair(size, u"Video Resolution"_s),
          std::pair(counts, u"Track Count"_s), std::pair(types, u"Track Types"_s),
          std::pair(codecs, u"Track Codecs"_s)}) {
        if (differs)
            names.append(name);
    }
    return names;
}

QList<VideoFilePointer> probedForJoining(const QList<QUrl> &files, const tools::ToolPlaces &places,
                                         const tools::StopFlag &stop, int atOnce)
{
    std::vector<VideoFilePointer> probed(static_cast<std::size_t>(files.size()));
    QThreadPool pool;
    pool.setMaxThreadCount(qMax(atOnce, 1));
    for (std::size_t i = 0; i < probed.size(); ++i) {
        pool.start([&probed, &places, &stop, i, url = files.at(static_cast<qsizetype>(i))] {
            if (stop && *stop)
                return;
            const auto file = std::make_shared<KXVideoFile>(&places);
            file->setStopFlag(stop);
            if (file->initializeForURL(url) == u"OK"_s)
                probed[i] = file;
        });
    }
    waitForAll(pool);
    QList<VideoFilePointer> identified;
    std::copy_if(probed.begin(), probed.end(), std::back_inserter(identified),
                 [](const VideoFilePointer &file) { return file != nullptr; });
    return identified;
}

platform::AlertPointer mismatchAlert(const QStringList &names)
{
    platform::Alert alert;
    alert.message =
        u"The files to be joined appear to have the following properties mismatched, which may cause "
        "errors or unexpected results in the join process."_s;
    alert.informativeText = names.join(u", "_s);
    alert.style = platform::AlertStyle::Warning;
    alert.closesAfter = alertTime;
    return std::make_shared<const platform::Alert>(alert);
}

} // namespace engines
