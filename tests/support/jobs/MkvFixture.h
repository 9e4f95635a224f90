#pragma once

#include "jobs/KXJob.h"
#include "support/jobs/JobFixture.h"

namespace support {

// The words by which a selection names an operation on Matroska files.
inline const QString mkvConversion = QStringLiteral("MKV Conversion");
inline const QString mkvJoining = QStringLiteral("MKV Joining");
inline const QString mkvRemoval = QStringLiteral("MKV Track Removal");
inline const QString mkvRemux = QStringLiteral("MKV Remux");
inline const QString mkvSplitting = QStringLiteral("MKV Splitting");

/// Makes a job of one class.
using JobMaker = std::shared_ptr<KXJob> (*)(const jobs::JobContext &);

template <class Job>
std::shared_ptr<KXJob> makeJob(const jobs::JobContext &context)
{
    return std::make_shared<Job>(context);
}

/// What a muxing list says of an English track, ended by a bar.
QString muxOptions(const QString &id, const QString &title = {});

/// Jobs and converters around mkvmerge in surroundings of their own, for a source in the scratch folder. The
/// tools record how they were called and play a script. In the texts it answers, the scratch folder is
/// called "/v", so that a list can be written down.
class MkvFixture
{
public:
    explicit MkvFixture(const QStringList &mkvmerge = wellMuxed(), const QString &sourceName = {});
    ~MkvFixture();
    Q_DISABLE_COPY_MOVE(MkvFixture)

    static QStringList wellMuxed();
    static QStringList wellConverted();
    /// Replaces what a tool plays; "TOOL.runs" keeps how it is called.
    void setScript(const QString &place, const QStringList &script) const;
    SelectionPointer selection(const QString &jobType, const TrackList &tracks,
                               const QString &passes = QStringLiteral("1")) const;
    /// For a converter without a job.
    steps::ConverterContext context();
    template <class Job>
    std::shared_ptr<Job> start(const SelectionPointer &selection)
    {
        const auto made = std::make_shared<Job>(base.jobContext(steps::WhenTaken::NextFreeName, launches));
        job = made;
        made->initJobWithSelectionAndPreferences(selection, base.preferences);
        made->startJob();
        return made;
    }
    bool waitForEnd() const;
    /// Arguments of each run of a tool, in order.
    QList<QStringList> calls(const QString &tool = QStringLiteral("mkvmerge")) const;
    /// The list that was meant by a tool's start number n, its items between bars.
    QString meant(qsizetype n = 0, const QString &tool = QStringLiteral("mkvmerge")) const;
    QString launched(qsizetype n = 0, const QString &tool = QStringLiteral("mkvmerge")) const;
    /// What the steps' progress texts became, one text for each announcement, without repetitions.
    QStringList progressTexts() const;
    /// The texts announced under that name; locations are shown as paths.
    QStringList posted(const QString &name) const;
    QString shown(QString text) const;
    /// What a file of the converter without a job holds, by its final name.
    QByteArray fileOf(const QUrl &name) const;
    QString path(const QString &name) const { return base.scratch.path(name); }
    QUrl url(const QString &name) const { return base.scratch.url(name); }

    JobFixture base{JobFixture::Tools::Fake};
    LaunchRecord &launches = base.launcher;
    QUrl source;
    steps::OutputGuard guard;
    NotificationRecord record;
    std::shared_ptr<KXJob> job; ///< the one started last
};

} // namespace support
