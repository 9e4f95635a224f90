#include "jobs/JobRecord.h"

#include "jobs/SelectionRecord.h"

#include <QJsonArray>
#include <QJsonDocument>

#include <array>

using namespace Qt::StringLiterals;

namespace jobs {

namespace {

constexpr int version = 1;

template <typename Value>
struct Word
{
    Value value;
    const char16_t *word;
};

constexpr std::array stateWords = {
    Word<JobRecord::State>{JobRecord::State::Waiting, u"waiting"},
    Word<JobRecord::State>{JobRecord::State::Running, u"running"},
    Word<JobRecord::State>{JobRecord::State::Publishing, u"publishing"},
    Word<JobRecord::State>{JobRecord::State::Interrupted, u"interrupted"},
};

constexpr std::array kindWords = {
    Word<JobKind>{JobKind::Conversion, u"conversion"},
    Word<JobKind>{JobKind::Muxing, u"muxing"},
    Word<JobKind>{JobKind::MkvEditing, u"mkvEditing"},
    Word<JobKind>{JobKind::TrackExtraction, u"trackExtraction"},
    Word<JobKind>{JobKind::Joining, u"joining"},
    Word<JobKind>{JobKind::Splitting, u"splitting"},
    Word<JobKind>{JobKind::Remux, u"remux"},
    Word<JobKind>{JobKind::SubtitleSending, u"subtitleSending"},
};

template <typename Words, typename Value>
QString wordFor(const Words &words, Value value)
{
    for (const auto &row : words) {
        if (row.value == value)
            return QString::fromUtf16(row.word);
    }
    return {};
}

template <typename Value, typename Words>
std::optional<Value> valueOf(const Words &words, const QJsonValue &word)
{
    for (const auto &row : words) {
        if (word.toString() == QStringView(row.word))
            return row.value;
    }
    return std::nullopt;
}

/// Numbers of 64 bits do not fit into those of JSON.
QJsonArray toJson(const QList<SourceState> &states)
{
    QJsonArray list;
    for (const SourceState &state : states)
        list.append(QJsonObject{{u"path"_s, state.path},
                                {u"size"_s, QString::number(state.size)},
                                {u"changed"_s, QString::number(state.changed)}});
    return list;
}

QList<SourceState> statesFrom(const QJsonArray &list)
{
    QList<SourceState> states;
    for (const QJsonValue &value : list) {
        const QJsonObject object = value.toObject();
        states.append({object.value(u"path"_s).toString(), object.value(u"size"_s).toString().toLongLong(),
                       object.value(u"changed"_s).toString().toLongLong()});
    }
    return states;
}

QJsonArray toJson(const QList<QUrl> &urls)
{
    QJsonArray list;
    for (const QUrl &url : urls)
        list.append(url.toLocalFile());
    return list;
}

QList<QUrl> urlsFrom(const QJsonArray &list)
{
    QList<QUrl> urls;
    for (const QJsonValue &value : list)
        urls.append(QUrl::fromLocalFile(value.toString()));
    return urls;
}

std::optional<JobRecord> knownFrom(const QJsonObject &object)
{
    const auto kind = valueOf<JobKind>(kindWords, object.value(u"kind"_s));
    const auto state = valueOf<JobRecord::State>(stateWords, object.value(u"state"_s));
    const SelectionPointer selection = selectionFrom(object.value(u"selection"_s).toObject());
    const bool isWhole = object.value(u"selection"_s).isObject() && object.value(u"fileName"_s).isString() &&
                         object.value(u"sources"_s).isArray() && object.value(u"place"_s).isDouble();
    if (!kind || !state || !selection || !isWhole)
        return std::nullopt;
    JobRecord record;
    record.job = {*kind,     object.value(u"fileName"_s).toString(),
                  selection, statesFrom(object.value(u"sources"_s).toArray()),
                  {},        {}};
    record.state = *state;
    record.place = object.value(u"place"_s).toDouble();
    record.claimed = urlsFrom(object.value(u"claimed"_s).toArray());
    record.outputs = statesFrom(object.value(u"outputs"_s).toArray());
    return record;
}

} // namespace

QByteArray toBytes(const JobRecord &record)
{
    return QJsonDocument(QJsonObject{{u"version"_s, version},
                                     {u"kind"_s, wordFor(kindWords, record.job.kind)},
                                     {u"state"_s, wordFor(stateWords, record.state)},
                                     {u"place"_s, record.place},
                                     {u"fileName"_s, record.job.fileName},
                                     {u"sources"_s, toJson(record.job.sources)},
                                     {u"claimed"_s, toJson(record.claimed)},
                                     {u"outputs"_s, toJson(record.outputs)},
                                     {u"selection"_s, toRecord(*record.job.selection)}})
        .toJson(QJsonDocument::Compact);
}

ReadRecord recordFrom(const QByteArray &bytes)
{
    const QJsonObject object = QJsonDocument::fromJson(bytes).object();
    const double found = object.value(u"version"_s).toDouble();
    if (found > version)
        return {ReadRecord::Kind::Newer, {}};
    const auto record = found == version ? knownFrom(object) : std::nullopt;
    return record ? ReadRecord{ReadRecord::Kind::Known, *record} : ReadRecord{};
}

} // namespace jobs
