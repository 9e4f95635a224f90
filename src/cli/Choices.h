#pragma once

#include "selection/BestGuess.h"

#include <QList>
#include <QString>

#include <optional>
#include <utility>

namespace cli {

class CommandLine;

/// The choices of "convert" that were given by hand, checked as far as that goes without a file. What was
/// not given has a default, or, with a settings preset, is the preset's.
class Choices final
{
public:
    explicit Choices(const CommandLine &line);

    /// What is wrong with them; a null text when nothing is.
    QString error() const { return m_error; }
    /// What of them has no effect; a null text when all have one.
    QString note() const { return m_note; }
    /// The stream indexes of --tracks; no value when it was not given.
    const std::optional<QStringList> &tracks() const { return m_tracks; }
    /// What is wrong with them for this selection: tracks that it does not hold.
    QString errorFor(const KXSelection &selection) const;
    /// What they are for a selection whose tracks are already chosen.
    selection::ConversionSettings settingsFor(const KXSelection &selection) const;
    /// What --auto asks for; no value when it was not given. The choices are then those that were given, and
    /// nothing else.
    const std::optional<selection::Aim> &aim() const { return m_aim; }
    /// The options given that say how a conversion is to be made: "--device".
    const QStringList &given() const { return m_given; }

private:
    void readAim(const CommandLine &line);
    void readTarget(const CommandLine &line);
    void readVideo(const CommandLine &line);
    void readAudio(const QStringList &values);
    selection::AudioOutputs &audioOf(const QString &track);
    QString readAudioOutput(const QString &word, selection::AudioOutput &output) const;
    std::optional<QString> readNumber(const CommandLine &line, const QString &option);
    void readSubtitles(const CommandLine &line);
    bool passesThru() const { return m_settings.picture == selection::Picture::PassThrough; }
    void fail(const QString &sentence);

    QString m_error;
    QString m_note;
    selection::ConversionSettings m_settings; ///< no value: the preset's, or the source's
    bool m_wantsMp4 = false;                  ///< of whichever device the preset says
    /// By stream index, or "+1" for the first added file, in the order in which they were given.
    QList<std::pair<QString, selection::AudioOutputs>> m_audio;
    std::optional<selection::Aim> m_aim;
    QStringList m_given;
    std::optional<QStringList> m_tracks;
};

/// True when the target carries no subtitles and none is to be drawn into the picture.
bool leavesOutSubtitles(const KXSelection &selection);

/// "0,2,5" as a list; no value (and a sentence) when a piece is no stream index.
std::optional<QStringList> trackIndexes(const QString &list, QString &error);

} // namespace cli
