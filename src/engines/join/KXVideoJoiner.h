#pragma once

#include "steps/FfmpegProgress.h"
#include "steps/KXConverter.h"
#include "steps/MkvProgress.h"

class QThread;

/// Appends several files to one with mkvmerge, with ffmpeg's concat reader or with mp4box, and warns when
/// they differ in what a join needs to be alike. Runs one tool once, and looks at the files meanwhile: the
/// step is complete when both are done.
class KXVideoJoiner final : public KXConverter
{
    Q_OBJECT
    /// "mkvmerge", "ffmpeg" or "mp4box".
    KX_FIELD(QString, joinerName, setJoinerName, QStringLiteral("mkvmerge"))

public:
    explicit KXVideoJoiner(const steps::ConverterContext &context);
    ~KXVideoJoiner() override;

    tools::ToolProcessPointer
    startConversionForSelectionWithSaveDirectoryURL(const SelectionPointer &selection,
                                                    const QUrl &folder) override;
    /// Names for output and log; false, with a refusal, when nothing may be started.
    bool prepareForSelectionWithSaveDirectoryURL(const SelectionPointer &selection, const QUrl &folder);
    tools::ToolProcessPointer startPrepared() override;
    QList<steps::Launch> launches() override;
    /// What differs; the misspelling is meant.
    QStringList findMismatchedProperetiesFor(const QList<QUrl> &files);
    QList<QUrl> timedSources() const override;
    void handleNewTaskResult(const steps::ReadEvent &event) override;
    void backgroundReadingCompleted() override;
    steps::Outcome outcome() const override;
    QList<media::MeantOutput> meantOutputs() const override;

protected:
    tools::OptionList launchForm(const tools::OptionList &meant) override;

private:
    tools::ToolProcessPointer start(const QList<QUrl> &files);
    /// The list for the tool that joins; an empty one for a tool that nobody knows.
    tools::OptionList arguments(const QList<QUrl> &files) const;
    bool writeConcatList(const QList<QUrl> &files) const;
    QUrl concatList() const;
    QList<QUrl> listable(const QList<QUrl> &files) const;
    void lookAt(const QList<QUrl> &files);
    void looked();
    void completeWhenAllIsDone();
    void addDurations();
    QString percentageIn(const steps::ReadEvent &event);
    QString ffmpegPercentage(const QByteArray &bytes);
    QString mp4boxPercentage() const;
    steps::Outcome outcomeOfConcat(const steps::Outcome &ended) const;

    steps::MkvProgressReader m_mkvProgress;
    steps::FfmpegProgressReader m_ffmpegProgress;
    qint64 m_wholeSeconds = 0;       ///< of all files together
    std::unique_ptr<QThread> m_look; ///< null when nobody looks at the files
    QStringList m_mismatched;
    bool m_toolIsDone = false;
    bool m_mustLook = false; ///< and nobody has begun to
};
