#pragma once

#include <QList>
#include <QStringList>

#include <initializer_list>
#include <optional>

namespace media {

enum class TrackKind { Video, Audio, Subtitle };
/// Which codecs are known: those of the vocabulary, or, where it has no word, every other one too.
enum class Codecs { OfVocabulary, NewerToo };

/// The words by which a probed codec is told, for one kind of track: three parallel lists of groups.
/// There is one table a kind in the whole program.
class CodecVocabulary final
{
public:
    struct Match
    {
        QString codec;     ///< the short word that tracks carry
        QString extension; ///< what an extracted stream is called
    };

    static const CodecVocabulary &of(TrackKind kind);

    /// Groups of match words.
    const QList<QStringList> &codecList() const { return m_codecs; }
    /// The short codec word of each group.
    const QStringList &infoList() const { return m_infos; }
    /// The extension of each group.
    const QStringList &extensionList() const { return m_extensions; }

    /// The last group of which any word contains the name or is contained in it, in any case; nothing
    /// when no group fits or the name is empty. The last one wins on purpose: "dts" is in "dts-hd" and
    /// becomes "dtshd", every "..._subtitle" of pictures becomes "teletext".
    std::optional<Match> classify(const QString &codecName) const;
    /// Of a codec that classify() does not know: its own name, told as a whole, and the form in which it is
    /// extracted. Nothing only for an empty name.
    static std::optional<Match> classifyNewer(TrackKind kind, const QString &codecName);

private:
    struct Row;
    CodecVocabulary(std::initializer_list<Row> rows);
    static const CodecVocabulary &video();
    static const CodecVocabulary &audio();
    static const CodecVocabulary &subtitle();

    QList<QStringList> m_codecs;
    QStringList m_infos;
    QStringList m_extensions;
};

} // namespace media
