#pragma once

#include "engines/join/JoinFile.h"
#include "steps/FfmpegProgress.h"
#include "steps/KXConverter.h"
#include "steps/MkvProgress.h"

/// Appends several files to one with mkvmerge, with ffmpeg's concat reader or with mp4box. Files are looked
/// at before: it warns when they differ, and refuses those of which no whole film can be made. Where only the
/// units differ in which times are counted, ffmpeg first copies such files into the job's own folder; its job
/// asks for each run of a tool after the first.
class KXVideoJoiner final : public KXConverter
{
    Q_OBJECT
    /// "mkvmerge", "ffmpeg" or "mp4box".
    KX_FIELD(QString, joinerName, setJoinerName, QStringLiteral("mkvmerge"))

public:
    explicit KXVideoJoiner(const steps::ConverterContext &context);

    /// Serves the event loop while the files are looked at; a job looks at them itself.
    tools::ToolProcessPointer
    startConversionForSelectionWithSaveDirectoryURL(const SelectionPointer &selection,
                                                    const QUrl &folder) override;
    /// Names for output and log; false, with a refusal, when nothing may be started.
    bool prepareForSelectionWithSaveDirectoryURL(const SelectionPointer &selection, const QUrl &folder);
    /// Takes what was found out about the files: shows the warning, and refuses them where they don't fit.
    void takeLook(const QList<engines::JoinFile> &files);
    tools::ToolProcessPointer startPrepared() override;
    /// The next tool, after anotherToolIsNeeded().
    tools::ToolProcessPointer startNext();
    QList<steps::Launch> launches() override;
    /// What differs; the misspelling is meant.
    QStringList findMismatchedProperetiesFor(const QList<QUrl> &files);
    QList<QUrl> timedSources() const override;
    void handleNewTaskResult(const steps::ReadEvent &event) override;
    void backgroundReadingCompleted() override;
    steps::Outcome outcome() const override;
    QList<media::MeantOutput> meantOutputs() const override;

Q_SIGNALS:
    void anotherToolIsNeeded();

protected:
    tools::OptionList launchForm(const tools::OptionList &meant) override;
    tools::OptionList workingAside(const tools::OptionList &list) const override;

private:
    QUrl plainNameOf(const QUrl &file) const;
    bool isRetiming() const { return m_retimed < m_toRetime.size(); }
    tools::ToolProcessPointer startRetiming();
    tools::ToolProcessPointer startJoining();
    bool wasRetimed() const;
    /// The list for the tool that joins; an empty one for a tool that nobody knows.
    tools::OptionList arguments(const QList<QUrl> &files) const;
    QUrl retimedFile(qsizetype position) const;
    QUrl placeOf(const QUrl &file) const;
    QList<steps::Preparation> plannedList(const QList<QUrl> &files) const;
    QList<QUrl> filesToJoin() const;
    bool writeConcatList(const QList<QUrl> &files) const;
    QUrl concatList() const;
    QList<QUrl> listable(const QList<QUrl> &files) const;
    qint64 secondsOf(const QUrl &file);
    void addDurations();
    QString percentageIn(const steps::ReadEvent &event);
    QString ffmpegPercentage(const QByteArray &bytes);
    QString mp4boxPercentage() const;
    steps::Outcome outcomeOfConcat(const steps::Outcome &ended) const;

    steps::MkvProgressReader m_mkvProgress;
    steps::FfmpegProgressReader m_ffmpegProgress;
    qint64 m_wholeSeconds = 0;   ///< of all files together
    qint64 m_doneSeconds = 0;    ///< of the runs before this one
    qint64 m_runSeconds = 0;     ///< of all runs together
    QList<qsizetype> m_toRetime; ///< positions of files
    QString m_timescale;
    qint64 m_doneBytes = 0;         ///< of the sources of the runs before this one
    qint64 m_runBytes = 0;          ///< of those of all runs
    bool m_lengthIsAssumed = false; ///< of one of the files
    qsizetype m_retimed = 0;        ///< how many of them are done
};
