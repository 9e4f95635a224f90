#pragma once

#include <QList>
#include <QRegularExpression>
#include <QString>
#include <QStringList>
#include <QVariantMap>

namespace fuzz {

/// Whatever a probe prints, the fields that tools are given or that decide anything have a type: here each
/// one's form is said in other words than the reader's, and its first value is looked for in the text anew.
/// It holds where it has that form.
class ProbeReaderCheck final
{
public:
    /// What is wrong with the streams that were read from the text, null when all is well.
    static QString offenceOf(const QString &output, const QList<QVariantMap> &streams)
    {
        const QList<QVariantMap> printed = ownFieldsIn(output);
        qsizetype place = 0; // a reader may leave out what is no stream, and never turns two around
        for (const QVariantMap &stream : streams) {
            QString offence = QStringLiteral("a stream that was not printed");
            while (place < printed.size() && !offence.isNull())
                offence = offenceOf(stream, printed.at(place++));
            if (!offence.isNull())
                return offence;
        }
        return {};
    }

private:
    struct Form
    {
        const char *field;
        const char *pattern;
    };

    /// The fields with a type. A level can be negative: "-99" where it isn't known. An index that is none is
    /// read as an empty one, so that its stream stands in no place.
    static constexpr Form forms[] = {
        {"index", "[0-9]{0,6}"},
        {"width", "[0-9]{1,9}"},
        {"height", "[0-9]{1,9}"},
        {"channels", "[0-9]{1,9}"},
        {"bit_rate", "[0-9]{1,18}"},
        {"level", "-?[0-9]{1,9}"},
        {"codec_type", "video|audio|subtitle|data|attachment|unknown|nb"},
        {"codec_name", "[A-Za-z0-9 _./+-]{0,64}"},
        {"profile", "[A-Za-z0-9 _.:()/+-]{0,64}"},
        {"avg_frame_rate", "[0-9]{1,12}/[0-9]{1,12}"},
    };

    static QString offenceOf(const QVariantMap &stream, const QVariantMap &printed)
    {
        for (const Form &form : forms) {
            const QString field = QLatin1String(form.field);
            if (!stream.contains(field))
                continue;
            const QString value = stream.value(field).toString();
            if (!has(form, value))
                return field + QStringLiteral(" is \"%1\"").arg(value);
            const QString first = printed.value(field).toString();
            if (value != first && printed.contains(field) && has(form, first))
                return field + QStringLiteral(" is not its first value");
        }
        return {};
    }

    static bool has(const Form &form, const QString &value)
    {
        const QString pattern = QRegularExpression::anchoredPattern(QLatin1String(form.pattern));
        return QRegularExpression(pattern).match(value).hasMatch();
    }

    /// What stands in front of the first nested list or dictionary of each stream, each field's first value.
    static QList<QVariantMap> ownFieldsIn(const QString &output)
    {
        QList<QVariantMap> streams;
        bool isOwn = false;
        for (const QString &printed : linesOf(output)) {
            QString line = printed;
            line.remove(QLatin1Char('"')).remove(QLatin1Char(','));
            const QStringList pieces = line.split(QLatin1String(": "));
            if (line.contains(QLatin1Char('{')) && pieces.size() < 2) {
                streams.append(QVariantMap());
                isOwn = true;
            } else if (line.contains(QLatin1Char('{')) || line.contains(QLatin1Char('}'))) {
                isOwn = false;
            } else if (isOwn && pieces.size() > 1 && !streams.constLast().contains(bare(pieces.at(0)))) {
                streams.last().insert(bare(pieces.at(0)), bare(pieces.at(1)));
            }
        }
        return streams;
    }

    /// Without the two lines that open the whole and the two that close it.
    static QStringList linesOf(const QString &output)
    {
        QStringList lines = output.split(QLatin1Char('\n'));
        return lines.size() < 4 ? QStringList() : lines.mid(2, lines.size() - 4);
    }

    static QString bare(const QString &text)
    {
        qsizetype begin = 0;
        qsizetype end = text.size();
        while (begin < end && text.at(begin) == QLatin1Char(' '))
            ++begin;
        while (end > begin && text.at(end - 1) == QLatin1Char(' '))
            --end;
        return text.mid(begin, end - begin);
    }
};

} // namespace fuzz
